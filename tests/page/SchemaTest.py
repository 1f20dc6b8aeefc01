"""The documents of the programs against their schemas: SchemaTest.py PROGRAM BOOK_SCHEMA FIT_SCHEMA PRESET_SCHEMA
PRESET_PAGE."""

import copy
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import wave

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
        elif keyword in ("const", "enum"):
            allowed = [word] if keyword == "const" else word
            if not any(value == one and isinstance(value, bool) == isinstance(one, bool) for one in allowed):
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


def test(schema, documents, damages):
    """What is wrong with the documents, and what damage to the first of them goes unnoticed."""
    found = [fault for document in documents for fault in faults(schema, document, schema)]
    for fault in found[:20]:
        print(fault)
    # A schema that lets everything through would be no help.
    for number, damage in enumerate(damages):
        document = copy.deepcopy(documents[0])
        damage(document)
        if not any(faults(schema, document, schema)):
            print(f"damage {number} was not seen")
            found.append(number)
    return found


def main():
    program, book_schema, fit_schema, preset_schema, page = sys.argv[1:]
    run = lambda *arguments, **more: subprocess.run([program, *arguments], capture_output=True, text=True, **more)
    book = json.loads(run("json", check=True).stdout)
    found = test(json.load(open(book_schema, encoding="utf-8")), [book], [
        lambda b: b.update({"norvex-rules": 1}), lambda b: b.pop("filters"), lambda b: b.update(more=1),
        lambda b: b["formats"][0].pop("limits"), lambda b: b["formats"][0]["limits"].update(video=-1),
        lambda b: b["formats"][0]["video"].update(codecs=[]), lambda b: b["formats"].append(b["filters"][0]),
        lambda b: b["videoCodecs"][0].update(encoder=5), lambda b: b["subtitleCodecs"][0].pop("encoder"), lambda b: b["audioCodecs"][0]["constraints"].append({"path": "x"}),
        lambda b: b["audioCodecs"][0]["rules"].append({"path": "", "when": None, "allowed": {"words": ""}}),
        lambda b: b["judging"].pop("places"), lambda b: next(c for c in b["videoCodecs"] if c["rules"])["rules"][0].pop("assembled"),
        lambda b: b["audioCodecs"][0]["parameters"].update(x={"type": "float"}), lambda b: b["filters"][0].pop("parameters"),
        lambda b: b["filters"][0]["defaults"].update(x=[]), lambda b: b.update(library=""),
        lambda b: b["formats"][0].pop("extensions"), lambda b: b["filters"][0].update(name=""),
        lambda b: b["videoCodecs"][0]["facts"]["pixelFormats"]["rgb24"].update(bits=-1), lambda b: b["videoCodecs"][0]["facts"].update(threads=["many"]),
    ])

    with tempfile.NamedTemporaryFile(suffix=".wav") as sound:
        with wave.open(sound.name, "wb") as writer:
            writer.setparams((1, 2, 11025, 0, "NONE", ""))
            writer.writeframes(bytes(20000))
        fit = json.loads(run("fit", sound.name, "--json", check=True).stdout)
    if not any(stream["changes"] for format in fit["formats"] for stream in format["streams"]):
        found.append("no container changes the sound")
    found += test(json.load(open(fit_schema, encoding="utf-8")), [fit], [
        lambda f: f.update({"norvex-fit": 2}), lambda f: f.pop("streams"), lambda f: f["streams"][0].update(kind="film"),
        lambda f: f["formats"][0]["limits"].pop("other"), lambda f: f["formats"][0]["streams"][0].update(answer="no"),
        lambda f: f["formats"][0]["streams"][0].update(reason=""),
        lambda f: f["formats"][0]["streams"][0]["changes"].append({"path": "x"}),
    ])

    # The page's examples, the one with streams first, and the defaults of all helpers.
    examples = re.findall("```json\n(.*?)```", open(page, encoding="utf-8").read(), re.DOTALL)
    for example in examples:
        checked = run("check", "/dev/stdin", input=example)
        if checked.stdout.splitlines()[-1:] != ["The preset keeps every rule."]:
            print(checked.stdout + checked.stderr)
            found.append(example)
    sections = [("format", "formats"), ("video_codec", "videoCodecs"), ("audio_codec", "audioCodecs")]
    documents = [json.loads(example) for example in reversed(examples)]
    documents += [{"norvex-preset": 1, "preset": {name: helper["defaults"]}} for name, list in sections for helper in book[list]]
    documents += [json.loads(preset.read_text()) for preset in (pathlib.Path(page).parent.parent / "share/norvex/presets").iterdir()]
    documents += [{"norvex-preset": 1, "preset": {filter["id"]: filter["defaults"]}} for filter in book["filters"]]
    found += test(json.load(open(preset_schema, encoding="utf-8")), documents, [
        lambda d: d.update({"norvex-preset": 3}), lambda d: d.pop("preset"), lambda d: d.update(more=1),
        lambda d: d["preset"].update(filters={}), lambda d: d["preset"]["format"].pop("container"),
        lambda d: d["preset"]["format"]["streams"]["1"].pop("type"),
        lambda d: d["preset"]["format"]["streams"]["1"].update(type="film"),
        lambda d: d["preset"]["video_codec"].update(codec_id=5), lambda d: d["preset"]["video_codec"].update(bitrate=[]),
        lambda d: d["preset"]["filter_rate"].update(fps=25), lambda d: d["preset"].update(subtitle_codec={}),
    ])
    sys.exit(1 if found else 0)


main()
