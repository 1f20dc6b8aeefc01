"""What the tests share."""

import json
import subprocess
import sys
import textwrap
from fractions import Fraction
from typing import Any

import norvex


def typed(tree: Any) -> Any:
    """The tree with the types of its values and the order of its names, which the equality of dicts leaves out."""
    if isinstance(tree, dict):
        return [(name, typed(value)) for name, value in tree.items()]
    return (type(tree), repr(tree))


def through_a_tree(tree: Any) -> Any:
    """What comes back of a dict that became a settings tree: a filter corrects nothing."""
    return norvex.helper("filter_volume").correct(tree)


def form(tree: Any) -> Any:
    """The form that the document of a preset has, by another road than the module's."""
    if isinstance(tree, dict):
        if list(tree) == ["$children"]:
            return {"$children": [[form(name), form(value)] for name, value in tree["$children"]]}
        return {name: form(value) for name, value in tree.items()}
    if isinstance(tree, Fraction):
        return f"{tree.numerator}/{tree.denominator}"
    if isinstance(tree, bytes):
        return {"$bytes": tree.hex()}
    if isinstance(tree, float) and (tree != tree or abs(tree) == float("inf")):
        return {"$double": repr(tree)}
    return {"$none": True} if tree is None else tree


def document(tree: Any) -> Any:
    return json.loads(norvex.write_preset(tree))["preset"]


def run(script: str) -> str:
    """What a process of its own prints, whose book nobody has asked yet. It must end well and without complaints."""
    script = textwrap.dedent(script)
    if "import norvex\n" not in script:
        script = "import norvex\n" + script
    ended = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=60)
    assert (ended.returncode, ended.stderr) == (0, ""), ended.stderr
    return ended.stdout


def prints(script: str, text: str) -> None:
    assert run(script) == text
