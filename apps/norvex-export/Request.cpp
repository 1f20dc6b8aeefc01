#include "Request.h"

#include <CLI/CLI.hpp>
#include <functional>

#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using C = Conf::IFormatCodec;
using V = Conf::IFormatCodecVideo;
using Core::Property;

std::pair<int, int> ParseSize(const std::string& text) {
    const auto cross = text.find('x');
    int width = 0;
    int height = 0;
    if (cross == std::string::npos || !CLI::detail::lexical_cast(text.substr(0, cross), width) ||
        !CLI::detail::lexical_cast(text.substr(cross + 1), height) || width <= 0 || height <= 0) {
        throw CLI::ValidationError("--size", "'" + text + "' is no size such as 1280x720");
    }
    return {width, height};
}

Core::Ratio ParseFrameRate(const std::string& text) {
    const auto rate = Core::ParseRatio(text);
    if (!rate || rate->numerator() <= 0) {
        throw CLI::ValidationError("--fps", "'" + text + "' is no frame rate such as 25 or 30000/1001");
    }
    return *rate;
}

/// Adds an option whose value goes to a path of a codec's section.
template <class T>
void AddChoice(CLI::App& app, std::vector<Choice>& choices, const std::string& option, const std::string& path,
               const std::string& help) {
    app.add_option_function<T>(
        option,
        [&choices, path, option](const T& value) {
            choices.push_back({path, Property(path, value), option});
        },
        help);
}

std::string InOptions(const std::string& tag) {
    return C::TAG_CODEC_OPTIONS_ENCODE + Property::SEPARATOR + tag;
}

/// A bitrate and a quality each settle the mode with them.
void AddMode(std::vector<Choice>& choices, const std::string& mode, const std::string& option) {
    choices.push_back({C::TAG_BITRATE_MODE, Property(C::TAG_BITRATE_MODE, mode), option});
}

}  // namespace

Parsed ParseCommandLine(int argc, const char* const* argv) {
    Parsed parsed;
    Request& r = parsed.request;
    CLI::App app("Exports video and sound by the rule book of the container and the codecs.", "norvex-export");
    app.set_version_flag("--version", NORVEX_VERSION);
    app.add_option("INPUT", r.input, "The file to export")->required();
    app.add_option("OUTPUT", r.output, "The file to write; replaced when the export has succeeded")->required();
    app.add_option("--format", r.format, "Container (default: by the extension of OUTPUT)");

    const std::string video = "Video";
    app.add_option("--video", r.videoCodec, "Codec (default: the container's)")->group(video);
    app.add_flag("--no-video", r.noVideo, "Leave the picture out")->group(video);
    auto* const quality = app.add_option_function<long long>(
        "--quality",
        [&r](const long long& value) {
            AddMode(r.video, C::TAG_BITRATE_MODE_VBR, "--quality");
            r.video.push_back({C::TAG_QUALITY, Property(C::TAG_QUALITY, value), "--quality"});
        },
        "Quantiser from 1, the best, to " + std::to_string(C::MAX_QUALITY));
    auto* const videoBitrate = app.add_option_function<long long>(
        "--video-bitrate",
        [&r](const long long& value) {
            AddMode(r.video, C::TAG_BITRATE_MODE_CBR, "--video-bitrate");
            r.video.push_back({C::TAG_BITRATE, Property(C::TAG_BITRATE, value), "--video-bitrate"});
        },
        "Bits per second, held constant");
    AddChoice<std::string>(app, r.video, "--preset", InOptions(C::TAG_PRESET), "Encoder preset, such as slow");
    AddChoice<std::string>(app, r.video, "--profile", InOptions(C::TAG_PROFILE), "Encoder profile, such as high");
    AddChoice<std::string>(app, r.video, "--tune", InOptions(V::TAG_X264_TUNE), "Encoder tune, such as animation");
    app.add_flag_callback(
        "--two-pass",
        [&r] {
            r.video.push_back(
                {V::TAG_MULTIPASS_ENCODING, Property(V::TAG_MULTIPASS_ENCODING, V::TAG_TWO_PASS_MODE), "--two-pass"});
        },
        "Encode twice, the second time by what the first has learned");
    AddChoice<long long>(app, r.video, "--key-frames", V::TAG_MAX_I_FRAME_INTERVAL, "Longest distance of key frames");
    AddChoice<long long>(app, r.video, "--b-frames", V::TAG_MAX_B_FRAME_SEQUENCE, "Most B frames in a row");
    AddChoice<long long>(app, r.video, "--threads", C::TAG_THREAD_NUMBER, "Encoder threads");
    app.add_option_function<std::string>(
        "--size", [&r](const std::string& text) { r.size = ParseSize(text); }, "Size, such as 1280x720");
    app.add_option("--resize-mode", r.resizeMode,
                   "How the picture meets the size: smart_fit, up_to, letterbox, stretch, auto or crop");
    app.add_option_function<std::string>(
        "--fps", [&r](const std::string& text) { r.frameRate = ParseFrameRate(text); },
        "Frames per second, such as 25 or 30000/1001");
    for (const char* option : {"--preset", "--profile", "--tune", "--two-pass", "--key-frames", "--b-frames",
                               "--threads", "--size", "--resize-mode", "--fps"}) {
        app.get_option(option)->group(video);
    }
    quality->group(video)->excludes(videoBitrate->group(video));

    const std::string audio = "Audio";
    app.add_option("--audio", r.audioCodec, "Codec (default: the container's)")->group(audio);
    app.add_flag("--no-audio", r.noAudio, "Leave the sound out")->group(audio);
    app.add_option_function<long long>(
           "--audio-bitrate",
           [&r](const long long& value) {
               AddMode(r.audio, C::TAG_BITRATE_MODE_CBR, "--audio-bitrate");
               r.audio.push_back({C::TAG_BITRATE, Property(C::TAG_BITRATE, value), "--audio-bitrate"});
           },
           "Bits per second")
        ->group(audio);
    AddChoice<std::string>(app, r.audio, "--audio-profile", InOptions(C::TAG_PROFILE),
                           "Encoder profile, such as aac_low");
    app.get_option("--audio-profile")->group(audio);
    app.add_option("--sample-rate", r.sampleRate, "Hz")->group(audio);
    app.add_option("--layout", r.layout, "Channel layout, such as mono, stereo or 5.1")->group(audio);
    app.add_option("--sample-format", r.sampleFormat, "Sample format, such as s16 or fltp")->group(audio);

    app.add_flag("--dry-run", r.dryRun, "Show what would be encoded, and encode nothing");
    app.add_flag("--json", r.json, "Print for programs");
    app.add_flag("--quiet", r.quiet, "Print nothing but errors");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // CLI11's own statuses are many; a wrong command line is 2, as with other programs.
        parsed.exitStatus = app.exit(error) == 0 ? 0 : 2;
    }
    return parsed;
}

}  // namespace NorvexExport
