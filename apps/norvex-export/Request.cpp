#include "Request.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cctype>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>

#include "Asked.h"
#include "Plan.h"
#include "common/CommandLine.h"
#include "common/Completion.h"
#include "common/ManPage.h"
#include "common/Presets.h"
#include "common/Quantities.h"
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
const char* const g_bare = "true";  ///< what the parser makes of a flag without a value

/// What cannot be made of an option's text; what() is for the user, without the option's name.
class TextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Takes what one option says into the request.
class Taker {
public:
    Taker(Request& request, std::string option) : m_request(request), m_option(std::move(option)) {}

    Request& GetRequest() const { return m_request; }

    template <class T>
    void Choose(const std::string& path, const T& value) const {
        m_request.choices.push_back({path, Property(path, value), m_option});
    }
    void LeaveOpen(const std::string& path) const { m_request.choices.push_back({path, Property(), m_option, true}); }

private:
    Request& m_request;
    std::string m_option;
};

/// What an option makes of its text; a flag's is empty.
using Take = std::function<void(const std::string& text, const Taker& taker)>;

/// An option, as the command line and its help have it.
struct Option {
    const char* name;
    const char* value;  ///< what the help calls the value; null for a flag, and in brackets for one that may have one
    std::string help;   ///< what it may be, in lines of half a terminal
    Take take;
};

bool IsAutomatic(const std::string& text) {
    return boost::algorithm::to_lower_copy(text) == g_automatic;
}

template <class T>
const T& Require(const std::optional<T>& parsed, const std::string& text, const std::string& wanted) {
    if (!parsed) throw TextError("'" + text + "' is no " + wanted + ", or auto");
    return *parsed;
}

/// A word of the rule book, all of which are in small letters.
Take Word(const std::string& path) {
    return [path](const std::string& text, const Taker& taker) {
        taker.Choose(path, boost::algorithm::to_lower_copy(text));
    };
}

/// The same, of those that other things are called by too: the program turns it into an id when it knows the catalogue.
Take Name(const std::string& path, const std::string& automatic = g_automatic) {
    return
        [=](const std::string& text, const Taker& taker) { taker.Choose(path, IsAutomatic(text) ? automatic : text); };
}

/// A name without a value for automatic in the rule book: the container's own is taken where none is chosen.
Take NameOrOpen(const std::string& path) {
    return [path](const std::string& text, const Taker& taker) {
        IsAutomatic(text) ? taker.LeaveOpen(path) : taker.Choose(path, text);
    };
}

void TakeNumber(const std::string& path, const std::string& text, const Taker& taker) {
    const Range range = *RangeOf(path);
    const auto value = NorvexApps::ParseInteger(text);
    if (!value || !range.Holds(*value)) throw TextError("'" + text + "' is not " + range.Words() + ", or auto");
    taker.Choose(path, *value);
}

/// A whole number in the range of its path.
Take Number(const std::string& path) {
    return [path](const std::string& text, const Taker& taker) {
        IsAutomatic(text) ? taker.LeaveOpen(path) : TakeNumber(path, text, taker);
    };
}

Take Bitrate(const std::string& codec) {
    const std::string mode = Path({codec, V::TAG_BITRATE_MODE});
    return [=](const std::string& text, const Taker& taker) {
        if (IsAutomatic(text)) return taker.Choose(mode, V::TAG_BITRATE_MODE_CBR_AUTO);
        auto bitrate = NorvexApps::ParseBitrate(text);
        if (bitrate == 0) bitrate.reset();
        taker.Choose(mode, V::TAG_BITRATE_MODE_CBR);
        taker.Choose(Path({codec, V::TAG_BITRATE}), Require(bitrate, text, "bitrate such as 128k or 5M"));
    };
}

Take Quality(const std::string& codec) {
    const std::string mode = Path({codec, V::TAG_BITRATE_MODE});
    const std::string quality = Path({codec, V::TAG_QUALITY});
    return [=](const std::string& text, const Taker& taker) {
        if (IsAutomatic(text)) {
            taker.LeaveOpen(mode);
            return taker.LeaveOpen(quality);
        }
        taker.Choose(mode, V::TAG_BITRATE_MODE_VBR);
        TakeNumber(quality, text, taker);
    };
}

Take SampleRate(const std::string& path) {
    return [path](const std::string& text, const Taker& taker) {
        const Range range = *RangeOf(path);
        if (IsAutomatic(text)) return taker.Choose(path, *range.automatic);
        auto rate = NorvexApps::ParseFrequency(text);
        if (rate && !range.Holds(*rate)) rate.reset();
        taker.Choose(path, Require(rate, text, "sample rate such as 44100 or 48k"));
    };
}

Take FrameRate(const std::string& path) {
    return [path](const std::string& text, const Taker& taker) {
        taker.Choose(path, IsAutomatic(text) ? Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE
                                             : Require(NorvexApps::ParseFrameRate(text), text,
                                                       "frame rate such as 25, 29.97, 30000/1001 or ntsc"));
    };
}

Take FrameSize(const std::string& section) {
    const auto at = [section](const std::string& tag) { return Path({section, IResize::CLASS_ID, tag}); };
    return [at](const std::string& text, const Taker& taker) {
        if (IsAutomatic(text)) {
            for (const std::string& tag : {IResize::FRAME_SIZE_MODE, V::TAG_WIDTH, V::TAG_HEIGHT}) {
                taker.LeaveOpen(at(tag));
            }
            return;
        }
        const auto size = Require(NorvexApps::ParseSize(text), text, "size such as 1280x720 or 720p");
        taker.Choose(at(IResize::FRAME_SIZE_MODE), IResize::FRAME_SIZE_CUSTOM);
        taker.Choose(at(V::TAG_WIDTH), size.width);
        taker.Choose(at(V::TAG_HEIGHT), size.height);
    };
}

/// Seconds, or minutes and hours before them, for a time in microseconds.
Take Time(std::optional<long long> Request::*time, long long least) {
    return [=](const std::string& text, const Taker& taker) {
        const auto parsed = NorvexApps::ParseTime(text);
        if (!parsed || *parsed < least) throw TextError("'" + text + "' is no time such as 90, 1.5 or 1:30");
        taker.GetRequest().*time = parsed;
    };
}

Take Flag(bool Request::*flag) {
    return [flag](const std::string& /*text*/, const Taker& taker) { taker.GetRequest().*flag = true; };
}

Take File(std::string Request::*file) {
    return [file](const std::string& text, const Taker& taker) { taker.GetRequest().*file = text; };
}

/// Kinds of streams by the words for them.
constexpr std::pair<const char*, StreamKind> g_kinds[] = {
    {"video", StreamKind::Video},
    {"audio", StreamKind::Audio},
    {"subtitles", StreamKind::Subtitle},
    {"cover", StreamKind::Cover},
    {"attachments", StreamKind::Attachment},
    {"data", StreamKind::Data},
};

/// One of what stands between the commas of --streams: "2", "audio", "eng" or "audio:eng".
StreamChoice ParseStreams(const std::string& text) {
    StreamChoice choice;
    choice.text = text;
    const std::size_t colon = text.find(':');
    const std::string first = text.substr(0, colon);
    const auto* const kind =
        std::find_if(std::begin(g_kinds), std::end(g_kinds), [&](const auto& row) { return first == row.first; });
    if (kind != std::end(g_kinds)) choice.kind = kind->second;
    const bool isAlone = colon == std::string::npos;
    const std::string rest = choice.kind ? (isAlone ? "" : text.substr(colon + 1)) : text;
    const long long number = choice.kind ? -1 : NorvexApps::ParseInteger(rest).value_or(-1);
    // Languages as containers give them: two or three letters, and perhaps a region behind a hyphen.
    const std::size_t letters = std::min(rest.find('-'), rest.size());
    const bool isLanguage = letters >= 2 && letters <= 3 && std::all_of(rest.begin(), rest.end(), [](unsigned char c) {
                                return std::isalnum(c) != 0 || c == '-';
                            });
    if (number >= 0 && number < std::numeric_limits<int>::max()) {
        choice.stream = static_cast<int>(number);
    } else if (isLanguage) {
        choice.language = boost::algorithm::to_lower_copy(rest);
    } else if (!choice.kind || !isAlone) {
        throw TextError("'" + text +
                        "' is neither the number of a stream, nor a kind such as audio, nor a language such as eng");
    }
    return choice;
}

void TakeStreams(const std::string& text, const Taker& taker) {
    std::vector<std::string> parts;
    boost::algorithm::split(parts, boost::algorithm::to_lower_copy(text), [](char c) { return c == ','; });
    auto& streams = taker.GetRequest().streams;
    streams.clear();
    for (const std::string& part : parts) streams.push_back(ParseStreams(part));
}

void TakeCopy(const std::string& text, const Taker& taker) {
    const bool isAll = boost::algorithm::to_lower_copy(text) == "all";
    if (!isAll && text != g_bare) throw TextError("'" + text + "' is not all");
    taker.GetRequest().copy = true;
    taker.GetRequest().copyAll = isAll;
}

void TakeDeinterlacing(const std::string& text, const Taker& taker) {
    constexpr std::pair<const char*, Deinterlacing> wishes[] = {
        {"auto", Deinterlacing::Auto}, {"on", Deinterlacing::On}, {"off", Deinterlacing::Off}};
    const std::string word = boost::algorithm::to_lower_copy(text);
    const auto* const wish =
        std::find_if(std::begin(wishes), std::end(wishes), [&word](const auto& row) { return word == row.first; });
    if (wish == std::end(wishes)) throw TextError("'" + text + "' is neither auto nor on nor off");
    taker.GetRequest().deinterlacing = wish->second;
}

std::vector<Option> GeneralOptions() {
    return {
        {"--format", "FORMAT",
         "Container, such as mp4, mkv or mov (default: by the\n"
         "extension of OUTPUT). norvex-rules list has them all",
         NameOrOpen(Path({P::KEY_FORMAT, Conf::IFormatFile::TAG_CONTAINER}))},
        {"--copy", "[=all]",
         "Carry over unchanged each stream of which nothing is\n"
         "asked and that the container takes as it is; with\n"
         "=all also what FFmpeg carries and the rule book\n"
         "refuses",
         TakeCopy},
        {"--streams", "LIST",
         "What is taken of the input, by number, kind and language:\n"
         "0,2 or video,audio:eng,subtitles (kinds: video, audio,\n"
         "subtitles, cover, attachments, data; default: all that\n"
         "the container holds)",
         TakeStreams},
        {"--start", "TIME",
         "Leave out what lies before: seconds, such as 90 or 1.5,\n"
         "or 1:30. With --copy the film begins at the key picture\n"
         "before it",
         Time(&Request::start, 0)},
        {"--duration", "TIME", "Leave out what lies behind that much", Time(&Request::duration, 1)},
        {"--no-faststart", nullptr, "Leave the index of MP4 and MOV behind the media", Flag(&Request::noFaststart)},
        {"--preset", "FILE", "Start from a preset: a name of --list-presets, or a file", File(&Request::presetFile)},
        {"--save-preset", "FILE", "Write what was settled on to this file", File(&Request::savePresetFile)},
        {"--classic", nullptr, "Know the classic codecs and containers alone", Flag(&Request::classic)},
        {"--dry-run", nullptr, "Show what would be encoded, and encode nothing", Flag(&Request::dryRun)},
        {"--verbose", nullptr, "Show each value that was asked and settled on", Flag(&Request::verbose)},
        {"--explain", nullptr, "The same, with each rule and constraint that was looked at", Flag(&Request::explain)},
        {"--json", nullptr, "Print for programs", Flag(&Request::json)},
        {"--quiet", nullptr, "Print nothing but errors", Flag(&Request::quiet)},
    };
}

std::vector<Option> VideoOptions() {
    const std::string& codec = P::KEY_FILTER_VIDEO_CODEC;
    const auto inOptions = [&](const std::string& tag) { return Path({codec, V::TAG_CODEC_OPTIONS_ENCODE, tag}); };
    const std::string& resize = Proc::IFilterResize::CLASS_ID;
    return {
        {"--video", "CODEC",
         "Codec, such as h264, h265, av1 or prores (default:\n"
         "auto, the container's). norvex-rules show format\n"
         "FORMAT has those that a container carries",
         NameOrOpen(Path({codec, V::TAG_CODEC_ID}))},
        {"--no-video", nullptr, "Leave the picture out", Flag(&Request::noVideo)},
        {"--quality", "NUMBER", "Quantiser from 1, the best, to " + std::to_string(V::MAX_QUALITY) + ", or auto",
         Quality(codec)},
        {"--video-bitrate", "BITRATE",
         "Bits per second to hold, such as 800k or 5M, or auto.\n"
         "Either this or --quality",
         Bitrate(codec)},
        {"--size", "SIZE",
         "1280x720 and the like, 480p, 720p, 1080p, 4k, ntsc,\n"
         "pal, or auto, the source's",
         FrameSize(resize)},
        {"--resize-mode", "MODE",
         "How the picture meets the size: smart_fit, up_to,\n"
         "letterbox, stretch, auto or crop",
         Word(Path({resize, IResize::CLASS_ID, IResize::MODE}))},
        {"--fps", "RATE",
         "Frames per second, such as 25, 29.97 or 30000/1001,\n"
         "or ntsc, pal, film, or auto, the source's",
         FrameRate(Path({Proc::IFilterFrameRate::CLASS_ID, V::TAG_FPS}))},
        {"--deinterlace", "WHEN", "auto, on or off: auto keeps the fields of interlaced\npictures where the codec can",
         TakeDeinterlacing},
        {"--two-pass", nullptr, "Encode twice, the second time by what the first has\nlearned",
         [mode = Path({codec, V::TAG_MULTIPASS_ENCODING})](const std::string& /*text*/, const Taker& taker) {
             taker.Choose(mode, V::TAG_TWO_PASS_MODE);
         }},
        {"--encoder-preset", "NAME",
         "Encoder preset, such as slow. norvex-rules show video\n"
         "CODEC has those of a codec, as it has profiles, tunes\n"
         "and formats",
         Word(inOptions(V::TAG_PRESET))},
        {"--profile", "NAME", "Encoder profile, such as high", Word(inOptions(V::TAG_PROFILE))},
        {"--tune", "NAME", "Encoder tune, such as animation", Word(inOptions(V::TAG_X264_TUNE))},
        {"--codec-format", "NAME", "Form of the codec, such as hap_q", Word(inOptions(V::TAG_FORMAT))},
        {"--key-frames", "NUMBER", "Longest distance of key frames, in frames, or auto",
         Number(Path({codec, V::TAG_MAX_I_FRAME_INTERVAL}))},
        {"--b-frames", "NUMBER", "Most B frames in a row, or auto", Number(Path({codec, V::TAG_MAX_B_FRAME_SEQUENCE}))},
        {"--threads", "NUMBER", "Encoder threads, or auto", Number(Path({codec, V::TAG_THREAD_NUMBER}))},
    };
}

std::vector<Option> AudioOptions() {
    const std::string& codec = P::KEY_FILTER_AUDIO_CODEC;
    const std::string& resample = Proc::IFilterResample::CLASS_ID;
    const auto inResample = [&](const std::string& tag) { return Path({resample, Proc::IResample::CLASS_ID, tag}); };
    return {
        {"--audio", "CODEC", "Codec, such as aac, mp3, flac or pcm (default: auto,\nthe container's)",
         Name(Path({codec, A::TAG_CODEC_ID}))},
        {"--no-audio", nullptr, "Leave the sound out", Flag(&Request::noAudio)},
        {"--audio-bitrate", "BITRATE", "Bits per second, such as 128k, or auto", Bitrate(codec)},
        {"--audio-profile", "NAME",
         "Encoder profile, such as aac_low. norvex-rules show\n"
         "audio CODEC has those of a codec",
         Word(Path({codec, A::TAG_CODEC_OPTIONS_ENCODE, A::TAG_PROFILE}))},
        {"--sample-rate", "RATE", "Hz, such as 44100 or 48k, or auto, the source's",
         SampleRate(inResample(A::TAG_SAMPLE_RATE))},
        {"--layout", "LAYOUT", "Channels: mono, stereo, 5.1, 7.1 and the like, or auto,\nthe source's",
         NameOrOpen(inResample(A::TAG_LAYOUT))},
        {"--sample-format", "FORMAT", "Sample format, such as s16, s32 or fltp, or auto",
         NameOrOpen(Path({resample, A::TAG_SAMPLE_FORMAT}))},
    };
}

std::vector<Option> SubtitleOptions() {
    return {
        {"--subtitles", "CODEC",
         "Codec of text, such as srt, ass or mov_text, or auto,\n"
         "the container's own",
         Name(Path({P::KEY_FILTER_SUBTITLE_CODEC, V::TAG_CODEC_ID}))},
        {"--no-subtitles", nullptr, "Leave the subtitles out", Flag(&Request::noSubtitles)},
    };
}

/// A flag that may have a value behind an equals sign, and never takes the next word for it.
CLI::Option* AddFlagWithValue(CLI::App& app, const Option& option, const Taker& taker) {
    const auto text = std::make_shared<std::string>();  // which the parser wants, and `check` keeps
    const auto take = [take = option.take, taker, text](const std::string& value) -> std::string {
        try {
            take(value, taker);
            return {};
        } catch (const TextError& error) {
            return error.what();
        }
    };
    return app.add_flag(option.name, *text, option.help)->check(take)->option_text(option.value);
}

void AddOptions(CLI::App& app, Request& request, const std::string& group, const std::vector<Option>& options) {
    for (const Option& option : options) {
        const Taker own(request, option.name);
        const auto take = [take = option.take, taker = own, name = std::string(option.name)](const std::string& text) {
            try {
                take(text, taker);
            } catch (const TextError& error) {
                throw CLI::ValidationError(name, error.what());
            }
        };
        CLI::Option* const added =
            option.value == nullptr ? app.add_flag_callback(
                                          option.name, [take] { take({}); }, option.help)
            : option.value[0] == '['
                ? AddFlagWithValue(app, option, own)
                : app.add_option_function<std::string>(option.name, take, option.help)->option_text(option.value);
        added->group(group)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
}

const char* const g_examples = R"(Examples:
  norvex-export film.mov film.mp4
      what suits the container: H.264 and AAC
  norvex-export film.mov film.mkv --video h265 --quality 22
      another codec, of a quality of your choice
  norvex-export film.mov small.mp4 --size 720p --fps 25 --audio-bitrate 128k
      smaller
  norvex-export film.mov film.mp4 --video-bitrate 5M --two-pass
      of a size that is known before
  norvex-export film.mov film.mp4 --audio-bitrate 128k --audio-bitrate:1 64k
      one stream by its number otherwise than the others
  norvex-export film.mov film.mkv --copy
      another container, with what is in it unchanged; --copy=all goes
      by FFmpeg's word alone
  norvex-export film.mov song.mp3 --audio-bitrate 192k
      the sound alone
  norvex-export film.mov film.gif --size 320x180 --fps 10
      an animation; a name such as frame.png gives the first picture
  norvex-export film.mov film.webm --dry-run --explain
      what would be done, and why; nothing is encoded
  norvex-export film.mov film.mp4 --quality 20 --save-preset my.json
      keep the settings; --preset my.json takes them up again)";

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

Request Request::For(int stream, const std::string& codecSection) const {
    Request own = *this;
    auto& kept = own.choices;
    const auto drop = [&kept](const auto& isOut) {
        kept.erase(std::remove_if(kept.begin(), kept.end(), isOut), kept.end());
    };
    drop([&](const Choice& choice) { return choice.stream && *choice.stream != stream; });
    for (Choice& choice : kept) choice.stream.reset();
    TakeBackOpen(own);
    const std::string codecId = own.TextAt(Path({codecSection, A::TAG_CODEC_ID}));
    drop([&](const Choice& choice) { return !choice.codecId.empty() && choice.codecId != codecId; });
    return own;
}

namespace {

/// Gives the program's command line all that it takes.
void Declare(CLI::App& app, Request& request) {
    constexpr std::size_t helpColumn = 28;
    app.get_formatter()->column_width(helpColumn);
    app.set_version_flag("--version", NORVEX_VERSION);
    app.add_flag_callback(
           "--list-presets", [] { throw CLI::CallForVersion(NorvexApps::PresetsText(), 0); },
           "Print the presets that --preset knows by name")
        ->trigger_on_parse();
    app.add_option("INPUT", request.input, "The file to export")->required()->option_text(" ");
    app.add_option("OUTPUT", request.output, "The file to write; replaced when the export has succeeded")
        ->required()
        ->option_text(" ");
    AddOptions(app, request, "Options", GeneralOptions());
    AddOptions(app, request, "Picture", VideoOptions());
    AddOptions(app, request, "Sound", AudioOptions());
    AddOptions(app, request, "Subtitles", SubtitleOptions());
    app.get_option("--quality")->excludes("--video-bitrate");
}

/// What an option said of one stream, "--audio-bitrate:2 64k": the option alone, as if it were about all.
struct NumberedOption {
    int stream = 0;
    std::vector<std::string> arguments;
};

/// Takes the numbered options out of the arguments.
std::vector<NumberedOption> TakeNumbered(const CLI::App& app, std::vector<std::string>& arguments) {
    std::vector<NumberedOption> numbered;
    std::vector<std::string> others;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::size_t equals = std::min(argument->find('='), argument->size());
        const std::size_t colon = argument->substr(0, equals).rfind(':');
        const std::string name = argument->substr(0, colon);
        const CLI::Option* const option = name.compare(0, 2, "--") == 0 ? app.get_option_no_throw(name) : nullptr;
        const auto number = colon == std::string::npos
                                ? std::nullopt
                                : NorvexApps::ParseInteger(argument->substr(colon + 1, equals - colon - 1));
        if (option == nullptr || !number || *number < 0 || *number > std::numeric_limits<int>::max()) {
            others.push_back(*argument);
            continue;
        }
        NumberedOption own = {static_cast<int>(*number), {name + argument->substr(equals)}};
        const bool takesMore = option->get_items_expected_max() > 0 && equals == argument->size();
        if (takesMore && std::next(argument) != arguments.end()) own.arguments.push_back(*++argument);
        numbered.push_back(std::move(own));
    }
    arguments = std::move(others);
    return numbered;
}

void Parse(CLI::App& app, std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
    app.parse(std::move(arguments));
}

/// Adds the choices that an option makes for one stream.
void TakeForStream(const NumberedOption& numbered, Request& request) {
    Request alone;
    CLI::App app;
    Declare(app, alone);
    std::vector<std::string> arguments = numbered.arguments;
    arguments.insert(arguments.end(), {"input", "output"});
    Parse(app, arguments);
    const std::string suffix = ":" + std::to_string(numbered.stream);
    const std::string option = numbered.arguments.front().substr(0, numbered.arguments.front().find('='));
    const bool isOfFormat =
        !alone.choices.empty() && alone.choices.front().path.compare(0, P::KEY_FORMAT.size(), P::KEY_FORMAT) == 0;
    if (alone.choices.empty() || isOfFormat) {
        throw CLI::ValidationError(option + suffix, "this is about no single stream");
    }
    for (Choice& choice : alone.choices) {
        choice.option += suffix;
        choice.stream = numbered.stream;
        request.choices.push_back(std::move(choice));
    }
}

/// What a shell offers for the value of an option.
std::vector<std::string> ValuesOf(const std::string& name, const std::vector<std::string>& /*before*/) {
    using NorvexApps::Named;
    static const std::pair<const char*, Named> named[] = {
        {"--format", Named::Format},           {"--video", Named::VideoCodec}, {"--audio", Named::AudioCodec},
        {"--subtitles", Named::SubtitleCodec}, {"--layout", Named::Layout},    {"--sample-format", Named::SampleFormat},
    };
    static const std::pair<const char*, std::vector<std::string>> words[] = {
        {"--copy", {"all"}},
        {"--deinterlace", {"auto", "on", "off"}},
        {"--fps", {"auto", "film", "pal", "ntsc"}},
        {"--size", {"auto", "480p", "720p", "1080p", "4k", "ntsc", "pal"}},
        {"--resize-mode", {"auto", "smart_fit", "up_to", "letterbox", "stretch", "crop"}},
        {"--streams", {"video", "audio", "subtitles", "cover", "attachments", "data"}},
    };
    for (const auto& [option, values] : words) {
        if (name == option) return values;
    }
    if (name == "--preset") return NorvexApps::PresetNames();
    for (const auto& [option, kind] : named) {
        if (name != option) continue;
        RegisterModernHelpers();
        TakeCensus();
        return NorvexApps::IdsOf(kind);
    }
    return {};
}

const NorvexApps::ManTexts g_manTexts = {
    "Exports a film, sound, a picture or subtitles to another container, with codecs and settings that are legal there "
    "by the rule book of Norvex. The extension of OUTPUT tells the container. All of the input goes over that the "
    "container holds; what is left out, changed or lost is told, with the reason.\n"
    "Names and quantities are taken as people type them: h265, MKV, 720p, 29.97, 128k. An option with a stream's "
    "number behind a colon, such as --audio-bitrate:2, is about that stream of the input alone.",
    g_examples,
    "0 if the output stands, or would by --dry-run; 1 if the export failed, and what OUTPUT was before stays; 2 for a "
    "wrong command line; 128 and the number of a signal that ended the program. What went wrong is told on standard "
    "error.",
    "Presets are JSON documents of settings, as --save-preset writes them. Those of $XDG_CONFIG_HOME/norvex/presets "
    "(~/.config/norvex/presets) have names, and come before those of share/norvex/presets.",
    "norvex-rules(1), ffmpeg(1), ffprobe(1)",
};

}  // namespace

Parsed ParseCommandLine(int argc, const char* const* argv) {
    Parsed parsed;
    CLI::App app("Exports video, sound, pictures and subtitles by the rule book of the container and the codecs.",
                 "norvex-export");
    Declare(app, parsed.request);
    if (NorvexApps::AnswersShell(app, argc, argv, ValuesOf) || NorvexApps::PrintsManPage(app, argc, argv, g_manTexts)) {
        parsed.exitStatus = 0;
        return parsed;
    }
    try {
        std::vector<std::string> arguments(argv + 1, argv + argc);
        const std::vector<NumberedOption> numbered = TakeNumbered(app, arguments);
        Parse(app, arguments);
        // What is said of one stream counts more than what is said of all.
        for (const NumberedOption& option : numbered) TakeForStream(option, parsed.request);
    } catch (const CLI::ParseError& error) {
        parsed.exitStatus = NorvexApps::ExitStatus(app, error, g_examples);
    }
    return parsed;
}

}  // namespace NorvexExport
