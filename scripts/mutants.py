#!/usr/bin/python3
"""Puts simple faults into the sources one at a time, and prints which of them no test notices.

mutants.py [--seed N] [--count N] [FILE...]: of each folder of FILE (the library and what the programs share), COUNT
faults (60) drawn by SEED (1). The interpreter is Debian's, for which python3-clang-14 is packaged.

Everything is compiled once, with every fault in it, and an environment variable chooses one at run time: so constants
of the compiler become constants of the program, and static assertions are held while the program is loaded. What does
not compile so is left out and counted. A fault is tried with the tests that reach it, each of which is first run alone.
"""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import re
import shlex
import subprocess
import sys
import time

from clang import cindex
from clang.cindex import CursorKind as K

BUILD = pathlib.Path("build/mutants")
TREE = BUILD / "tree"
CORES = len(os.sched_getaffinity(0))
FILTER = "--gtest_filter="
# By the beginning of a path: what is built for it, and the tests that may see it.
TESTS = {"norvex/": (["unit", "real", "modern", "registration", "book", "names", "fuzzers"],
                     r"^(unit|real|modern|registration|book|names|fuzz)\."),
         "apps/": (["apps", "fuzzers"], r"^(apps|fuzz)\.")}
TURNED = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&"}
PER_FILE = 4096
HEADER = r"""#pragma once
#include <cstdio>
#include <cstdlib>
#include <vector>
namespace NorvexFaults {
struct State {
    const char* chosen = std::getenv("NORVEX_FAULT");
    const int fault = chosen != nullptr ? std::atoi(chosen) : -1;
    const char* const reached = std::getenv("NORVEX_FAULTS_REACHED");
    std::vector<char> seen = std::vector<char>(reached != nullptr ? 1 << 21 : 0);
};
inline State& TheState() {
    static State* const state = new State;
    static const int atExit = state->reached == nullptr ? 0 : std::atexit([] {
        std::FILE* const file = std::fopen(state->reached, "a");
        for (std::size_t i = 0; i < state->seen.size(); ++i) if (state->seen[i] != 0) std::fprintf(file, "%zu\n", i);
        std::fclose(file);
    });
    (void)atExit;
    return *state;
}
inline bool Fault(int number) {
    State& state = TheState();
    if (state.reached != nullptr) state.seen[static_cast<std::size_t>(number)] = 1;
    return state.fault == number;
}
inline bool Hold(bool held) { return held || (std::abort(), false); }
}
"""

Fault = collections.namedtuple("Fault", "path line what")


class Source:
    """One source with all its faults."""

    def __init__(self, path, number, arguments):
        self.path, self.number = path, number
        self.text = pathlib.Path(path).read_bytes()
        self.faults = {}
        self.marks = collections.defaultdict(list)  # by extent: what to do there, innermost last
        self.edits = {}  # words that are replaced as they are
        self.look(cindex.Index.create().parse(path, args=arguments).cursor)

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def plain(self, span):
        return self.text[slice(*span)].decode()

    def new(self, offset, what):
        number = self.number * PER_FILE + len(self.faults)
        self.faults[number] = Fault(self.path, self.text[:offset].count(b"\n") + 1, " ".join(what.split()))
        return number

    def mark(self, span, kind, number, *more):
        self.marks[span].append((kind, number, *more))

    def look(self, cursor, parent=None, quiet=False):
        for child in cursor.get_children():
            if child.extent.start.file is None or child.extent.start.file.name != self.path:
                continue
            start, end = self.span(child)
            # An atomic that is there before anything runs would be made too late.
            quiet_child = quiet or child.kind in (K.ENUM_DECL, K.STATIC_ASSERT, K.TEMPLATE_NON_TYPE_PARAMETER) or \
                child.kind == K.VAR_DECL and child.type.spelling.startswith("std::atomic")
            if child.kind == K.STATIC_ASSERT and cursor.kind in (K.NAMESPACE, K.TRANSLATION_UNIT):
                self.edits[start, start + len("static_assert")] = \
                    f"[[maybe_unused]] static const bool norvexHeld{start} = NorvexFaults::Hold"
                message = re.search(rb',\s*"[^"]*"\s*\)$', self.text[start:end])
                if message:
                    self.edits[start + message.start(), end - 1] = ""
            if not quiet_child:
                self.see(child, cursor)
            if child.kind == K.CASE_STMT:
                for below in list(child.get_children())[1:]:
                    self.look_at_statement(below, child)
                continue
            before = len(self.faults)
            self.look(child, cursor, quiet_child)
            if len(self.faults) > before and child.kind in (K.VAR_DECL, K.FUNCTION_DECL, K.CXX_METHOD):
                head = re.match(rb"[^({=]*?\bconstexpr\b", self.text[start:end])
                if head:
                    is_member = cursor.kind in (K.CLASS_DECL, K.STRUCT_DECL)
                    is_const = self.text[start + head.end():].startswith(b" const ")
                    self.edits[start + head.end() - len("constexpr"), start + head.end()] = \
                        ("inline " if is_member or child.kind != K.VAR_DECL else "") + \
                        ("const" if child.kind == K.VAR_DECL and not is_const else "")

    def look_at_statement(self, cursor, parent):
        self.see(cursor, parent)
        self.look(cursor, parent)

    def see(self, cursor, parent):
        start, end = span = self.span(cursor)
        text = self.plain(span)
        if cursor.kind in (K.INTEGER_LITERAL, K.FLOATING_LITERAL, K.CXX_BOOL_LITERAL_EXPR):
            is_bound = parent.kind == K.VAR_DECL and element_of(parent.type) and \
                not self.text[:start].rstrip().endswith((b"=", b"{"))
            if re.fullmatch(r"[0-9][\w.']*|true|false", text) and self.text[start - 1:start] != b"<" and not is_bound:
                moved = {"true": "false", "false": "true"}.get(text) or \
                    (f"{text} + 1" if cursor.kind == K.INTEGER_LITERAL or float(text) == 0 else f"{text} * 1.1")
                self.mark(span, "?", self.new(start, f"{text} became {moved}"), moved)
        elif cursor.kind in (K.BINARY_OPERATOR, K.CALL_EXPR):
            sides = list(cursor.get_arguments()) if cursor.kind == K.CALL_EXPR else list(cursor.get_children())
            if len(sides) == 2 and (cursor.kind == K.BINARY_OPERATOR or cursor.spelling.startswith("operator")):
                left, right = self.span(sides[0]), self.span(sides[1])
                sign = self.plain((left[1], right[0])).strip()
                if sign in TURNED and left[0] == start and right[1] == end:
                    turned = f"{self.plain(left)} {TURNED[sign]} {self.plain(right)}"
                    self.mark(span, "?", self.new(left[1], f"{sign} became {TURNED[sign]} in: {text}"), turned)
        elif cursor.kind == K.IF_STMT:
            condition = next(cursor.get_children())
            if condition.kind not in (K.VAR_DECL, K.DECL_STMT) and not text.startswith("if constexpr") and \
                    ";" not in self.plain((start, self.span(condition)[0])):
                self.mark(self.span(condition), "&", self.new(start, f"dropped: {text.splitlines()[0]}"))
        if cursor.kind == K.COMPOUND_STMT:
            self.see_lines([(self.span(child), child) for child in cursor.get_children()])
        elif cursor.kind == K.IF_STMT:
            for child in list(cursor.get_children())[1:]:
                self.see_lines([(self.span(child), child)])
        elif cursor.kind == K.INIT_LIST_EXPR:
            self.see_entries(cursor)

    def see_lines(self, children):
        """Lines that can be dropped, or swapped with the next. Assignments are not swapped: hardly any would tell; that
        room was not reserved, none would."""
        lines = []
        for (start, end), child in children:
            rest = re.match(rb"\s*;", self.text[end:])
            is_line = child.kind.is_expression() and rest is not None and b".reserve(" not in self.text[start:end]
            is_call = is_line and re.match(rb"[\w:.]+\(", self.text[start:end]) is not None
            lines.append(((start, end + rest.end()), is_call) if is_line else (None, False))
        for i, (line, is_call) in enumerate(lines):
            if line is None:
                continue
            self.mark(line, ";", self.new(line[0], f"dropped: {self.plain(line)}"), "")
            if i + 1 < len(lines) and is_call and lines[i + 1][1]:
                following = lines[i + 1][0]
                number = self.new(line[0], f"swapped with the next: {self.plain(line)}")
                self.mark(line, ";", number, self.plain(following))
                self.mark(following, ";", number, self.plain(line))

    def see_entries(self, cursor):
        """Entries of a list that can be lost, or swapped with the next."""
        entries = list(cursor.get_children())
        element = element_of(cursor.type).replace("(anonymous namespace)::", "").removeprefix("const ")
        spans = [self.span(entry) for entry in entries]
        texts = [self.plain(span) for span in spans]
        if len(entries) < 2 or len(set(spans)) < len(spans) or "" in texts:
            return
        if any(text.startswith("{") for text in texts):
            if not element or not all(text.startswith("{") for text in texts):
                return
        elif not element and len({entry.type.get_canonical().spelling for entry in entries}) > 1:
            return
        typed = [element + text if text.startswith("{") else text for text in texts]
        for i, span in enumerate(spans):
            if i + 1 == len(spans):
                self.mark(span, "?", self.new(span[0], f"entry lost: {texts[i]}"), typed[i - 1], element)
            elif texts[i] != texts[i + 1]:
                self.mark(span, "?", self.new(span[0], f"entry lost: {texts[i]}"), typed[i + 1], element)
                if re.match("AV_(CODEC_ID|PIX_FMT)_", texts[i]):
                    continue  # of FFmpeg's numbers there are sets alone
                number = self.new(span[0], f"entry swapped with the next: {texts[i]}")
                self.mark(span, "?", number, typed[i + 1], element)
                self.mark(spans[i + 1], "?", number, typed[i], element)

    def rendered(self, span, without, own=False):
        """The text of an extent with the faults in it. Each stands on a line of its own, by which an error is told."""
        if not own and span in self.marks:
            text = self.rendered(span, without, True)
            for kind, number, *more in reversed(self.marks[span]):
                if number in without:
                    continue
                fault = f"\nNorvexFaults::Fault({number})"
                if kind == "&":
                    text = f"!{fault} && ({text})"
                elif kind == ";":
                    text = f"{{ if ({fault}) {{ {more[0]} }} else {{ {text} }} }}"
                else:
                    text = (more[1] if text.startswith("{") else "") + text if len(more) > 1 else text
                    text = f"({fault} ? {more[0]} : {text})"
            return text
        start, end = span
        parts, position = [], start
        for inner in self.outermost(span):
            parts.append(self.text[position:inner[0]].decode())
            parts.append(self.edits[inner] if inner in self.edits else self.rendered(inner, without))
            position = inner[1]
        return "".join(parts) + self.text[position:end].decode()

    def outermost(self, span):
        """The extents within this one that are in no other within it."""
        if not hasattr(self, "ordered"):
            self.ordered = sorted([*self.marks, *self.edits], key=lambda s: (s[0], -s[1]))
        position = span[0]
        for inner in self.ordered:
            if inner != span and position <= inner[0] and inner[1] <= span[1]:
                yield inner
                position = inner[1]


def element_of(kind):
    """The name of an array's type of elements; none for what is no array."""
    return kind.get_array_element_type().spelling


def run(command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, **options)


def listed(*patterns):
    return run(["git", "ls-files", "-co", "--exclude-standard", "--", *patterns], check=True).stdout.split()


def write(path, text):
    """Leaves a file alone that is as it should be, so that it is not compiled again."""
    data = text if isinstance(text, bytes) else text.encode()
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_bytes() != data:
        path.write_bytes(data)


def configure(mutated, with_apps):
    flags = f"-O1 -Wno-narrowing -w -include {(BUILD / 'Faults.h').resolve()}"
    write(BUILD / "Faults.h", HEADER)
    wanted = {path for path in listed() if pathlib.Path(path).exists()}
    for path in TREE.rglob("*"):
        if path.is_file() and str(path.relative_to(TREE)) not in wanted:
            path.unlink()
    for path in wanted:
        if path not in mutated or not (TREE / path).exists():
            write(TREE / path, pathlib.Path(path).read_bytes())
    run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", f"-DCMAKE_CXX_FLAGS={flags}",
         "-DNORVEX_BUILD_APPS=" + ("ON" if with_apps else "OFF"), "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
         "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON"], check=True)
    words = next(shlex.split(entry["command"]) for entry in json.loads((BUILD / "compile_commands.json").read_text())
                 if "/norvex/" in entry["file"])
    arguments = ["-x", "c++"]
    for word, following in zip(words, [*words[1:], ""]):
        if word.startswith(("-I", "-std")):
            arguments.append(word.replace(str(TREE.resolve()), str(pathlib.Path.cwd())))
        elif word == "-isystem":
            arguments += [word, following]
    return [*arguments, "-I."]


def build(sources, targets):
    """Builds with every fault that compiles. Gives those that do not."""
    without = set()
    while True:
        by_path = {}
        for source in sources:
            text = source.rendered((0, len(source.text)), without)
            write(TREE / source.path, text)
            by_path[source.path] = text.splitlines()
        built = run(["cmake", "--build", BUILD, "--target", *targets, "--", "-k", "0"])
        if built.returncode == 0:
            return without
        found = set()
        for path, line in re.findall(r"tree/(\S+?):(\d+):(?:\d+:)?", built.stdout + built.stderr):
            for text in reversed(by_path.get(path, [])[:int(line)]):
                number = re.match(r"NorvexFaults::Fault\((\d+)\)", text)
                if number:
                    found.add(int(number[1]))
                    break
        if not found - without:
            sys.exit(built.stdout[-5000:])
        without |= found


Test = collections.namedtuple("Test", "command reached seconds")


def run_tests(command, **variables):
    return run([*command, "--gtest_brief=1", "--gtest_fail_fast"] if "--gtest" in " ".join(command) else command,
               cwd=BUILD / "tests", env={**os.environ, **variables}, timeout=120)


def reach(pattern):
    """Each test, run alone: the faults that it reaches, and how long it takes."""
    listing = json.loads(run(["ctest", "--test-dir", BUILD, "--show-only=json-v1", "-R", pattern], check=True).stdout)

    def alone(test):
        path = (BUILD / "reached" / test["name"].replace("/", "_")).resolve()
        path.parent.mkdir(exist_ok=True)
        path.unlink(missing_ok=True)
        begin = time.monotonic()
        done = run_tests(test["command"], NORVEX_FAULTS_REACHED=str(path))
        if done.returncode:
            sys.exit(f"{test['name']} fails without a fault:\n{done.stdout[-3000:]}")
        numbers = {int(number) for number in path.read_text().split()} if path.exists() else set()
        return Test(test["command"], numbers, time.monotonic() - begin)

    with concurrent.futures.ThreadPoolExecutor(CORES) as pool:
        return sorted(pool.map(alone, listing["tests"]), key=lambda test: test.seconds)


def is_killed(number, tests):
    """Tries the quick tests first, all of a program in one go, and those that take long one by one."""
    programs, slow = collections.defaultdict(list), []
    for test in tests:
        name = next((word.removeprefix(FILTER) for word in test.command if word.startswith(FILTER)), None)
        if number in test.reached and test.seconds < 1 and name is not None:
            programs[test.command[0]].append(name)
        elif number in test.reached:
            slow.append(test.command)
    for command in [[program, FILTER + ":".join(names)] for program, names in programs.items()] + slow:
        try:
            if run_tests(command, NORVEX_FAULT=str(number)).returncode:
                return True
        except subprocess.TimeoutExpired:
            return True
    return False


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()
    everything = listed("norvex/*.h", "norvex/*.cpp", "apps/*.h", "apps/*.cpp")
    chosen = options.files or [p for p in everything if p.startswith(("norvex/", "apps/common/", "apps/norvex-rules/"))]
    rows = []
    for prefix, (targets, pattern) in TESTS.items():
        paths = [path for path in chosen if path.startswith(prefix)]
        if not paths:
            continue
        arguments = configure(set(paths), prefix == "apps/")
        sources = [Source(path, everything.index(path), arguments) for path in paths]
        without = build(sources, targets)
        tests = reach(pattern)
        print(f"{prefix} {len(without)} faults do not compile; {len(tests)} tests take "
              f"{sum(test.seconds for test in tests):.0f} s one by one", flush=True)
        for folder in sorted({os.path.dirname(path) for path in paths}):
            faults = {number: fault for source in sources if os.path.dirname(source.path) == folder
                      for number, fault in source.faults.items() if number not in without}
            drawn = sorted(faults)
            random.Random(f"{options.seed} {folder}").shuffle(drawn)
            drawn = sorted(drawn[:options.count])
            with concurrent.futures.ThreadPoolExecutor(CORES) as pool:
                killed = list(pool.map(lambda number: is_killed(number, tests), drawn))
            unreached = {number for number in drawn if not any(number in test.reached for test in tests)}
            for number in (number for number, dead in zip(drawn, killed) if not dead):
                fault = faults[number]
                print(f"{fault.path}:{fault.line}: {fault.what}{' (no test gets there)' * (number in unreached)}",
                      flush=True)
            if drawn:
                rows.append((folder, len(faults), len(drawn), sum(killed), len(unreached)))
    print(f"\n{'seed ' + str(options.seed):<40} faults  tried  killed  of 100  not reached")
    for folder, faults, tried, killed, unreached in rows:
        print(f"{folder:<40} {faults:>6} {tried:>6} {killed:>7} {100 * killed / tried:>7.0f} {unreached:>12}")


main()
