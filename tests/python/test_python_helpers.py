"""Helpers and a census that are written in Python, each in a process whose book nobody has asked yet."""

from conftest import prints, run

TTA = """
    class Tta:
        def __init__(self, base):
            self.base = base
        def defaults(self):
            return {**self.base.defaults(), "bitrate_mode": "vbr", "encode_options": {}}
        def rules(self):
            is_tta = norvex.one_of(["tta"])
            rate = norvex.Rule("filter_resample/resample/sample_rate", norvex.one_of([44100, 96000]),
                               "audio_codec/codec_id", is_tta)
            return [*self.base.rules(), rate]
    stream = {"codec_id": "tta", "sample_rate": 48000, "sample_format": "fltp", "channel_layout": "stereo"}
"""


def test_a_codec_written_in_python_stands_on_the_encoder_and_is_offered_like_any_other() -> None:
    prints(
        TTA
        + """
    norvex.register("audio_codec", "tta", Tta)
    norvex.register("filter_host", "", lambda base: base)
    norvex.register_modern()
    print({"tta", "opus"} <= set(norvex.audio_codecs()), "filter_host" in norvex.filters(), norvex.helper("filter_host").defaults())
    codecs = norvex.helper("format", "matroska").allowed()["streams_any_audio/audio_codec/codec_id"]
    print(codecs.is_valid("tta"), norvex.helper("audio_codec", "tta").correct(stream))
    print([change.path for change in norvex.correct(stream, format="matroska").changes])
    print([finding.document_path for finding in norvex.check(
        {"audio_codec": {"codec_id": "tta"}, "filter_resample": {"resample": {"sample_rate": 8000}}})
        if finding.problem != "missing"])
    """,
        "True True {}\n"
        "True {'codec_id': 'tta', 'sample_rate': 44100, 'sample_format': 's32', 'channel_layout': 'stereo', "
        "'bitrate_mode': 'vbr'}\n"
        "['sample_rate', 'sample_format', 'bitrate_mode']\n"
        "['filter_resample/resample/sample_rate']\n"
    )


def test_what_a_helper_raises_comes_out_as_itself_or_stands_in_the_report() -> None:
    prints(
        """
    boom = ValueError("boom")
    class Broken:
        raises = ()
        def __getattr__(self, name):
            if name not in ("defaults", "allowed", "rules", "apply", "correct"):
                raise AttributeError(name)
            def ask(*trees):
                if name in self.raises:
                    raise boom
                return trees[-1] if trees else [] if name == "rules" else {}
            return ask
    broken = Broken()
    norvex.register("audio_codec", "x", lambda base: broken)
    helper = norvex.helper("audio_codec", "x")
    stream, preset = {"codec_id": "x"}, {"audio_codec": {"codec_id": "x"}, "format": {"container": "srt"}}
    def caught(ask):
        try:
            return ask()
        except BaseException as raised:
            return raised
    Broken.raises = ("correct", "apply")
    print([caught(ask) is boom for ask in (
        lambda: helper.correct(stream), lambda: helper.apply({}, stream), lambda: norvex.correct(stream))])
    Broken.raises = ("allowed", "rules", "defaults")
    for judge in (norvex.check, norvex.explain):
        print([finding.failure is boom if finding.failure else finding.helper_id
               for finding in judge(preset) if finding.verdict in ("violated", "failed")])
    report = norvex.correct(stream)
    print(report.stream, report.failure is boom, caught(lambda: norvex.mend(preset)) is boom)
    boom = KeyboardInterrupt()
    print([type(caught(ask)).__name__ for ask in (
        lambda: norvex.check(preset), lambda: norvex.explain(preset), lambda: norvex.correct(stream))])
    Broken.raises = ()
    Broken.__getattr__ = lambda self, name: lambda *trees: 1
    print([type(caught(ask)).__name__ for ask in (
        lambda: helper.correct(stream), helper.defaults, helper.rules, helper.requires, helper.allowed)])
    """,
        "[True, True, True]\n"
        "['srt', True]\n['srt', True]\n"
        "{'codec_id': 'x'} True True\n"
        "['KeyboardInterrupt', 'KeyboardInterrupt', 'KeyboardInterrupt']\n"
        "['TreeTypeError', 'TreeTypeError', 'TypeError', 'TypeError', 'TypeError']\n"
    )


def test_the_census_and_the_tables_are_made_once_and_again_after_a_failure() -> None:
    listing = """
    print(norvex.helper("format", "avi").allowed()["streams_any_audio/audio_codec/codec_id"].words)
    """
    census = """
    norvex.use_census(lambda codec: {"mp3": ["some"], "h264": ["some"]}.get(codec, []))
    """
    prints(
        """
    import threading
    asked, made, outcomes = [], [], []
    def census(codec):
        asked.append(codec)
        if len(asked) == 1:
            raise OSError("no census")
        if len(asked) == 2:
            norvex.filters()
            try:
                norvex.formats()
            except norvex.RegistrationError as refused:
                print(refused.description)
        return ["some"] if codec in ("mp3", "h264") else []
    def make(base):
        made.append(base)
        if len(made) == 1:
            return None
        if len(made) == 2:
            raise OSError("no helper")
        return base
    class Former:
        def __call__(self, codec):
            return []
        def __del__(self):
            norvex.register("filter_host", "", lambda base: base)
    norvex.use_census(Former())
    norvex.use_census(census)
    norvex.register("audio_codec", "x", make)
    for ask in (norvex.formats, lambda: norvex.helper("audio_codec", "x"), lambda: norvex.check({})):
        try:
            ask()
        except Exception as raised:
            print(type(raised).__name__, raised)
    count = len(asked)
    barrier = threading.Barrier(8)
    def ask():
        barrier.wait()
        outcomes.append(norvex.helper("audio_codec", "x").defaults())
    threads = [threading.Thread(target=ask) for _ in range(8)]
    [thread.start() for thread in threads]
    [thread.join() for thread in threads]
    print(outcomes == [{"codec_id": "x"}] * 8, len(made), len(asked) == count, norvex.filters()[1])
    """
        + listing,
        "OSError no census\n"
        "The rule book is asked for while its census is taken.\n"
        "RegistrationError The function that makes the helper gave none: audio_codec x\n"
        "OSError no helper\n"
        "True 3 True filter_host\n" + run(census + listing),
    )


def test_helpers_go_with_the_interpreter_and_leave_the_library_behind() -> None:
    prints(
        """
    import atexit
    def last():
        try:
            helper.correct({})
        except norvex.HelperError as refused:
            print(refused.description, flush=True)
    atexit.register(last)  # before the module's own, so that it is called behind it
    import norvex
    class Says:
        def correct(self, stream):
            return {**stream, "corrected": True}
        def __del__(self):
            print("gone", flush=True)
    norvex.register("audio_codec", "x", lambda base: Says())
    helper = norvex.helper("audio_codec", "x")
    atexit.register(lambda: print(helper.correct({})))
    """,
        "{'corrected': True}\ngone\n"
        "The interpreter of a helper that is written in Python has ended.\n"
    )


def test_a_thread_that_meets_the_end_of_the_interpreter_does_no_harm() -> None:
    for _ in range(3):
        run(
            """
    import threading, time
    started = threading.Event()
    def census(codec):
        started.set()
        time.sleep(0.001)
        return []
    norvex.use_census(census)
    for _ in range(3):
        threading.Thread(target=norvex.formats, daemon=True).start()
    started.wait()
    """
        )


def test_helpers_that_call_themselves_end_as_python_does() -> None:
    prints(
        """
    class Endless:
        def correct(self, stream):
            return norvex.helper("audio_codec", "x").correct(stream)
    norvex.register("audio_codec", "x", lambda base: Endless())
    try:
        norvex.helper("audio_codec", "x").correct({})
    except RecursionError:
        print("deep")
    """,
        "deep\n"
    )
