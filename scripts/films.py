#!/usr/bin/env python3
"""Exports awkward films, and prints what came of each beside what the ffmpeg command makes of it.

films.py NORVEX_EXPORT FOLDER [WORD...]    with words, only the films that have one of them in their names
"""
import json
import pathlib
import struct
import subprocess
import sys

PICTURE = ["-f", "lavfi", "-i", "testsrc=s=320x180:r=25:d=2"]
SOUND = ["-f", "lavfi", "-i", "sine=r=48000:d=2"]
FAST = ["-pix_fmt", "yuv420p", "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac"]


def run(*command, cwd=None):
    return subprocess.run([str(part) for part in command], cwd=cwd, capture_output=True, text=True, timeout=300)


def turn(path):
    """Says in an MP4 that its picture lies on its side: the matrix in the header of its track."""
    film = bytearray(path.read_bytes())
    matrix = film.index(b"tkhd") + 44
    for place, number in ((0, 0), (4, 1), (12, -1), (16, 0)):
        film[matrix + place:matrix + place + 4] = struct.pack(">i", number * 65536)
    path.write_bytes(film)


def texts(folder):
    (folder / "a.srt").write_text("1\n00:00:00,500 --> 00:00:01,500\nOne line\n")
    (folder / "font.ttf").write_text("a font")
    (folder / "meta.txt").write_text(
        ";FFMETADATA1\ntitle=A film\ndate=2020-05-06\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=700\ntitle=One\n"
        "[CHAPTER]\nTIMEBASE=1/1000\nSTART=700\nEND=2000\ntitle=Two\n")


# name of the film, how ffmpeg makes it, and the outputs with the options of norvex-export
FILMS = [
    ("whole film.mkv",
     [*PICTURE, *PICTURE, *SOUND, *SOUND, "-i", "a.srt", "-i", "a.srt", "-f", "ffmetadata", "-i", "meta.txt",
      *(x for i in range(6) for x in ("-map", i)), "-map_metadata", 6, "-map_chapters", 6, *FAST, "-c:s:0", "srt",
      "-c:s:1", "ass", "-attach", "font.ttf", "-metadata:s:6", "mimetype=font/ttf", "-metadata:s:2", "language=eng",
      "-metadata:s:3", "language=ger", "-metadata:s:5", "language=ger", "-disposition:s:1", "forced"],
     ["o.mp4", "o.mkv", "o.mov", "o.webm", "o.ts", "o.avi", "o.mp3", "o.mkv --copy"]),
    ("on its side.mp4", [*PICTURE, *FAST], ["o.mp4", "o.mkv", "o.mov --copy", "o.png"]),
    ("two programmes.ts",
     [*PICTURE, *PICTURE, *SOUND, "-map", 0, "-map", 1, "-map", 2, "-pix_fmt", "yuv420p", "-c:v", "mpeg2video", "-c:a", "mp2",
      "-program", "title=One:st=0:st=2", "-program", "title=Two:st=1"], ["o.mkv", "o.mp4 --streams video,audio"]),
    ("late sound.mkv", [*PICTURE, "-itsoffset", "0.5", *SOUND, "-map", 0, "-map", 1, *FAST],
     ["o.mp4", "o.mkv", "o.mkv --copy"]),
    ("from ten seconds.ts", [*PICTURE, *SOUND, "-output_ts_offset", 10, "-pix_fmt", "yuv420p", "-c:v", "mpeg2video", "-c:a", "mp2"],
     ["o.mp4", "o.mkv"]),
    ("HDR.mkv", [*PICTURE, "-pix_fmt", "yuv420p10le", "-c:v", "libx265", "-x265-params",
                 "log-level=none:colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc:max-cll=1000,400:"
                 "master-display=G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,1)"],
     ["o.mp4 --video hevc", "o.mp4", "o.mov --video prores", "o.mkv --copy"]),
    ("full range.mkv", [*PICTURE, "-pix_fmt", "yuvj420p", "-c:v", "mjpeg"], ["o.mp4", "o.jpg"]),
    ("ten bits of 4-2-2.mov", [*PICTURE, "-pix_fmt", "yuv422p10le", "-c:v", "prores_ks"],
     ["o.mp4", "o.mov --video prores", "o.mkv --video ffv1"]),
    ("alpha.mov", [*PICTURE, "-vf", "format=yuva444p10le", "-c:v", "prores_ks", "-profile:v", "4444"],
     ["o.mp4", "o.mov --video prores", "o.webm", "o.png", "o.webp"]),
    ("animation.gif", PICTURE, ["o.mp4", "o.webm", "o.mov --video prores"]),
    ("gray.mkv", [*PICTURE, "-pix_fmt", "gray", "-c:v", "ffv1"], ["o.mp4", "o.mov --video prores", "o.webm", "o.jpg"]),
    ("RGB.mkv", [*PICTURE, "-pix_fmt", "gbrp", "-c:v", "ffv1"],
     ["o.mp4", "o.mov --video prores", "o.webm", "o.jpg", "o.png"]),
    ("red of 720 lines.png", ["-f", "lavfi", "-i", "color=red:s=1280x720", "-frames:v", 1], ["o.jpg", "o.mp4"]),
    ("interlaced.ts", [*PICTURE, "-vf", "tinterlace=interleave_top,fieldorder=tff", "-pix_fmt", "yuv420p", "-c:v", "mpeg2video", "-flags",
                       "+ildct+ilme"], ["o.ts", "o.mp4", "o.webm"]),
    ("anamorphic.mkv", ["-f", "lavfi", "-i", "testsrc=s=720x576:d=1", "-vf", "setsar=64/45", *FAST],
     ["o.mp4", "o.flv", "o.avi"]),
    ("5.1.mkv", ["-f", "lavfi", "-i", "anoisesrc=d=1:r=48000", "-af", "aformat=channel_layouts=5.1(side)", "-c:a",
                 "ac3"], ["o.mp4", "o.mp3", "o.mp4 --copy", "o.ts"]),
    ("tall.png", ["-f", "lavfi", "-i", "testsrc=s=4000x6000", "-frames:v", 1], ["o.mp4", "o.jpg"]),
    ("flat.png", ["-f", "lavfi", "-i", "testsrc=s=640x20", "-frames:v", 1], ["o.mp4", "o.jpg"]),
    ("tiny.mkv", ["-f", "lavfi", "-i", "testsrc=s=3x5:d=1", "-c:v", "ffv1"], ["o.mp4", "o.png", "o.gif"]),
]


def described(path):
    """The streams in short, as ffprobe has them."""
    probe = run("ffprobe", "-v", "error", "-show_streams", "-show_format", "-show_chapters", "-show_entries",
                "stream_side_data", "-of", "json", path)
    if probe.returncode:
        return "cannot be read"
    file = json.loads(probe.stdout)
    words = []
    for stream in file["streams"]:
        if stream.get("codec_name") == "bin_data":
            continue
        tags, kind = stream.get("tags", {}), stream["codec_type"]
        word = [stream.get("codec_name", kind)]
        if kind == "video":
            word += [f"{stream['width']}x{stream['height']}", stream.get("pix_fmt", "?")]
            if stream.get("sample_aspect_ratio", "1:1") not in ("1:1", "0:1", "N/A"):
                word.append("pixels " + stream["sample_aspect_ratio"])
            if stream.get("field_order", "progressive") not in ("progressive", "unknown"):
                word.append("interlaced")
            colours = [stream.get(key) for key in ("color_range", "color_space", "color_transfer")]
            colours = [c for c in colours if c not in (None, "unknown")]
            if colours:
                word.append("/".join(colours))
        if kind == "audio":
            word += [f"{stream['sample_rate']} Hz", stream.get("channel_layout", str(stream["channels"]))]
        for data in stream.get("side_data_list", []):
            if "rotation" in data:
                word.append(f"turned by {data['rotation']}")
            elif "metadata" in data.get("side_data_type", ""):
                word.append(data["side_data_type"].split()[0].lower())
        word += [tags[key] for key in ("language", "title") if tags.get(key, "und") != "und"]
        word += [name for name in ("attached_pic", "forced") if stream["disposition"].get(name)]
        if kind in ("video", "audio") and abs(float(stream.get("start_time", 0))) >= 0.01:
            word.append(f"from {float(stream['start_time']):.2f} s")
        words.append(" ".join(word))
    ends = [f"{len(file['chapters'])} chapters"] if file["chapters"] else []
    return "; ".join(words + ends)


def attempt(folder, path, *command):
    (folder / path).unlink(missing_ok=True)
    made = run(*command, cwd=folder)
    if made.returncode == 0:
        return described(folder / path), made
    line = made.stderr.strip().splitlines()[-1] if made.stderr.strip() else f"status {made.returncode}"
    return "fails: " + line.removeprefix("norvex-export: "), made


def main():
    program, folder, words = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]), sys.argv[3:]
    folder.mkdir(parents=True, exist_ok=True)
    texts(folder)
    print("| film | to | norvex-export | ffmpeg |\n|---|---|---|---|")
    for name, make, outputs in FILMS:
        if words and not any(word in name for word in words):
            continue
        made = run("ffmpeg", "-nostdin", "-v", "error", "-y", *make, name, cwd=folder)
        if made.returncode:
            sys.exit(f"{name}: {made.stderr}")
        if name == "on its side.mp4":
            turn(folder / name)
        for output in outputs:
            target, *options = output.split()
            ours, plan = attempt(folder, target, program, name, target, "--json", *options)
            notes = json.loads(plan.stdout)["notes"] if plan.returncode == 0 else []
            codecs = {"--video": "-c:v", "--copy": "-c", "--profile": None, "--streams": None}
            theirs = ["-map", "0"] if target[2:] in ("mp4", "mkv", "mov", "webm", "ts", "avi", "flv") else []
            for option, value in zip(options, options[1:] + [""]):
                if codecs.get(option):
                    theirs += [codecs[option], "copy" if option == "--copy" else value]
            if target[2:] in ("png", "jpg", "webp"):
                theirs += ["-frames:v", "1"]
            other, _ = attempt(folder, target, "ffmpeg", "-nostdin", "-v", "error", "-y", "-i", name, *theirs, target)
            told = "".join(f"<br>*{note}*" for note in notes if "could go over unchanged" not in note)
            print(f"| {name} | `{output[2:]}` | {ours}{told} | {'the same' if other == ours else other} |", flush=True)


if __name__ == "__main__":
    main()
