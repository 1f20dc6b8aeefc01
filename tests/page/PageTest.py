#!/usr/bin/env python3
"""The rule book's page in a real browser: search, filter, links, keyboard, phone and dark mode.

PageTest.py NORVEX_RULES NORVEX_EXPORT FOLDER: makes the page and screenshots in FOLDER. Speaks to chromedriver by itself, so that no
package beyond Debian's browser is needed.
"""
import base64
import json
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

import JudgingTest

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
with socket.create_server(("127.0.0.1", 0)) as free:  # another run may be speaking to its own browser
    PORT = free.getsockname()[1]


class Browser:
    def __init__(self, dark=False, size=(1280, 900)):
        arguments = ["--headless=new", "--no-sandbox", "--disable-gpu", f"--window-size={size[0]},{size[1]}"]
        options = {"args": arguments}
        if size[0] < 500:
            options["mobileEmulation"] = {"deviceMetrics": {"width": size[0], "height": size[1], "pixelRatio": 2}}
        answer = self.ask("POST", "/session", {"capabilities": {"alwaysMatch": {"goog:chromeOptions": options}}})
        self.session = "/session/" + answer["sessionId"]
        if dark:
            media = {"features": [{"name": "prefers-color-scheme", "value": "dark"}]}
            self.command("Emulation.setEmulatedMedia", **media)

    @staticmethod
    def ask(method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(f"http://127.0.0.1:{PORT}{path}", data, method=method)
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def open(self, url):
        self.ask("POST", self.session + "/url", {"url": url})

    def run(self, script, *arguments):
        return self.ask("POST", self.session + "/execute/sync", {"script": script, "args": arguments})

    def command(self, name, **parameters):
        """Of Chromium's own."""
        return self.ask("POST", self.session + "/goog/cdp/execute", {"cmd": name, "params": parameters})

    def find(self, selector):
        return self.ask("POST", self.session + "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self.ask("POST", f"{self.session}/element/{self.find(selector)}/click", {})

    def type(self, selector, text):
        element = self.find(selector)
        self.ask("POST", f"{self.session}/element/{element}/clear", {})
        self.ask("POST", f"{self.session}/element/{element}/value", {"text": text})

    def choose(self, selector, value):
        self.run(f"const s = document.querySelector('{selector}'); s.value = '{value}'; s.dispatchEvent(new Event('input'))")

    def press(self, *keys):
        actions = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self.ask("POST", self.session + "/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def picture(self, path):
        path.write_bytes(base64.b64decode(self.ask("GET", self.session + "/screenshot")))

    def __enter__(self):
        return self

    def __exit__(self, *failure):
        self.ask("DELETE", self.session)


def expect(what, get, wanted):
    """What a click or a key sets off may come a moment later."""
    for _ in range(30):
        found = get() if callable(get) else get
        if found == wanted:
            print("ok", what)
            return
        time.sleep(0.1)
    raise AssertionError(f"{what}: found {found!r}, wanted {wanted!r}")


SHOWN = "return [...document.querySelectorAll('article')].filter((a) => a.offsetParent).map((a) => a.id)"
MARKS = "return document.querySelectorAll('#gridTable td.yes').length"
SEARCHES = [  # what people type, and what must be among the few that are found
    ("mkv", ["formats-matroska"]), ("m2ts", ["formats-mpeg2ts"]), ("ts", ["formats-mpegts"]), ("avc", ["videoCodecs-h264"]),
    ("H.265", ["videoCodecs-hevc"]), ("he-aac", ["audioCodecs-aac"]), ("name", []),
]
GRID = "return [document.querySelectorAll('#gridTable tbody tr').length, document.querySelectorAll('#gridTable thead th').length - 1]"


def test_desk(browser, url, folder, book):
    browser.open(url)
    expect("asks no network", lambda: browser.run("return performance.getEntriesByType('resource').length"), 0)
    helpers = sum(len(book[key]) for key in ("formats", "videoCodecs", "audioCodecs", "filters"))
    expect("a section for each helper", lambda: len(browser.run(SHOWN)), helpers)

    expect("the page has the whole book", browser.run("return book") == book, True)

    # Each codec that a container carries stands in one grid, and what nothing here encodes is marked so.
    cells = 0
    for kind in ("film", "audio", "covers", "stills", "subtitles"):
        browser.choose("#kind", kind)
        cells += browser.run(MARKS)
        wide = "return document.querySelector('.scroll').scrollWidth - document.querySelector('.scroll').clientWidth"
        expect(f"the whole width of the grid of {kind}", lambda: browser.run(wide), 0)
    carried = [(f[kind], codec) for f in book["formats"] for kind in ("video", "audio", "subtitles") if f[kind] for codec in f[kind]["codecs"]]
    expect("the grids are whole", cells, len(carried))
    encoders = {codec["id"] for codec in book["subtitleCodecs"] if codec["encoder"]}
    absent = sum(codec not in encoders for f in book["formats"] if f["subtitles"] for codec in f["subtitles"]["codecs"])
    expect("subtitles that nothing encodes", lambda: browser.run("return document.querySelectorAll('td.absent').length"), absent)
    browser.choose("#kind", "film")
    browser.type("#gridCodec", "VP9")
    expect("the grid filters", lambda: browser.run(GRID), [sum("vp9" in f["video"]["codecs"] for f in book["formats"] if f["video"]), 1])
    browser.picture(folder / "filtered.png")
    browser.type("#gridCodec", "nothing")
    expect("the grid may be empty", lambda: browser.run(GRID), [0, 0])

    browser.type("#search", "9800000")
    expect("search finds values", lambda: browser.run(SHOWN), ["formats-dvd", "formats-svcd", "formats-vcd"])
    expect("search marks what it found", lambda: browser.run("return document.querySelector('#formats-dvd mark').textContent"), "9800000")
    for typed, found in SEARCHES:
        browser.type("#search", typed)
        expect(f"search finds {typed}", lambda: (lambda shown: [one for one in found if one not in shown] or len(shown) < 40)(browser.run(SHOWN)), True)
    browser.type("#search", "no such thing")
    expect("search says that there is nothing", lambda: browser.run("return !document.getElementById('nothing').hidden"), True)
    browser.type("#search", "x265 hevc")
    browser.click("#videoCodecs-hevc summary")
    opened = "return document.querySelector('#videoCodecs-hevc .body').innerText"
    expect("a section tells its rules", lambda: "profile video_codec/encode_options/profile is Main" in browser.run(opened), True)
    expect("a section tells its carriers", lambda: "MPEG transport stream" in browser.run(opened), True)
    expect("a section tells what the encoder declares", lambda: "encoder libx265; 8, 10, 12 bit" in browser.run(opened), True)
    browser.click("#videoCodecs-hevc a[href='#formats-mp4']")
    expect("a link leads on", lambda: browser.run("return document.querySelector('#formats-mp4 details').open"), True)
    expect("a link ends the search", lambda: len(browser.run(SHOWN)), helpers)
    browser.picture(folder / "linked.png")
    browser.run("history.back()")
    expect("Back brings the search back", lambda: browser.run("return document.getElementById('search').value"), "x265 hevc")
    expect("and what it found", lambda: browser.run(SHOWN), ["videoCodecs-hevc"])

    browser.run("document.activeElement.blur()")
    browser.press("/")
    expect("a key leads to the search", lambda: browser.run("return document.activeElement.id"), "search")
    browser.press("\ue004", "\ue004")  # twice Tab
    expect("Tab leads on", lambda: browser.run("return document.activeElement.getAttribute('href')"), "#try")
    browser.press("\ue007")  # Enter
    expect("Enter follows a link", lambda: browser.run("return location.hash"), "#try")


DIALOG = "#try?format=dvd&video_codec=mpeg2video&audio_codec=ac3&filter_resize=on&filter_rate=on&filter_resample=on"
FAULTS = "return [...document.querySelectorAll('#try .fault:not([hidden]) p')].map((p) => p.firstChild.textContent.trim())"
DOCUMENT = "return document.getElementById('tryDocument').textContent"
CONTROLS = {"button", "checkbox", "combobox", "link", "searchbox", "slider", "spinbutton", "switch", "textbox"}


def test_dialog(browser, url, folder, program, export, book):
    browser.open(url)
    browser.run("location.hash = arguments[0]", DIALOG)
    verdict = lambda: browser.run("return document.getElementById('verdict').textContent")
    told = lambda: json.loads(subprocess.run([program, "check", "--json", "-"], input=browser.run(DOCUMENT), capture_output=True, text=True).stdout)
    expect("the dialog opens by its address", verdict, "One rule is broken.")
    browser.picture(folder / "dialog.png")
    expect("a control says what the check says", lambda: browser.run(FAULTS), [one["message"] for one in told()["broken"]])
    nodes = browser.command("Accessibility.getFullAXTree")["nodes"]
    named = [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes if not node["ignored"] and node["role"]["value"] in CONTROLS]
    expect("each control has a name", [role for role, name in named if not name], [])
    expect("there are controls", len(named) > 250, True)
    browser.click("#tryMend")
    expect("one press mends all", verdict, "Every rule is kept.")
    expect("and the check takes what is mended", lambda: told()["broken"], [])
    browser.type("#try-video_codec-bitrate", "99000000\ue007")
    expect("a value breaks a rule", verdict, "One rule is broken.")
    expect("the library's sentence", lambda: browser.run(FAULTS), [one["message"] for one in told()["broken"]])
    address = browser.run("return location.href")
    written = json.loads(browser.run(DOCUMENT))
    browser.click("#try .fault button")
    expect("a press takes what correction gives", verdict, "Every rule is kept.")
    browser.open("about:blank")
    browser.open(address)
    expect("the address holds the choices", lambda: json.loads(browser.run(DOCUMENT)), written)
    browser.run("location.hash = '#formats'")
    browser.choose("#kind", "film")
    browser.run("document.querySelector('td a[href=\"#try?format=matroska&video_codec=vp9\"]').click()")
    expect("the grid leads to its pair", lambda: [browser.run(f"return document.querySelector('#try-{kind}-chooser').value") for kind in ("format", "video_codec", "audio_codec")], ["matroska", "vp9", ""])
    browser.choose("#try-audio_codec-chooser", "flac")
    browser.run("document.querySelector('#try-audio_codec-chooser').dispatchEvent(new Event('change'))")
    expect("the command names the file", lambda: browser.run("return document.getElementById('tryCommand').textContent"), "norvex-export INPUT OUTPUT.mkv --preset preset.json")
    preset, film = folder / "preset.json", folder / "film.nut"
    preset.write_text(browser.run(DOCUMENT))
    subprocess.run(["ffmpeg", "-nostdin", "-loglevel", "error", "-f", "lavfi", "-i", "testsrc2=d=1", "-f", "lavfi", "-i", "sine=d=1", film], check=True)
    made = subprocess.run([export, film, folder / "film.mkv", "--preset", preset, "--dry-run", "--json"], capture_output=True, text=True, check=True).stdout
    expect("an export takes the preset", "vp9" in made and "flac" in made, True)

    def ask(documents):
        browser.run("window.answers = null")
        return browser.run(f"return arguments[0].map((text) => ({JudgingTest.ANSWER})(theJudge(), text))", documents)

    JudgingTest.judge(program, book, 500, 22, ask)


def test_phone_and_dark(browser, url, folder):
    browser.open(url + "#formats-mp4")
    wide = browser.run("return document.documentElement.scrollWidth > innerWidth")
    expect("a phone shows the whole width", wide, False)
    expect("dark mode is dark", lambda: browser.run("return getComputedStyle(document.body).backgroundColor"), "rgb(20, 24, 27)")
    browser.picture(folder / "phone-dark.png")
    browser.run("location.hash = arguments[0]", DIALOG)
    expect("so does the dialog", lambda: browser.run("return [document.getElementById('tryPanel').open, document.documentElement.scrollWidth > innerWidth]"), [True, False])
    browser.picture(folder / "dialog-phone-dark.png")


def main():
    program, export, kept = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory() as own:
        run(program, export, pathlib.Path(own))
        kept.mkdir(parents=True, exist_ok=True)
        for made in pathlib.Path(own).iterdir():
            shutil.copy(made, kept)


def run(program, export, folder):
    page = folder / "rulebook.html"
    subprocess.run([program, "html", str(page)], check=True)
    book = json.loads(subprocess.run([program, "json"], check=True, capture_output=True).stdout)
    driver = subprocess.Popen(
        ["chromedriver", f"--port={PORT}", "--silent"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        for _ in range(100):
            try:
                if Browser.ask("GET", "/status")["ready"]:
                    break
            except OSError:
                time.sleep(0.1)
        url = page.resolve().as_uri()
        with Browser() as browser:
            test_desk(browser, url, folder, book)
        with Browser(size=(1440, 900)) as browser:
            test_dialog(browser, url, folder, program, export, book)
            # A figure to look at, and no bound: machines differ.
            browser.command("Performance.enable")
            browser.open("about:blank")
            browser.open(url)
            metrics = {one["name"]: one["value"] for one in browser.command("Performance.getMetrics")["metrics"]}
            print(f"the first draw takes {1000 * metrics['ScriptDuration']:.0f} ms of script; the page has {page.stat().st_size} bytes")
        with Browser(dark=True, size=(390, 844)) as browser:
            test_phone_and_dark(browser, url, folder)
    finally:
        driver.terminate()


main()
