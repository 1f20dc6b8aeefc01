// Presets and streams of anybody's making, on all the roads that a host takes with them.

#include <exception>
#include <iterator>
#include <vector>

#include "Input.h"
#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;

namespace {

/// Every helper of the catalogue, in an order that does not change.
const std::vector<NamedHelper>& AllHelpers() {
    static const std::vector<NamedHelper> helpers = [] {
        std::vector<NamedHelper> all;
        RegisterModernHelpers();
        for (const std::string& kind :
             {IPreset::KEY_FORMAT, IPreset::KEY_FILTER_VIDEO_CODEC, IPreset::KEY_FILTER_AUDIO_CODEC}) {
            for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) all.push_back({kind, id, helper});
        }
        for (const char* filter :
             {"filter_resample", "filter_volume", "filter_formatter", "filter_rate", "filter_resize"}) {
            all.push_back(FindHelper(filter, ""));
        }
        return all;
    }();
    return helpers;
}

const NamedHelper& Pick(Input& input) {
    return AllHelpers()[input.Number(AllHelpers().size())];
}

/// A stream that is legal but for what the bytes say: then correction comes to the end of its road.
Property Stream(Input& input) {
    const bool isVideo = input.Flag();
    const Property video[] = {
        Property("codec_id", "h264"),    Property("width", 1920),      Property("height", 1080),
        Property("aspect_x", 1),         Property("aspect_y", 1),      Property("frame_rate", Core::Ratio(30000, 1001)),
        Property("bitrate_mode", "vbr"), Property("bitrate", 2000000), Property("quality", 20),
        Property("cover", false),        Property("encode_options")};
    const Property audio[] = {Property("codec_id", "aac"),      Property("sample_rate", 48000),
                              Property("sample_format", "s16"), Property("channel_layout", "stereo"),
                              Property("bitrate_mode", "cbr"),  Property("bitrate", 128000),
                              Property("quality", 20)};
    Property stream(isVideo ? "format_codec_video" : "format_codec_audio");
    const Property* const begin = isVideo ? std::begin(video) : std::begin(audio);
    const Property* const end = isVideo ? std::end(video) : std::end(audio);
    for (const Property* child = begin; child != end; ++child) {
        stream.AddNamed(input.Number(4) == 1 ? input.Tree(child->GetName(), 3) : *child);
    }
    return stream;
}

void Apply(const NamedHelper& named, const Property& preset, Property stream) {
    try {
        named.helper->ApplyPresetSettings(preset, stream);
    } catch (const Exception&) {
    }
}

void Mend(const Property& preset) {
    const MendedPreset mended = MendPreset(preset);
    Require(mended.left.empty(), "what is mended breaks nothing");
    Require(!mended.broken.empty() || Same(mended.preset, preset), "what breaks nothing stays as it is");
    for (const Finding& finding : JudgePreset(mended.preset)) {
        Require(finding.problem == Finding::Problem::Missing, "what is mended is legal when it is looked at again");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    while (!input.IsEmpty()) {
        const NamedHelper& first = Pick(input);
        const NamedHelper& second = Pick(input);
        Property stream = input.Number(4) == 1
                              ? input.Tree(input.Flag() ? "format_codec_video" : "format_codec_audio", 4)
                              : Stream(input);
        std::vector<Property> sections = {first.helper->GetDefaults(), second.helper->GetDefaults(), stream};
        for (std::size_t more = input.Number(4); more > 0; --more) sections.push_back(input.Tree(input.Text(), 4));
        // Defaults with a strange value in them go farther than strange trees.
        Property& mutated = sections[input.Number(2)];
        if (mutated.Count() > 0) mutated[input.Number(mutated.Count())] = input.Tree(input.Text(), 3);

        const Property preset = AssemblePreset(sections);
        for (const Finding& finding : ExplainPreset(preset, {first, second})) {
            const bool isViolated = finding.verdict == Finding::Verdict::Violated;
            Require(isViolated != finding.message.empty() && isViolated != finding.documentPath.empty(),
                    "a violation says why and where");
            (void)StreamPathOf(finding.path);
            Require(!finding.value || Same(*finding.value, preset[finding.path]),
                    "a finding's path leads to its value");
        }
        for (const NamedHelper& named : HelpersOf(preset)) (void)named.helper->GetDefaults();
        (void)CheckPreset(preset, HelpersOf(preset));
        Mend(preset);
        Apply(first, mutated, stream);
        Apply(first, mutated, sections.back());
        if (preset.ChildExists(first.kind)) Apply(first, preset[first.kind], stream);

        const Property before = stream;
        Property plain = stream;
        bool throws = false;
        try {
            first.helper->CorrectFormatCodec(plain);
            second.helper->CorrectFormatCodec(plain);
        } catch (const std::exception&) {
            throws = true;
        }
        const CorrectionReport report = CorrectWithReport(stream, {first, second});
        Require(Same(plain, stream), "a report changes nothing");
        // Of two helpers one may take back what the other did.
        Require(Same(stream, before) || !report.changes.empty(), "no change is passed over");
        Require(throws == (report.failure != nullptr), "a report tells of the failure");
    }
    return 0;
}
