"""The document of `norvex-rules json` against its schema: SchemaTest.py PROGRAM SCHEMA."""

import copy
import json
import subprocess
import sys

TYPES = {"object": dict, "array": list, "string": str, "boolean": bool, "null": type(None)}
NOTES = {"$schema", "$defs", "title", "description"}


def is_of_type(value, name):
    if name in ("number", "integer"):
        return isinstance(value, int if name == "integer" else (int, float)) and not isinstance(value, bool)
    return isinstance(value, TYPES[name])


def faults(schema, value, root, path="document"):
    """What is wrong with the value, a text each. Only the keywords of this schema are known."""
    for keyword, word in schema.items():
        if keyword == "$ref":
            target = root
            for step in word.removeprefix("#/").split("/"):
                target = target[step]
            yield from faults(target, value, root, path)
        elif keyword == "type":
            if not any(is_of_type(value, name) for name in ([word] if isinstance(word, str) else word)):
                yield f"{path} is no {word}"
        elif keyword == "const":
            if value != word or isinstance(value, bool):
                yield f"{path} is not {word}"
        elif keyword == "required":
            if isinstance(value, dict):
                yield from (f"{path} has no {name}" for name in word if name not in value)
        elif keyword == "properties":
            if isinstance(value, dict):
                for name in word.keys() & value.keys():
                    yield from faults(word[name], value[name], root, f"{path}/{name}")
        elif keyword == "additionalProperties":
            if isinstance(value, dict):
                for name in value.keys() - schema.get("properties", {}).keys():
                    if word is False:
                        yield f"{path} has {name}"
                    else:
                        yield from faults(word, value[name], root, f"{path}/{name}")
        elif keyword == "items":
            if isinstance(value, list):
                for index, item in enumerate(value):
                    yield from faults(word, item, root, f"{path}/{index}")
        elif keyword in ("minItems", "minLength"):
            if isinstance(value, list if keyword == "minItems" else str) and len(value) < word:
                yield f"{path} is too short"
        elif keyword == "minimum":
            if is_of_type(value, "number") and value < word:
                yield f"{path} is too small"
        elif keyword not in NOTES:
            sys.exit(f"the checker does not know the keyword {keyword}")


def main():
    program, schema_file = sys.argv[1:]
    schema = json.load(open(schema_file, encoding="utf-8"))
    book = json.loads(subprocess.run([program, "json"], check=True, capture_output=True).stdout)
    found = list(faults(schema, book, schema))
    for fault in found[:20]:
        print(fault)

    # A schema that lets everything through would be no help.
    def damaged(change):
        document = copy.deepcopy(book)
        change(document)
        return any(faults(schema, document, schema))

    damages = [
        lambda b: b.update({"norvex-rules": 2}), lambda b: b.pop("filters"), lambda b: b.update(more=1),
        lambda b: b["formats"][0].pop("limits"), lambda b: b["formats"][0]["limits"].update(video=-1),
        lambda b: b["formats"][0]["video"].update(codecs=[]), lambda b: b["formats"].append(b["filters"][0]),
        lambda b: b["videoCodecs"][0].update(encoder=5), lambda b: b["audioCodecs"][0]["constraints"].append({"path": "x"}),
        lambda b: b["audioCodecs"][0]["rules"].append({"path": "", "when": None, "allowed": {"words": ""}}),
        lambda b: b["filters"][0]["defaults"].update(x=[]), lambda b: b.update(library=""),
    ]
    for number, damage in enumerate(damages):
        if not damaged(damage):
            print(f"damage {number} was not seen")
            found.append(number)
    sys.exit(1 if found else 0)


main()
