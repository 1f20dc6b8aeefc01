// Writes the rule book as one text that people have read: what each helper starts with, allows and ties together, and
// what it makes of streams. book.txt is the text as it was read, without encoders and then ("book encoders") with some;
// modern.txt is what the second set adds to it ("book modern", which reads the first). After a change on purpose
// `scripts/norvex book` writes both anew, and the difference is what there is to read.

#include <iostream>
#include <iterator>
#include <sstream>
#include <tuple>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Texts = std::vector<std::string>;

Texts Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// What a helper makes of a stream, or that it fails.
Property Corrected(const IDataHelper& helper, Property stream) {
    try {
        helper.CorrectFormatCodec(stream);
    } catch (const std::exception&) {
        stream = Property("failure", true);
    }
    return stream;
}

/// The stream with another value of a child, or without it where that is "-".
Property With(const std::string& stream, const std::string& tag, const std::string& value) {
    Property tree = Tree(stream);
    tree.RemoveChild(tag);
    if (value != "-") tree.AddNamed(Tree("{" + tag + ':' + value + '}')[0]);
    return tree;
}

/// Each value that a child of the stream may have, "-" for none, and what becomes of it: "TAG: ASKED>BECAME ..."; empty
/// where all stay.
std::string Axis(const IDataHelper& helper, const std::string& stream, const std::string& tag, const Texts& values) {
    std::string line = "  " + tag + ':';
    for (const std::string& value : values) {
        Property tree = With(stream, tag, value);
        const auto text = [&] { return tree.ChildExists(tag) ? PropertyValueToString(tree[tag]) : "-"; };
        const std::string asked = text();
        tree = Corrected(helper, tree);
        line += ' ' + asked + (text() == asked ? "" : '>' + text());
    }
    return line.find('>') == std::string::npos ? "" : line + '\n';
}

const std::string g_sound = "s{sample_rate: 44100, sample_format: s16, channel_layout: stereo}";
const Texts g_rates = Words(
    "-9223372036854775807 7 8000 11025 12000 16000 22050 24000 32000 44100 46050 48000 96000 200000 "
    "9223372036854775807");
const Texts g_layouts = Words("mono stereo 2.1 4.0 5.0(side) 5.1(side) 6.1 7.1 hexadecagonal");

/// The bitrate that a codec gives each sample rate and layout for one that is asked for. Rates that differ in nothing
/// from the one before are left out.
std::string Bitrates(const IDataHelper& helper, const std::string& bitrate) {
    std::string table, before;
    for (const std::string& rate : g_rates) {
        std::string row;
        for (const std::string& layout : g_layouts) {
            const std::string sound = "sample_rate: " + rate + ", sample_format: s16, channel_layout: " + layout;
            const Property stream = Corrected(helper, Tree("s{" + sound + ", bitrate: " + bitrate + "}"));
            row += ' ' + PropertyValueToString(stream["bitrate"]);
        }
        if (row != before) table += "    " + rate + ':' + row + '\n';
        before = row;
    }
    return table;
}

std::string AudioCorrections(const IDataHelper& helper) {
    const std::string low = Bitrates(helper, "1"), high = Bitrates(helper, "1000000000");
    return Axis(helper, g_sound, "sample_rate", g_rates) + Axis(helper, g_sound, "channel_layout", g_layouts) +
           Axis(helper, g_sound, "bitrate_mode", Words("- cbr vbr cbr_auto x")) +
           Axis(helper, g_sound, "quality", Words("- 0 1 2 51 52")) +
           Axis(helper, g_sound, "bitrate", Words("- 1 5000 9000 50000 100000 176000 288000 300000 400000 900000")) +
           "  the lowest bitrate by sample rate and layout:\n" + low +
           (high == low ? "  and the highest\n" : "  the highest:\n" + high);
}

std::string VideoCorrections(const IDataHelper& helper) {
    std::string text;
    for (const char* const size :
         {"s{width: 16, height: 16, frame_rate: 25/1}", "s{width: 1280, height: 720, frame_rate: 30000/1001}"}) {
        Property stream = Tree(size);
        helper.ApplyPresetSettings(helper.GetDefaults(), stream);
        text += "  applied: " + PropertyValueToString(stream) + '\n';
    }
    const std::string stream = "s{bitrate_mode: cbr}";
    return text + Axis(helper, stream, "bitrate_mode", Words("- cbr vbr cbr_auto x")) +
           Axis(helper, stream, "bitrate", Words("- 0 99999 100000 800000000 800000001")) +
           Axis(helper, stream, "quality", Words("- 0 1 31 32 51 52")) +
           Axis(helper, stream, "max_b_frames", Words("- 5")) +
           Axis(helper, stream, "key_frame_interval", Words("- 5"));
}

/// What a container changes in streams of each codec, and whether it would be another if the codec's own correction
/// came first.
std::string FormatCorrections(const IDataHelper& format) {
    const std::tuple<const char*, const char*, Texts> axes[] = {
        {"video", "frame_rate", Words("0/1 7/1 12/1 20/1 22/1 24000/1001 27/1 40/1 54/1 61/1")},
        {"video", "cover", Words("false true")},
        {"video", "encode_options", Words("{profile:none}")},
        {"audio", "sample_rate", Words("7 8000 8100 12000 17000 23000 30000 46050 96000")},
        {"audio", "channel_layout", Words("mono 2.1 5.1(side)")}};
    std::string text;
    for (const auto& [kind, tag, values] : axes) {
        for (const auto& [id, codec] : GetAvailableDataHelpers(kind + std::string("_codec"))) {
            const std::string stream = std::string("format_codec_") + kind + "{codec_id: " + id;
            const std::string line = Axis(format, stream + "}", tag, values);
            if (line.empty()) continue;
            bool isOrdered = false;
            for (const std::string& value : values) {
                const Property asked = With(
                    stream + ", sample_rate: 44100, sample_format: s16, channel_layout: stereo" + ", bitrate: 320000}",
                    tag, value);
                isOrdered |= Corrected(*codec, Corrected(format, asked)) != Corrected(format, Corrected(*codec, asked));
            }
            text += "  " + id + line + (isOrdered ? "  in front of the codec's own correction\n" : "");
        }
    }
    return text;
}

/// What a helper allows and ties together.
std::string Lines(const IDataHelper& helper) {
    std::string text;
    for (const std::string& line : ConstraintsOf(helper)) text += line + '\n';
    for (const std::string& line : RulesOf(helper)) text += line + '\n';
    return text;
}

std::string Say(const IDataHelper& helper) {
    std::string text = Dump(helper.GetDefaults());
    ObjectList objects;
    helper.GetRequiredObjects(objects);
    for (const auto& [kind, implementation] : objects) text += "requires " + kind + implementation + '\n';
    return text + Lines(helper);
}

/// The helpers of a section, each by its text, but for texts that are known. Those that differ from an earlier one in
/// their id alone are told by its.
template <class Say>
void Tell(const std::string& known, const std::string& kind, const Say& say) {
    std::map<std::string, std::string> told;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
        const std::string text = say(*helper);
        std::string nameless = text;
        for (std::size_t at = 0; (at = nameless.find(' ' + id, at)) != std::string::npos; ++at)
            nameless.replace(at + 1, id.size(), "ID");
        const auto [before, isNew] = told.emplace(nameless, id);
        const std::string section = "\n== " + kind + ' ' + id + '\n' + (isNew ? text : "as " + before->second + '\n');
        if (known.find(section) == std::string::npos) std::cout << section;
    }
}

void TellHelpers(const std::string& known = {}) {
    Tell(known, "format", [](const auto& helper) { return Say(helper) + FormatCorrections(helper); });
    Tell(known, "video_codec", [](const auto& helper) { return Say(helper) + VideoCorrections(helper); });
    Tell(known, "audio_codec", [](const auto& helper) { return Say(helper) + AudioCorrections(helper); });
}

void TellWithoutEncoders() {
    TellHelpers();
    const auto f4a = DataHelperFormatF4a::Create();
    std::cout << "\n== f4a of its own class\n" << Say(*f4a) + FormatCorrections(*f4a);
    for (const bool isIpod : {false, true}) {
        for (const bool isM4v : {false, true}) {
            std::cout << "\n== mp4, iPod " << isIpod << ", M4V " << isM4v << '\n'
                      << Say(*DataHelperFormatMp4::Create("mp4", isIpod, isM4v));
        }
    }
    std::cout << "\n== wmv3 without a row\n" << Say(*DataHelperVideoCodecWmv3::Create());
    for (const char* const id :
         {"filter_formatter", "filter_rate", "filter_resample", "filter_resize", "filter_volume"})
        std::cout << "\n== " << id << '\n' << Say(*CreateDataHelper(id, ""));
    std::cout << "\n== settings of a filter that nobody changed\n"
              << Dump(Proc::IFilterResize::Settings2Property({})) << Dump(Proc::IFilterResample::Settings2Property({}));
    for (const Texts& ids : {GetAllVideoCodecs(), GetAllAudioCodecs(), GetAllSubtitleCodecs()}) {
        std::cout << "\n== ids\n";
        for (const std::string& id : ids) std::cout << id << '\n';
    }
    std::cout << "\n== bitrates of 1280x720 at 25 frames per second without a quality, and at 50 with 20\n";
    for (const std::string& id : GetAllVideoCodecs()) {
        std::cout << id << ' ' << GetDefaultVideoBitrate(id, 1280, 720, 25, -1) << ' '
                  << GetDefaultVideoBitrate(id, 1280, 720, 50, 20) << '\n';
    }
}

/// Vorbis is the one codec of which three values hang together: here its encoder leaves them to the search.
void TellVorbis() {
    std::vector<int> rates;
    for (int rate = 11025; rate <= 100000; rate += 2575) rates.push_back(rate);
    std::vector<AVChannelLayout> layouts;
    for (int channels = 1; channels <= 16; ++channels) {
        if (LayoutRecord::FindDefault(channels) != nullptr) layouts.push_back(UnorderedLayout(channels));
    }
    const FakeBuild build({{"vorbis", {{}, {}, rates, layouts}}});
    std::cout << "\n== vorbis of an encoder that takes all\n"
              << AudioCorrections(*DataHelperAudioCodecVorbis::Create());
}

/// Where every codec has an encoder that declares something of each kind.
void TellWithEncoders() {
    TellVorbis();
    std::map<std::string, FakeEncoder> encoders;
    for (const Texts& ids : {GetAllVideoCodecs(), GetAllAudioCodecs()}) {
        for (const std::string& id : ids) {
            encoders[id] = {{{25, 1}, {30000, 1001}},
                            {AV_SAMPLE_FMT_S32P, AV_SAMPLE_FMT_S16},
                            {22050, 48000},
                            {NativeLayout(AV_CH_LAYOUT_5POINT1), NativeLayout(AV_CH_LAYOUT_MONO)}};
        }
    }
    const FakeBuild build(encoders);
    for (const char* const kind : {"video_codec", "audio_codec"}) {
        Tell({}, kind, [isAudio = kind[0] == 'a'](const auto& helper) {
            return "(with an encoder)\n" + Lines(helper) +
                   (isAudio ? Axis(helper, g_sound, "sample_rate", Words("8000 96000")) +
                                  Axis(helper, g_sound, "sample_format", Words("fltp s32")) +
                                  Axis(helper, g_sound, "channel_layout", Words("stereo 7.1"))
                            : "");
        });
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    if (what.empty()) TellWithoutEncoders();
    if (what == "encoders") TellWithEncoders();
    if (what == "modern") {
        RegisterModernHelpers();
        TellHelpers({std::istreambuf_iterator<char>(std::cin), {}});
    }
}
