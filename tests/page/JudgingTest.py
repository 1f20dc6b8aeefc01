#!/usr/bin/env python3
"""What the page's own judge says of presets, held against `norvex-rules check`: JudgingTest.py NODE NORVEX_RULES
JUDGE_JS COUNT [SEED] draws that many presets and asks the judge in Node.js. PageTest.py asks the one in the page."""
import collections
import copy
import json
import random
import subprocess
import sys

# What comes of a preset's document: its text in, what the judge says out.
ANSWER = """(judge, text) => {
  const tell = (found) => found.map((one) => ({helper: one.helper, kind: one.kind, path: one.path, allowed: one.words, message: one.message}));
  try {
    const {broken, open, left, preset} = judge.mend(judge.readPreset(text));
    return {broken: tell(broken), open: tell(open), left: tell(left), mended: judge.writePreset(preset)};
  } catch (failure) {
    return {refused: String(failure.stack)};
  }
}"""
SECTIONS = {"format": ("formats", "container"), "video_codec": ("videoCodecs", "codec_id"), "audio_codec": ("audioCodecs", "codec_id")}
STREAMS = {"video": "video_codec", "audio": "audio_codec", "subtitles_text": "subtitle_codec"}


class Drawing:
    """Presets as people might write them, with a few faults in most."""

    def __init__(self, book, seed):
        self.book, self.random = book, random.Random(seed)
        # A container may carry one for which presets have no name.
        self.subtitles = [codec["id"] for codec in book["subtitleCodecs"] if codec["id"] not in ("ttml", "webvtt")]
        # What some rule or constraint allows at each path of a preset.
        self.allowed = collections.defaultdict(list)
        for kind in ("formats", "videoCodecs", "audioCodecs", "filters"):
            section = next((name for name, (listed, _) in SECTIONS.items() if listed == kind), None)
            for helper in book[kind]:
                for one in helper["constraints"]:
                    self.allowed[f"{section or helper['id']}/{one['path']}"].append(one.get("widened", one["allowed"]))
                for rule in helper["rules"]:
                    self.allowed[rule["path"]].append(rule["allowed"])

    def is_so(self, chance):
        return self.random.random() < chance

    def odd_value(self):
        return self.random.choice([0, -1, 7, 44100.0, 2.5, True, "", "nonsense", "30/1", "25", "Auto", "128000", 2**31, {"$text": "1/2"}, {"$none": True}, "long " * 30 + "\n\u200e"])

    def value_at(self, path, default):
        if self.is_so(0.2):
            return self.odd_value()
        choices = [value for one in self.allowed[path][:40] for value in self.values_of(one)]
        return self.random.choice(choices) if choices and self.is_so(0.85) else default

    def values_of(self, allowed):
        values = [self.random.choice([one["value"], one["name"]]) for one in allowed.get("values", []) if not isinstance(one["value"], dict)]
        if "min" in allowed:
            ends = (allowed["min"], allowed["max"])
            values += [end + step for end in ends for step in (-1, 0, 1) if abs(end) < 2**53] + [self.random.randint(*(int(max(-1e9, min(end, 1e9))) for end in ends))]
        if allowed["class"] == "multiple":
            values += [allowed["divisor"] * self.random.randint(1, 60) + allowed["rest"] + step for step in (0, 0, 1)]
        return values + [one["name"] for one in allowed.get("values", []) if isinstance(one["value"], dict)]

    def set_at(self, tree, path, value):
        *above, name = path.split("/")
        for step in above:
            tree = tree.setdefault(step, {})
        tree[name] = value

    def section(self, kind, helper, path):
        """The helper's defaults, or little of them, with other values here and there, and now and then what only its like have."""
        section = copy.deepcopy(helper["defaults"]) if self.is_so(0.7) else {}
        section.pop("streams", None)
        if kind in SECTIONS:
            section = {SECTIONS[kind][1]: helper["id"], **section}
        like = helper
        if kind in SECTIONS and self.is_so(0.15):
            like = self.random.choice(self.book[SECTIONS[kind][0]])
        leaves = [name for name, parameter in like["parameters"].items() if parameter["type"] != "node" and name not in ("container", "codec_id")]
        for name in self.random.sample(leaves, min(len(leaves), self.random.randint(0, 4))):
            self.set_at(section, name, self.value_at(f"{path}/{name}", 1))
        for name in list(section):
            if name not in ("container", "codec_id") and self.is_so(0.05):
                del section[name]
        return section

    def codec(self, kind, carried):
        codecs = self.book[SECTIONS[kind][0]]
        fitting = [one for one in codecs if carried and one["id"] in carried["codecs"]]
        return self.random.choice(fitting if fitting and self.is_so(0.8) else codecs)

    def stream(self, format):
        kind = self.random.choice(["video", "audio", "audio", "subtitles_text"])
        stream, section = {"type": kind}, STREAMS[kind]
        if kind == "subtitles_text":
            stream[section] = {"codec_id": self.random.choice(self.subtitles)}
        elif self.is_so(0.9):
            codec = self.codec(section, format[kind])
            stream[section] = self.section(section, codec, section) if self.is_so(0.4) else {"codec_id": codec["id"]}
        return stream

    def preset(self):
        preset = {}
        format = self.random.choice(self.book["formats"])
        if self.is_so(0.85):
            preset["format"] = self.section("format", format, "format")
            if self.is_so(0.4):
                names = self.random.sample(["0", "1", "2", "3", "10", "a"], self.random.randint(0, 4))
                preset["format"]["streams"] = {name: self.stream(format) for name in names}
        for kind, carried in (("video_codec", "video"), ("audio_codec", "audio")):
            if self.is_so(0.75):
                preset[kind] = self.section(kind, self.codec(kind, format[carried]), kind)
        if self.is_so(0.1):
            preset["subtitle_codec"] = {"codec_id": self.random.choice(self.subtitles)}
        for filter in self.book["filters"]:
            if self.is_so(0.6):
                preset[filter["id"]] = self.section(filter["id"], filter, filter["id"])
        sections = list(preset.items())
        self.random.shuffle(sections)
        return json.dumps({"norvex-preset": 2, "preset": dict(sections)}, ensure_ascii=self.is_so(0.5))


def check(program, text):
    told = subprocess.run([program, "check", "--json", "-"], input=text, capture_output=True, text=True)
    if told.returncode not in (0, 1) or not told.stdout:
        return {"refused": told.stderr}
    answer = json.loads(told.stdout)
    for part in ("broken", "open", "left"):
        for finding in answer[part]:
            del finding["value"]  # of which the message speaks
    del answer["changed"]
    return answer


def differences(program, documents, answers):
    """What the judge says otherwise than the program, and how many were refused, were broken, and stayed so."""
    found, counts = [], collections.Counter(presets=len(documents))
    for text, answer in zip(documents, answers, strict=True):
        wanted = check(program, text)
        counts.update({part: bool(wanted.get(part)) for part in ("refused", "broken", "open", "left")})
        if "mended" in answer:
            answer["mended"] = json.loads(answer["mended"])
        for part in wanted:
            said, known = (json.dumps(one.get(part), sort_keys=True) for one in (answer, wanted))  # 1 and 1.0 are two texts
            same = "refused" in answer if part == "refused" else said == known
            if not same:
                found.append(f"{part} of {text}\n  page:    {json.dumps(answer.get(part, answer))}\n  program: {json.dumps(wanted[part])}")
    return found, counts


def judge(program, book, count, seed, ask):
    """`ask` gives the judge's answers to documents. Ends the program where one differs."""
    drawing = Drawing(book, seed)
    documents = [drawing.preset() for _ in range(count)]
    found, counts = differences(program, documents, ask(documents))
    print(f"{len(found)} differences over {dict(counts)}")
    if found or counts["refused"] * 5 > count or counts["broken"] * 3 < count or counts["open"] == 0:
        sys.exit("\n".join(found[:5]) or "the presets tell nothing")


def main():
    node, program, script, count, seed = *sys.argv[1:5], (sys.argv[5:] or ["1"])[0]
    book = json.loads(subprocess.run([program, "json"], check=True, capture_output=True).stdout)

    def ask(documents):
        code = f"""{open(script, encoding="utf-8").read()}
            const {{book, documents}} = JSON.parse(require("fs").readFileSync(0, "utf8"));
            const judge = makeJudge(book);
            process.stdout.write(JSON.stringify(documents.map((text) => ({ANSWER})(judge, text))));"""
        given = json.dumps({"book": book, "documents": documents})
        return json.loads(subprocess.run([node, "-e", code], input=given, check=True, capture_output=True, text=True).stdout)

    judge(program, book, int(count), int(seed), ask)


if __name__ == "__main__":
    main()
