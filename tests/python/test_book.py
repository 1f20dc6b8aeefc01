"""The whole book, and what it tells."""

import copy
import threading
from fractions import Fraction
from typing import Any, List

import pytest
from conftest import document, form, through_a_tree, typed

import norvex

AAC = {"codec_id": "aac", "sample_rate": 48000, "sample_format": "s16", "channel_layout": "stereo", "bitrate": 100000}
WAV = {"format": {"container": "wav"}, "video_codec": {"codec_id": "hevc"}}


def all_helpers() -> List[norvex.Helper]:
    return (
        [norvex.helper("format", id) for id in norvex.formats()]
        + [norvex.helper("video_codec", id) for id in norvex.video_codecs()]
        + [norvex.helper("audio_codec", id) for id in norvex.audio_codecs()]
        + [norvex.helper(kind) for kind in norvex.filters()]
    )


def test_every_default_and_allowed_value_comes_back_as_it_was() -> None:
    trees = values = rules = 0
    for helper in all_helpers():
        defaults = helper.defaults()
        assert typed(through_a_tree(defaults)) == typed(defaults), helper
        assert document({"section": defaults}) == {"section": form(defaults)}, helper
        trees += 1
        constraints = list(helper.allowed().values())
        for rule in helper.rules():
            constraints += [constraint for constraint in (rule.constraint, rule.condition) if constraint]
            rules += 1
        for constraint in constraints:
            allowed = [value for _, value in constraint.values]
            allowed += [bound for bound in (constraint.min, constraint.max) if bound is not None]
            for value in allowed:
                assert typed(through_a_tree({"value": value})) == typed({"value": value}), helper
                values += 1
                if not isinstance(value, dict):  # a size stands for two values
                    assert constraint.is_valid(value) and typed(constraint.nearest(value)) == typed(value), helper
    assert trees == 131 and values > 1500 and rules > 100


def test_corrections_give_new_trees_and_say_what_they_changed() -> None:
    before = copy.deepcopy(AAC)
    corrected = norvex.helper("audio_codec", "aac").correct(AAC)
    assert corrected == {**AAC, "sample_format": "fltp", "bitrate": 96000, "bitrate_mode": "cbr"}
    told = norvex.correct(AAC, format="mp4")
    assert told.stream == corrected == norvex.correct(AAC, codec="aac").stream and AAC == before
    assert [(change.path, change.before, change.after, change.reason) for change in told.changes] == [
        ("sample_format", "s16", "fltp", "broken"),
        ("bitrate", 100000, 96000, "broken"),
        ("bitrate_mode", None, "cbr", "default"),
    ]
    assert told.changes[1].broken and told.changes[1].broken.problem == "not_allowed"
    assert told.left == [] and told.failure is None

    section, stream = {"codec_id": "aac", "bitrate_mode": "cbr", "bitrate": 128000}, {"codec_id": "mp3", "bitrate": 1}
    applied = norvex.helper("audio_codec", "aac").apply(section, stream)
    assert applied["bitrate"] == 128000 and applied["codec_id"] == "aac" and stream["codec_id"] == "mp3"

    # A container tells video by its codec: GIF has rates of its own.
    video = {"codec_id": "gif", "frame_rate": Fraction(11)}
    assert norvex.helper("format", "gif").correct(video) == {"codec_id": "gif", "frame_rate": Fraction(10)}


def test_presets_are_judged_explained_and_mended() -> None:
    before = copy.deepcopy(WAV)
    (finding,) = norvex.check(WAV)
    assert (finding.problem, finding.document_path, finding.helper_id) == ("no_place", "video_codec", "wav")
    explained = norvex.explain({"audio_codec": {"codec_id": "aac", "bitrate": 1, "bitrate_mode": "cbr"}})
    assert {finding.verdict for finding in explained} == {"kept", "violated"}
    broken = next(finding for finding in explained if finding.path == "audio_codec/bitrate" and finding.message)
    assert broken.constraint and broken.constraint.nearest(broken.value) == 32000
    mended = norvex.mend(WAV)
    assert "video_codec" not in mended.preset and norvex.check(mended.preset) == [] and WAV == before
    about = {"name": "A", "description": "B.", "purpose": "c"}
    document = norvex.write_preset(mended.preset, **about)
    assert (norvex.read_preset(document), norvex.read_about(document)) == (mended.preset, about)
    # Whatever a preset holds is no reason to raise.
    odds: List[norvex.Tree] = [{"format": 1}, {"a": {"b": None}}, {"$children": [["format", {}], ["format", 2]]}]
    for odd in odds:
        norvex.check(odd), norvex.explain(odd), norvex.mend(odd)


def test_streams_are_fitted_into_containers() -> None:
    film: List[norvex.Tree] = [
        {"codec_id": "h264", "width": 1280, "height": 720, "frame_rate": Fraction(25), "pixel_format": "yuv420p"},
        {"codec_id": "aac", "sample_rate": 96000, "channel_layout": "stereo", "codec_data": b"\x12\x10"},
        {"codec_id": "subrip"},
        {"codec_id": None},
    ]
    assert len(norvex.fits(film)) == len(norvex.formats()) and norvex.fits([])[0].lost == 0
    (wav,) = norvex.fits(iter(film), format="wav")
    assert [(stream.answer, stream.kind, stream.encoded_to) for stream in wav.streams] == [
        ("left_out", "video", ""), ("encoded", "audio", "pcm_s16le"), ("left_out", "subtitle", ""),
        ("left_out", "other", ""),
    ]
    assert (wav.lost, wav.encoded, wav.changed, wav.limits.audio) == (3, 1, 1, 1)
    assert (wav.streams[1].changes[0].path, wav.streams[1].changes[0].before) == ("sample_rate", 96000)
    (matroska,) = norvex.fits(film[:1], format="matroska")
    assert matroska.streams[0].answer == "as_it_is", matroska.streams[0].reason
    held = {found.format: found for found in norvex.containers_for(video=["h264"], audio=["aac", "aac"])}
    assert held["mp4"].is_encodable and held["mp4"].limits.audio == 16 and "wav" not in held
    with pytest.raises(norvex.HelperError):
        norvex.fits(film, format="betamax")
    with pytest.raises(norvex.TreeTypeError):
        norvex.fits([{"codec_id": [1]}])


def test_constraints_are_made_for_helpers_of_ones_own() -> None:
    rates = norvex.one_of([("PAL", Fraction(25)), Fraction(30000, 1001)])
    assert rates.values == (("PAL", Fraction(25)), ("30000/1001", Fraction(30000, 1001)))
    assert rates.nearest(Fraction(29)) == Fraction(30000, 1001) and rates.is_valid("25/1")
    sizes = norvex.between(2, 4096, 2)
    assert (sizes.min, sizes.max, sizes.step, sizes.nearest(5000)) == (2, 4096, 2, 4096)
    assert typed(norvex.between(0, 1.5).max) == typed(1.5) and sizes.nearest("x") is None
    wrongs: List[List[Any]] = [[1, "a"], [{}], [(1, 2, 3)]]
    for wrong in wrongs:
        with pytest.raises(TypeError):
            norvex.one_of(wrong)
    with pytest.raises(ValueError):
        norvex.one_of([])
    with pytest.raises(TypeError):
        norvex.between("a", 1)  # type: ignore[arg-type]


@pytest.mark.parametrize(
    "ask, error, told",
    [
        (lambda: norvex.helper("x"), norvex.HelperError, {"class_is_not_found": "x", "class_is_found": None}),
        (lambda: norvex.helper("format", "x"), norvex.HelperError, {"class_is_found": "format", "type_is_not_found": "x"}),
        (
            lambda: norvex.helper("audio_codec", "aac").correct({"codec_id": "aac"}),
            norvex.PropertyError,
            {"details": "sample_rate", "property_name": "format_codec_audio", "property_type": dict},
        ),
        (
            lambda: norvex.correct({**AAC, "bitrate": "x", "sample_rate": None}),
            norvex.ConstraintError,
            {"constraint_class": "ConstraintSet", "value_type": int},
        ),
        (
            lambda: norvex.helper("audio_codec", "aac").apply({"codec_id": "mp3"}, AAC),
            norvex.HelperError,
            {"description": "Incompatible preset codec id: mp3, required aac"},
        ),
        (lambda: norvex.read_preset('{"norvex-preset": 1,\n"preset": {"a": 1}}'), norvex.DocumentError, {"line": 2}),
        (lambda: norvex.register("audio_codec", "x", print), norvex.RegistrationError, {"details": "audio_codec x"}),
        (lambda: norvex.use_census(list), norvex.RegistrationError, {}),
        (lambda: norvex.correct({"a": 1}), norvex.PropertyError, {"details": "codec_id"}),
    ],
)
def test_failures_carry_their_tags(ask: Any, error: Any, told: Any) -> None:
    norvex.formats()  # so that it is too late to register
    with pytest.raises(norvex.Error) as caught:
        ask()
    assert type(caught.value) is error and str(caught.value) and caught.value.diagnostics
    assert {name: getattr(caught.value, name) for name in told} == told


def test_threads_share_the_book() -> None:
    wanted = [helper.defaults() for helper in all_helpers()], norvex.correct(AAC), norvex.check(WAV)[0].message
    wrong = []

    def ask() -> None:
        for _ in range(5):
            got = [helper.defaults() for helper in all_helpers()], norvex.correct(AAC), norvex.check(WAV)[0].message
            if (got[0], got[1].stream, got[2]) != (wanted[0], wanted[1].stream, wanted[2]):
                wrong.append(got)

    threads = [threading.Thread(target=ask) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []
