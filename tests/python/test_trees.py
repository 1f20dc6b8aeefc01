"""Settings trees as dicts, both ways."""

import copy
import json
from fractions import Fraction
from typing import Any

import pytest
from conftest import document, form, through_a_tree, typed
from hypothesis import given, settings
from hypothesis import strategies as some

import norvex

LONG = some.integers(-(2**63), 2**63 - 1)
RATIOS = some.builds(Fraction, some.integers(-(2**63), 2**63 - 1), some.integers(1, 2**63 - 1))
NAMES = some.text(some.characters(blacklist_categories=("Cs",)), max_size=4)
NOT_UTF8 = some.binary(max_size=4).map(lambda data: b"\xff" + data)
LEAVES = some.one_of(some.none(), some.booleans(), LONG, some.floats(), RATIOS, NOT_UTF8, NAMES, some.just("1/2"))


def sections(values: Any) -> Any:
    plain = some.dictionaries(NAMES.filter(lambda name: name[:1] != "$"), values, max_size=4)
    odd = some.lists(some.tuples(some.one_of(NAMES, NOT_UTF8), values).map(list), max_size=3)
    repeats = odd.map(lambda pairs: {"$children": [*pairs, ["$", 1], ["$", 2.0]]})
    return some.one_of(plain, repeats)


@settings(max_examples=300, deadline=None, derandomize=True, database=None)
@given(sections(some.recursive(LEAVES, sections, max_leaves=8)))
def test_any_tree_comes_back_as_it_was_and_has_the_form_of_documents(tree: Any) -> None:
    before = copy.deepcopy(tree)
    assert typed(through_a_tree(tree)) == typed(tree) == typed(before)
    written = json.dumps(document(tree)).replace('{"$text": "1/2"}', '"1/2"')
    assert written == json.dumps(form(tree))


def test_other_forms_of_a_value_are_read_too() -> None:
    class Number:
        def __index__(self) -> int:
            return 7

    tree = {"a": {"$text": "1/2"}, "b": {"$bytes": "ff"}, "c": {"$double": "inf"}, "d": {"$none": True}, "e": b"abc"}
    back = {"a": "1/2", "b": b"\xff", "c": float("inf"), "d": None, "e": "abc", "f": 7}
    assert typed(through_a_tree({**tree, "f": Number()})) == typed(back)


def deep(levels: int) -> Any:
    return {"a": deep(levels - 1)} if levels else 1


CYCLE: Any = {}
CYCLE["a"] = CYCLE
GROWING: Any = {"a": 1, "b": 2}


class Grows:
    def __index__(self) -> int:
        GROWING[str(len(GROWING))] = 1
        return 1


GROWING["a"] = Grows()


@pytest.mark.parametrize(
    "tree, error, path",
    [
        ([1], norvex.TreeTypeError, ""),
        ({"a": {"b": [1]}}, norvex.TreeTypeError, "a/b"),
        ({"a": {1: 2}}, norvex.TreeTypeError, "a"),
        ({"a": {"b": 2**63}}, norvex.TreeOverflowError, "a/b"),
        ({"a": Fraction(1, 2**63)}, norvex.TreeOverflowError, "a"),
        ({"a": "\ud800"}, norvex.TreeValueError, "a"),
        ({"a": {"$x": 1}}, norvex.TreeValueError, "a"),
        ({"a": {"$none": True, "b": 1}}, norvex.TreeValueError, "a"),
        ({"a": {"$bytes": "f"}}, norvex.TreeValueError, "a"),
        ({"a": {"$children": [["b", {"c": object}]]}}, norvex.TreeTypeError, "a/b/c"),
        ({"a": {"$children": [["b", 1, 2]]}}, norvex.TreeTypeError, "a"),
        (deep(101), norvex.TreeValueError, "/".join("a" * 100)),
        (CYCLE, norvex.TreeValueError, "/".join("a" * 100)),
        (GROWING, norvex.TreeValueError, ""),
    ],
)
def test_what_is_no_tree_is_told_with_its_path(tree: Any, error: Any, path: str) -> None:
    with pytest.raises(error) as caught:
        through_a_tree(tree)
    assert caught.value.path == path
    assert isinstance(caught.value, norvex.Error) and path[:100] in str(caught.value)
    assert through_a_tree(deep(100)) == deep(100)
