#!/usr/bin/env python3
"""What 'norvex-rules fit' calls 'as it is', held against the muxers of the running FFmpeg.

Copies.py RULES EXPORT [all] [table] [WORD...]

A second of each codec that the ffmpeg command encodes is made, in the first container that takes it ('all': in every one
of SOURCES, since the tags differ). Each such file goes with 'norvex-export --copy' into each container that takes it as
it is, and with '--copy=all' into each that FFmpeg's muxer carries and the rule book refuses. What is read back must have
the packets of the source, or where a container frames the bits in its own way, the same pictures and sound. Every
failure that has no reason in REASONS is printed and makes the status 1; 'table' prints, grouped, what the rule book
refuses (docs/refused.md). Words keep to these codecs.
"""

import collections
import concurrent.futures
import json
import pathlib
import re
import subprocess
import sys
import tempfile

VIDEO = ["mp4", "mov", "avi", "mkv", "ts", "ogg", "flv", "asf", "mxf", "dv", "swf", "rm", "nut"]
AUDIO = ["mp4", "mov", "wav", "mkv", "ts", "ogg", "flv", "asf", "aiff", "caf", "au", "rm", "nut", "flac", "amr"]
TEXTS = ["mkv", "mp4", "srt", "ass", "vtt", "nut"]
PICTURES = "-f lavfi -i testsrc=s={}:r={}:d=1 -pix_fmt yuv420p"
SOUND = "-f lavfi -i sine=d=1:r={} -ac {}"
FORMS = {
    "video": [PICTURES.format("176x144", 25), PICTURES.format("176x144", 25).rsplit(" -", 1)[0],
              PICTURES.format("720x576", 25), PICTURES.format("1280x720", 25).replace("420p", "422p") + " -b:v 90M"],
    "audio": [SOUND.format(48000, 2), SOUND.format(44100, 2), SOUND.format(16000, 1), SOUND.format(8000, 1)],
    "subtitle": ["-i lines.srt"],
}
LINES = "1\n00:00:00,000 --> 00:00:00,800\nOne line\n\n2\n00:00:00,900 --> 00:00:01,000\nAnother\n\n"

# What a failure's name matches, and why what is read back is not what was carried over. docs/sweep.md has them too.
REASONS = {
    "mxf pcm_": "MXF has no sound without a picture",
    "mxf h264": "MXF has H.264 of start codes alone, as transport streams have it",
    ".* aac from rm": "packets of RealMedia hold several of AAC",
    ".* aac from wav": "FFmpeg writes AAC to WAV so that the packets cannot be told apart",
    ".* flac from asf": "FFmpeg reads wrong times of FLAC from ASF",
    ".* opus from caf": "CAF has no header of Opus",
    ".* mpeg4 from flv": "FFmpeg writes no header of MPEG-4 to FLV",
    "caf .* from nut": "CAF wants to be told how long packets are, which NUT does not",
    ".* (h264|mpeg2video) from (avi|asf)": "AVI and ASF do not tell when pictures are shown: they are encoded",
}


def run(*command, **options):
    try:
        return subprocess.run(command, capture_output=True, text=True, errors="replace", stdin=subprocess.DEVNULL,
                              timeout=60, **options)
    except subprocess.TimeoutExpired:
        return subprocess.CompletedProcess(command, 1, "", "it came to no end")


def codecs():
    """The codecs that can be encoded and decoded, with their kinds."""
    kinds = {"V": "video", "A": "audio", "S": "subtitle"}
    for line in run("ffmpeg", "-v", "error", "-codecs").stdout.splitlines():
        found = re.match(r" DE([VAS])... (\S+)", line)
        if found:
            yield found[2], kinds[found[1]]


def codec_of(path):
    probed = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_name", "-of", "csv=p=0", path)
    return probed.stdout.replace(",", " ").split()[:1]


def is_sound(path, kind):
    """Whether FFmpeg wrote what it reads: of FLAC in CAF it makes two days, and of AAC in WAV nothing."""
    probed = run("ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path)
    return not re.match(r"\d{2}", probed.stdout) and (kind == "subtitle" or not hashes(path, kind).startswith("unread"))


def make(folder, codec, kind, container):
    path = f"{folder}/{codec}.{container}"
    flag = {"video": "-c:v", "audio": "-c:a", "subtitle": "-c:s"}[kind]
    for form in FORMS[kind]:
        made = run("ffmpeg", "-v", "error", "-y", *form.split(), flag, codec, "-strict", "-2", path, cwd=folder)
        if made.returncode == 0 and codec_of(path) == [codec] and is_sound(path, kind):
            return path
    return None


def hashes(path, kind, *options):
    """The bytes of the stream's packets with "-c copy", or else what is decoded of them."""
    read = run("ffmpeg", "-v", "error", "-flags2", "+skip_manual", "-i", path, "-map", f"0:{kind[0]}:0", *options,
               "-f", "streamhash", "-")
    return read.stdout.strip() if read.returncode == 0 else "unreadable: " + read.stderr.strip()[-80:]


class Carrier:
    def __init__(self, folder, rules, export):
        self.folder, self.rules, self.export = folder, rules, export
        self.failures, self.tried, self.refused = [], 0, collections.defaultdict(lambda: collections.defaultdict(set))

    def carry(self, path, codec, kind):
        source = hashes(path, kind, "-c", "copy")
        shown = None
        told = run(self.rules, "fit", path, "--json")
        if told.returncode:
            self.failures.append((codec, told.stderr.strip()))
            return
        for fit in json.loads(told.stdout)["formats"]:
            stream, format_id = fit["streams"][0], fit["id"]
            if stream["answer"] not in ("as_it_is", "refused") or stream["onePicture"]:
                continue
            isRefused = stream["answer"] == "refused"
            out = f"{path}.{format_id}"
            made = run(self.export, path, out, "--format", format_id, "--copy=all" if isRefused else "--copy", "--json")
            self.tried += 1
            what = f"{format_id} {codec} from {path.rsplit('.')[-1]}" + (", refused" if isRefused else "")
            if made.returncode:
                told = made.stderr.strip()
            elif not json.loads(made.stdout)["streams"][0]["copied"]:
                told = " ".join(json.loads(made.stdout)["notes"])
            elif hashes(out, kind, "-c", "copy") == source:
                told = ""
            elif kind == "subtitle":
                told = f"reads as {codec_of(out)}, other lines" if lines(out) != lines(path) else ""
            else:
                shown = shown or hashes(path, kind)
                other = hashes(out, kind)
                told = "" if other == shown else f"reads as {codec_of(out)}: {other}, not {shown}"
            pathlib.Path(out).unlink(missing_ok=True)
            if told:
                self.failures.append((what, told))
            elif isRefused:
                clause = stream["reason"].split(" refuses it: ")[1]
                clause = re.sub(r"its tag .+?( to another codec| is not wanted|$)", r"its tag\1", clause)
                clause = clause.replace(f"the name {format_id}", "its name").replace(f" {format_id}", " it")
                self.refused[clause][format_id].add(codec)


def lines(path):
    return run("ffmpeg", "-v", "error", "-i", path, "-f", "srt", "-").stdout


def print_table(refused):
    """The clauses, with the containers that refuse the same codecs by them in one row."""
    print("\n| why the rule book refuses | containers | codecs |\n|---|---|---|")
    for clause, formats in sorted(refused.items()):
        rows = collections.defaultdict(list)
        for format_id, names in sorted(formats.items()):
            rows[", ".join(sorted(names))].append(format_id)
        for names, ids in rows.items():
            print(f"| {clause} | {', '.join(ids)} | {names} |")


def main():
    rules, export, *words = sys.argv[1:]
    modes = {mode for mode in ("all", "table") if mode in words}
    words = [word for word in words if word not in modes]
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(2) as pool:
        pathlib.Path(folder, "lines.srt").write_text(LINES)
        carrier = Carrier(folder, rules, export)

        def carry(codec, kind):
            made = 0
            for container in {"video": VIDEO, "audio": AUDIO, "subtitle": TEXTS}[kind]:
                path = make(folder, codec, kind, container)
                if path:
                    carrier.carry(path, codec, kind)
                    made += 1
                    if "all" not in modes:
                        break
            return codec if not made else None

        wanted = [(codec, kind) for codec, kind in codecs() if not words or codec in words]
        unmade = [name for name in pool.map(lambda one: carry(*one), wanted) if name]
    unknown = [(what, told) for what, told in carrier.failures
               if not any(re.match(pattern, what) for pattern in REASONS)]
    for what, told in sorted(unknown):
        print(f"{what}: {told}")
    print(f"{carrier.tried} copies of {len(wanted) - len(unmade)} codecs, {len(carrier.failures)} that did not go, "
          f"{len(unknown)} of them without a reason; not made: {' '.join(unmade) or 'none'}")
    if "table" in modes:
        print_table(carrier.refused)
    return 1 if unknown else 0


if __name__ == "__main__":
    sys.exit(main())
