#!/usr/bin/env python3
"""Checks each preset that comes with the programs, exports a clip with it, and holds what ffprobe says of the output
against what the preset's document says. Prints the table of docs/presets.md.

Presets.py NORVEX_EXPORT NORVEX_RULES PRESETS FOLDER [bitrates]    with the word, the bitrates of pictures too, which
                                                                  wants some seconds of noise for each
"""
import fractions
import json
import pathlib
import subprocess
import sys

EXPORT, RULES, PRESETS, FOLDER = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]), pathlib.Path(sys.argv[4])
PROFILES = {"high": "High", "main": "Main", "baseline": "Constrained Baseline", "main10": "Main 10", "422": "Standard",
            "dnxhr_hq": "DNXHR HQ"}
CLIP = (1920, 1080)
NOISE_SECONDS = 8
STILLS = ("mjpeg", "png")
CHANNELS = {"mono": 1, "stereo": 2}
EXACT = ("mp2", "mp3", "ac3")  # of which ffprobe reads the bitrate out of each packet


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=300)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(str(part) for part in command)}: {done.stdout}{done.stderr}")
    return done.stdout


def probe(output, *what):
    return json.loads(run("ffprobe", "-v", "error", *what, "-of", "json", output))


def size_of(resize):
    """What the mode makes of the clip."""
    width, height = resize["width"], resize["height"]
    if resize["mode"] == "letterbox":
        return width, height
    factor = min(1, width / CLIP[0], height / CLIP[1])
    return round(CLIP[0] * factor), round(CLIP[1] * factor)


def picture_faults(preset, stream):
    codec = preset["video_codec"]
    yield "codec", codec["codec_id"], stream["codec_name"]
    if "filter_resize" in preset:
        yield "size", size_of(preset["filter_resize"]["resize"]), (stream["width"], stream["height"])
    rate = preset.get("filter_rate", {}).get("frame_rate", "25/1")
    # Of few pictures of MPEG-1, later majors take the fields for the base.
    yield "rate", rate, rate if rate == stream["avg_frame_rate"] else stream["r_frame_rate"]
    profile = codec.get("encode_options", {}).get("profile")
    if profile:
        yield "profile", PROFILES[profile], stream.get("profile")


def sound_faults(preset, stream):
    codec, resample = preset["audio_codec"], preset.get("filter_resample", {}).get("resample", {})
    yield "codec", codec["codec_id"], stream["codec_name"]
    yield "channels", CHANNELS[resample.get("channel_layout", "stereo")], stream["channels"]
    yield "sample rate", resample.get("sample_rate", 44100), int(stream["sample_rate"])
    if codec["codec_id"] in EXACT:
        yield "bitrate", codec["bitrate"], int(stream["bit_rate"])


def picture_text(stream):
    profile = stream.get("profile", "")
    name = stream["codec_name"] + (f" ({profile})" if profile not in ("", "unknown", stream["codec_name"]) else "")
    rate = "" if name.startswith(STILLS) else f"{float(fractions.Fraction(stream['r_frame_rate'])):.5g} fps, "
    return f"{name}, {stream['width']}x{stream['height']}, {rate}{stream['pix_fmt']}"


def sound_text(stream):
    rate = f", {int(stream['bit_rate']) // 1000} kbit/s" if stream["codec_name"] in EXACT else ""
    return f"{stream['codec_name']}, {stream['sample_rate']} Hz, {'mono' if stream['channels'] == 1 else 'stereo'}{rate}"


def flat(section):
    return {**{tag: value for tag, value in section.items() if tag != "encode_options"}, **section.get("encode_options", {})}


def picture_bitrate(choose):
    """Of a picture with some noise, on which an encoder spends what it may and needs no more."""
    output = FOLDER / "noise.out"
    run(EXPORT, FOLDER / "noise.mov", output, *choose, "--quiet")
    packets = probe(output, "-select_streams", "v", "-show_entries", "packet=size")["packets"]
    return sum(int(packet["size"]) for packet in packets) * 8 // NOISE_SECONDS


def try_preset(path, clip):
    document = json.loads(path.read_text())
    preset, name = document["preset"], path.stem
    verdict = json.loads(run(RULES, "check", path, "--json"))
    faults = [finding["message"] for finding in verdict["broken"]]
    output = FOLDER / f"{name}.out"
    choose = ("--preset", path, "--format", preset["format"]["container"])
    plan = json.loads(run(EXPORT, clip, output, *choose, "--json"))
    for stream in plan["streams"]:
        # Of what a preset leaves out, the codec's own stands.
        settled = flat(stream["settled"])
        faults += [f"{tag}: {value}, but {settled.get(tag)} was settled"
                   for tag, value in flat(preset[stream["type"] + "_codec"]).items() if settled.get(tag) != value]
    bitrate = preset.get("video_codec", {}).get("bitrate")
    if bitrate and len(sys.argv) > 5:
        measured = picture_bitrate(choose)
        if abs(measured - bitrate) > 0.12 * bitrate:
            faults.append(f"pictures of {bitrate} bits per second, but {measured}")
    streams = probe(output, "-show_streams")["streams"]
    texts = {"video": "", "audio": ""}
    for kind, section, see, tell in (("video", "video_codec", picture_faults, picture_text),
                                     ("audio", "audio_codec", sound_faults, sound_text)):
        found = [stream for stream in streams if stream["codec_type"] == kind]
        if (section in preset) != (len(found) == 1):
            faults.append(f"{len(found)} streams of {kind}")
        elif found:
            faults += [f"{what}: {said}, but {is_}" for what, said, is_ in see(preset, found[0]) if said != is_]
            texts[kind] = tell(found[0])
    about = document["about"]
    print(f"| `{name}` | {about['purpose']} | {preset['format']['container']} | {texts['video']} | {texts['audio']} |",
          flush=True)
    return [f"{name}: {fault}" for fault in faults]


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    clip = FOLDER / "clip.mov"
    run("ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i", f"testsrc2=s={CLIP[0]}x{CLIP[1]}:r=25:d=0.4", "-f", "lavfi", "-i",
        "sine=r=44100:d=0.4", "-ac", 2, "-c:v", "mpeg4", "-q:v", 3, "-c:a", "pcm_s16le", clip)
    if len(sys.argv) > 5:
        run("ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i", f"testsrc2=s=1280x720:r=25:d={NOISE_SECONDS},noise=alls=25:allf=t",
            "-f", "lavfi", "-i", f"sine=d={NOISE_SECONDS}", "-ac", 2, "-c:v", "mpeg4", "-q:v", 2, "-c:a", "pcm_s16le", FOLDER / "noise.mov")
    print("| preset | purpose | container | picture | sound |\n|---|---|---|---|---|")
    faults = [fault for path in sorted(PRESETS.glob("*.json")) for fault in try_preset(path, clip)]
    print("\n".join(faults), file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
