#!/usr/bin/env python3
"""Whole exports beside the ffmpeg command with the same settings, in turn in one run.

exports.py NORVEX_EXPORT FOLDER BENCH_JSON: makes the inputs in FOLDER, prints a table, and adds its rows to BENCH_JSON.
"""
import json
import os
import pathlib
import statistics
import subprocess
import sys
import time

ROUNDS = 5
PICTURE = ["-f", "lavfi", "-i", "testsrc2=s=1280x720:r=25:d=12"]
SOUND = ["-f", "lavfi", "-i", "aevalsrc='0.3*sin(440*t)+0.2*sin(1000*t)|0.2*sin(650*t)':s=48000:d="]
FAST = ["-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac"]

# key, what, bound, input, what ffmpeg is told, what norvex-export is told
ROWS = [
    ("export.h264", "H.264 and AAC in MP4, 12 s of 720p", 1.0, "film.mp4", "o.mp4",
     ["-c:v", "libx264", "-preset", "faster", "-profile:v", "main", "-tune", "film", "-crf", "14", "-pix_fmt", "yuv420p",
      "-c:a", "aac", "-b:a", "256k", "-movflags", "+faststart"], []),
    ("export.mpeg2", "MPEG-2 and MP2 in a transport stream, 12 s of 720p", 1.0, "film.mp4", "o.ts",
     ["-c:v", "mpeg2video", "-b:v", "8M", "-g", "15", "-bf", "2", "-c:a", "mp2", "-b:a", "256k"],
     ["--video", "mpeg2", "--video-bitrate", "8M", "--audio", "mp2"]),
    ("export.prores", "ProRes and PCM in QuickTime, 12 s of 720p", 1.0, "film.mp4", "o.mov",
     ["-c:v", "prores", "-profile:v", "2", "-c:a", "pcm_s16le"], ["--video", "prores", "--audio", "pcm_s16le"]),
    ("export.sound", "MP3, ten minutes", 1.0, "sound.wav", "o.mp3", ["-c:a", "libmp3lame", "-b:a", "192k"],
     ["--audio-bitrate", "192k"]),
    ("export.copy", "an hour carried over to Matroska", 1.05, "hour.mp4", "o.mkv", ["-c", "copy"], ["--copy"]),
]


def ffmpeg(*arguments):
    return ["ffmpeg", "-nostdin", "-v", "error", "-y", *arguments]


def make_inputs(folder):
    def make(name, *arguments):
        if not (folder / name).exists():
            subprocess.run(ffmpeg(*arguments, name), cwd=folder, check=True)
    make("film.mp4", *PICTURE, *SOUND[:-1], SOUND[-1] + "12", *FAST)
    make("sound.wav", *SOUND[:-1], SOUND[-1] + "600")
    (folder / "list").write_text("file film.mp4\n" * 300)
    make("hour.mp4", "-f", "concat", "-i", "list", "-c", "copy")


def measure(command, folder, output):
    """Seconds, and the most memory in MB. What was written goes first: new pages of memory cost more than old ones."""
    (folder / output).unlink(missing_ok=True)
    os.sync()
    begin = time.monotonic()
    process = subprocess.Popen(command, cwd=folder, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"failed: {' '.join(command)}")
    return time.monotonic() - begin, usage.ru_maxrss / 1000


def main():
    program, folder, results = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    folder.mkdir(parents=True, exist_ok=True)
    make_inputs(folder)
    with open(results, encoding="utf-8") as file:
        bench = json.load(file)
    print(f"\n{'exports':<56}{'costs':>9}{'ffmpeg':>9}{'ratio':>8}{'bound':>8}{'memory':>9}")
    for key, what, bound, source, output, theirs, ours in ROWS:
        sides = {"ours": [program, source, output, "--quiet", *ours], "theirs": ffmpeg("-i", source, *theirs, output)}
        rounds = [{side: measure(command, folder, output) for side, command in sides.items()} for _ in range(ROUNDS)]
        cost, baseline = (statistics.median(one[side][0] for one in rounds) for side in ("ours", "theirs"))
        memory = max(one["ours"][1] for one in rounds)
        print(f"{what:<56}{cost:>7.2f} s{baseline:>7.2f} s{cost / baseline:>8.3f}{bound:>8.2f}{memory:>6.0f} MB", flush=True)
        bench["rows"][key] = {"what": what, "against": "the ffmpeg command", "ours": cost, "baseline": baseline,
                              "ratio": cost / baseline, "bound": bound, "needsIdleMachine": True}
    with open(results, "w", encoding="utf-8") as file:
        json.dump(bench, file, indent=2)


if __name__ == "__main__":
    main()
