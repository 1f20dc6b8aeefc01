#!/usr/bin/env python3
"""Exports a made clip to every container and with every codec, reads each file back, and prints what came of it.

matrix.py NORVEX_EXPORT NORVEX_RULES FOLDER
"""
import json
import pathlib
import subprocess
import sys

# The file names by which ffprobe knows what it cannot tell from the content.
EXTENSIONS = {"targa": "tga", "jpeg": "jpg", "matroska": "mkv", "adts": "aac", "mpegts": "ts", "mpeg2ts": "m2ts"}
# The rule book's words for codecs that files call otherwise.
SAME = {"srt": "subrip", "ssa": "ass"}


def run(*command):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True)


def make_inputs(folder):
    clip, titles = folder / "clip.mov", folder / "titles.srt"
    made = run("ffmpeg", "-nostdin", "-loglevel", "error", "-y",
               "-f", "lavfi", "-i", "testsrc2=size=640x480:rate=30000/1001:duration=1",
               "-f", "lavfi", "-i", "sine=frequency=440:sample_rate=48000:duration=1",
               "-ac", "2", "-c:v", "mpeg4", "-q:v", "2", "-c:a", "pcm_s16le", clip)
    if made.returncode:
        sys.exit(made.stderr)
    titles.write_text("1\n00:00:00,000 --> 00:00:00,800\nOne line\n\n2\n00:00:00,900 --> 00:00:01,000\nAnother\n")
    return clip, titles


def read_back(path):
    """The codecs in the file, by kind."""
    probe = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_type,codec_name", "-of", "json", path)
    if probe.returncode:
        return None, probe.stderr.strip().splitlines()[-1]
    streams = json.loads(probe.stdout).get("streams", [])
    return {(s["codec_type"], s.get("codec_name", "unknown")) for s in streams if s["codec_type"] != "data"}, ""


def export(program, source, target, *options):
    """One line of the table: what was asked, and whether it came back."""
    plan = run(program, source, target, "--json", *options)
    if plan.returncode:
        return "-", plan.stderr.strip().removeprefix("norvex-export: ")
    document = json.loads(plan.stdout)
    asked = {(s["type"].replace("subtitles", "subtitle"), SAME.get(c, c))
             for s in document["streams"] for c in [s["settled"]["codec_id"]]}
    words = ", ".join(codec for _, codec in sorted(asked, reverse=True))
    found, failure = read_back(target)
    if found is None:
        return words, failure
    return words, "" if asked == found else "read back as " + ", ".join(sorted(codec for _, codec in found))


def main():
    program, rules, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    folder.mkdir(parents=True, exist_ok=True)
    clip, titles = make_inputs(folder)
    book = json.loads(run(rules, "json").stdout)
    rows = []

    def add(name, source, target, *options):
        asked, failure = export(program, source, target, *options)
        rows.append((name, asked, failure))

    for container in book["formats"]:
        name = container["id"]
        source = clip if container["video"] or container["audio"] else titles
        add(name, source, folder / f"{name}.{EXTENSIONS.get(name, name)}", "--format", name)
    for kind, codecs, option in (("video", "videoCodecs", "--video"), ("audio", "audioCodecs", "--audio")):
        for codec in book[codecs]:
            carriers = [f["id"] for f in book["formats"] if f[kind] and codec["id"] in f[kind]["codecs"]]
            # A film container where there is one: not every player of pictures or sound says what it has read.
            liked = [c for c in ("matroska", "mov", "avi", codec["id"]) if c in carriers] + [c for c in carriers if c != "qfx"]
            if codec["id"] == "auto" or not liked:
                rows.append((f"{kind} {codec['id']}", "-", "" if codec["id"] == "auto" else "no container carries it"))
                continue
            add(f"{kind} {codec['id']} in {liked[0]}", clip,
                folder / f"{kind}-{codec['id']}.{EXTENSIONS.get(liked[0], liked[0])}", "--format", liked[0],
                option, codec["id"])
    width = max(len(name) for name, _, _ in rows)
    for name, asked, failure in rows:
        print(f"{name:<{width}}  {'went' if not failure else 'NOT '}  {asked:<28} {failure}".rstrip())
    went = sum(not failure for _, _, failure in rows)
    print(f"{went} of {len(rows)} went")


main()
