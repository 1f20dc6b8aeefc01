#include "Request.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using A = Conf::IFormatCodecAudio;
using P = Conf::IPreset;
using V = Conf::IFormatCodecVideo;
using Core::Property;
using Proc::IResize;

const char* const g_automatic = "auto";

/// Collects what options say as choices on a preset.
class Options {
public:
    Options(CLI::App& app, Request& request) : m_app(app), m_request(request) {}

    void Group(const std::string& name) { m_group = name; }

    template <class T>
    CLI::Option* Add(const std::string& option, const std::string& path, const std::string& help) {
        return AddWith(
            option, [=](const std::string& text) { Choose<T>(path, Value<T>(option, text), option); }, help);
    }
    /// A number, or the word for automatic.
    template <class T>
    CLI::Option* AddOrAutomatic(const std::string& option, const std::string& path, const T& automatic,
                                const std::string& help) {
        return AddWith(
            option,
            [=](const std::string& text) {
                Choose<T>(path, text == g_automatic ? automatic : Value<T>(option, text), option);
            },
            help + ", or auto");
    }
    CLI::Option* AddWith(const std::string& option, const std::function<void(const std::string&)>& take,
                         const std::string& help) {
        return m_app.add_option_function<std::string>(option, take, help)->group(m_group);
    }
    CLI::Option* AddFlag(const std::string& option, const std::function<void()>& take, const std::string& help) {
        return m_app.add_flag_callback(option, take, help)->group(m_group);
    }

    template <class T>
    void Choose(const std::string& path, const T& value, const std::string& option) {
        m_request.choices.push_back({path, Property(path, value), option});
    }

private:
    template <class T>
    static T Value(const std::string& option, const std::string& text) {
        if constexpr (std::is_same_v<T, std::string>) {
            return text;
        } else if constexpr (std::is_same_v<T, Core::Ratio>) {
            const auto rate = Core::ParseRatio(text);
            if (!rate || rate->numerator() <= 0) {
                throw CLI::ValidationError(option, "'" + text + "' is no frame rate such as 25 or 30000/1001");
            }
            return *rate;
        } else {
            T value{};
            if (!CLI::detail::lexical_cast(text, value)) {
                throw CLI::ValidationError(option, "'" + text + "' is no number");
            }
            return value;
        }
    }

    CLI::App& m_app;
    Request& m_request;
    std::string m_group;
};

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

void AddVideoOptions(Options& options, Request& r) {
    const std::string& codec = P::KEY_FILTER_VIDEO_CODEC;
    const auto inOptions = [](const std::string& tag) {
        return Path({P::KEY_FILTER_VIDEO_CODEC, V::TAG_CODEC_OPTIONS_ENCODE, tag});
    };
    const auto inResize = [](const std::string& tag) {
        return Path({Proc::IFilterResize::CLASS_ID, IResize::CLASS_ID, tag});
    };
    const std::string mode = Path({codec, V::TAG_BITRATE_MODE});

    options.Group("Video");
    options.Add<std::string>("--video", Path({codec, V::TAG_CODEC_ID}), "Codec (default: the container's)");
    options.AddFlag(
        "--no-video", [&r] { r.noVideo = true; }, "Leave the picture out");
    auto* const quality = options.AddWith(
        "--quality",
        [&options, codec, mode](const std::string& text) {
            long long value = 0;
            if (!CLI::detail::lexical_cast(text, value)) throw CLI::ValidationError("--quality", "not a number");
            options.Choose(mode, V::TAG_BITRATE_MODE_VBR, "--quality");
            options.Choose(Path({codec, V::TAG_QUALITY}), value, "--quality");
        },
        "Quantiser from 1, the best, to " + std::to_string(V::MAX_QUALITY));
    auto* const bitrate = options.AddWith(
        "--video-bitrate",
        [&options, codec, mode](const std::string& text) {
            long long value = 0;
            if (!CLI::detail::lexical_cast(text, value)) throw CLI::ValidationError("--video-bitrate", "not a number");
            options.Choose(mode, V::TAG_BITRATE_MODE_CBR, "--video-bitrate");
            options.Choose(Path({codec, V::TAG_BITRATE}), value, "--video-bitrate");
        },
        "Bits per second, held constant");
    quality->excludes(bitrate);
    options.Add<std::string>("--encoder-preset", inOptions(V::TAG_PRESET), "Encoder preset, such as slow");
    options.Add<std::string>("--profile", inOptions(V::TAG_PROFILE), "Encoder profile, such as high");
    options.Add<std::string>("--tune", inOptions(V::TAG_X264_TUNE), "Encoder tune, such as animation");
    options.Add<std::string>("--codec-format", inOptions(V::TAG_FORMAT), "Form of the codec, such as hap_q");
    options.AddFlag(
        "--two-pass",
        [&options, codec] {
            options.Choose(Path({codec, V::TAG_MULTIPASS_ENCODING}), V::TAG_TWO_PASS_MODE, "--two-pass");
        },
        "Encode twice, the second time by what the first has learned");
    options.Add<long long>("--key-frames", Path({codec, V::TAG_MAX_I_FRAME_INTERVAL}),
                           "Longest distance of key frames");
    options.Add<long long>("--b-frames", Path({codec, V::TAG_MAX_B_FRAME_SEQUENCE}), "Most B frames in a row");
    options.Add<long long>("--threads", Path({codec, V::TAG_THREAD_NUMBER}), "Encoder threads");
    options.AddWith(
        "--size",
        [&options, inResize](const std::string& text) {
            const auto [width, height] = ParseSize(text);
            options.Choose(inResize(IResize::FRAME_SIZE_MODE), IResize::FRAME_SIZE_CUSTOM, "--size");
            options.Choose(inResize(V::TAG_WIDTH), width, "--size");
            options.Choose(inResize(V::TAG_HEIGHT), height, "--size");
        },
        "Size, such as 1280x720");
    options.Add<std::string>("--resize-mode", inResize(IResize::MODE),
                             "How the picture meets the size: smart_fit, up_to, letterbox, stretch, auto or crop");
    options.AddOrAutomatic<Core::Ratio>("--fps", Path({Proc::IFilterFrameRate::CLASS_ID, V::TAG_FPS}),
                                        Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE,
                                        "Frames per second, such as 25 or 30000/1001");
}

void AddAudioOptions(Options& options, Request& r) {
    const std::string& codec = P::KEY_FILTER_AUDIO_CODEC;
    const auto inResample = [](const std::string& tag) {
        return Path({Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, tag});
    };
    options.Group("Audio");
    options.Add<std::string>("--audio", Path({codec, A::TAG_CODEC_ID}), "Codec (default: the container's), or auto");
    options.AddFlag(
        "--no-audio", [&r] { r.noAudio = true; }, "Leave the sound out");
    options.AddWith(
        "--audio-bitrate",
        [&options, codec](const std::string& text) {
            const std::string mode = Path({codec, A::TAG_BITRATE_MODE});
            if (text == g_automatic) {
                options.Choose(mode, A::TAG_BITRATE_MODE_CBR_AUTO, "--audio-bitrate");
                return;
            }
            long long value = 0;
            if (!CLI::detail::lexical_cast(text, value)) throw CLI::ValidationError("--audio-bitrate", "not a number");
            options.Choose(mode, A::TAG_BITRATE_MODE_CBR, "--audio-bitrate");
            options.Choose(Path({codec, A::TAG_BITRATE}), value, "--audio-bitrate");
        },
        "Bits per second, or auto");
    options.Add<std::string>("--audio-profile", Path({codec, A::TAG_CODEC_OPTIONS_ENCODE, A::TAG_PROFILE}),
                             "Encoder profile, such as aac_low");
    options.AddOrAutomatic<int>("--sample-rate", inResample(A::TAG_SAMPLE_RATE), -1, "Hz");
    options.AddOrAutomatic<std::string>("--layout", inResample(A::TAG_LAYOUT), A::TAG_CH_LAYOUT_UNKNOWN,
                                        "Channel layout, such as mono, stereo or 5.1");
    options.Add<std::string>("--sample-format", Path({Proc::IFilterResample::CLASS_ID, A::TAG_SAMPLE_FORMAT}),
                             "Sample format, such as s16 or fltp");
}

}  // namespace

std::string Path(std::initializer_list<std::string> tags) {
    std::string path;
    for (const std::string& tag : tags) path += (path.empty() ? "" : Property::SEPARATOR) + tag;
    return path;
}

const Choice* Request::Find(const std::string& path) const {
    const auto choice =
        std::find_if(choices.rbegin(), choices.rend(), [&path](const Choice& c) { return c.path == path; });
    return choice != choices.rend() ? &*choice : nullptr;
}

std::string Request::TextAt(const std::string& path) const {
    const Choice* const choice = Find(path);
    return choice != nullptr && choice->value.GetType() == PT_STRING ? choice->value.GetString() : std::string();
}

bool Request::Asks(const std::string& section) const {
    const std::string codecId = Path({section, A::TAG_CODEC_ID});
    return std::any_of(choices.begin(), choices.end(), [&](const Choice& choice) {
        return choice.path != codecId && choice.path.compare(0, section.size() + 1, section + Property::SEPARATOR) == 0;
    });
}

Parsed ParseCommandLine(int argc, const char* const* argv) {
    Parsed parsed;
    Request& r = parsed.request;
    CLI::App app("Exports video, sound, pictures and subtitles by the rule book of the container and the codecs.",
                 "norvex-export");
    Options options(app, r);
    app.set_version_flag("--version", NORVEX_VERSION);
    app.add_option("INPUT", r.input, "The file to export")->required();
    app.add_option("OUTPUT", r.output, "The file to write; replaced when the export has succeeded")->required();
    options.Group("Options");
    options.Add<std::string>("--format", Path({P::KEY_FORMAT, Conf::IFormatFile::TAG_CONTAINER}),
                             "Container (default: by the extension of OUTPUT)");
    options.Add<std::string>("--subtitles", Path({P::KEY_FILTER_SUBTITLE_CODEC, V::TAG_CODEC_ID}),
                             "Codec of the subtitles (default: none in films, the container's in subtitle files)");
    app.add_option("--preset", r.presetFile, "Start from the preset in this file");
    app.add_option("--save-preset", r.savePresetFile, "Write what was settled on to this file");
    app.add_flag("--copy", r.copy,
                 "Carry over unchanged each stream of which nothing is asked and that the container takes as it is");
    AddVideoOptions(options, r);
    AddAudioOptions(options, r);
    app.add_flag("--classic", r.classic, "Know the classic codecs and containers alone");
    app.add_flag("--dry-run", r.dryRun, "Show what would be encoded, and encode nothing");
    app.add_flag("--explain", r.explain, "Show each rule and constraint that was looked at");
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
