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

import jsonschema

def test(schema, documents, damages):
    """What is wrong with the documents, and what damage to the first of them goes unnoticed."""
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    found = [f"{fault.json_path}: {fault.message}" for document in documents for fault in validator.iter_errors(document)]
    print("\n".join(fault[:300] for fault in found[:20]))
    # A schema that lets everything through would be no help.
    for number, damage in enumerate(damages):
        document = copy.deepcopy(documents[0])
        damage(document)
        if validator.is_valid(document):
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
        lambda b: b["judging"].pop("places"), lambda b: b["judging"].update(sentences={}), lambda b: b["names"]["parameters"]["bitrate"].pop("name"),
        lambda b: b["formats"][0]["video"].pop("faults"), lambda b: next(c for c in b["videoCodecs"] if c["rules"])["rules"][0].pop("assembled"),
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
