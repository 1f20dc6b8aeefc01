// What holds of the correction of every helper, whatever a stream's node holds.

#include <algorithm>
#include <exception>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Input.h"
#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;
using Tags = std::set<std::string>;

namespace {

/// What correction may change, in a kind of section.
struct Kind {
    std::string name;
    Tags changes;
};
const std::vector<Kind>& Kinds() {
    static const std::vector<Kind> kinds = {
        {"format", {"frame_rate", "cover", "encode_options", "sample_rate", "channel_layout"}},
        {"video_codec", {"bitrate_mode", "bitrate", "quality", "max_b_frames", "key_frame_interval"}},
        {"audio_codec", {"bitrate_mode", "bitrate", "quality", "sample_rate", "sample_format", "channel_layout"}},
    };
    return kinds;
}

/// A stream that is legal but for what the bytes say, about a codec of the kind.
Property Stream(Input& input, bool isVideo) {
    static const auto idsOf = [](const std::string& kind) {
        std::vector<std::string> ids;
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) ids.push_back(id);
        return ids;
    };
    static const std::vector<std::string> codecs[] = {idsOf("audio_codec"), idsOf("video_codec")};
    Property stream(input.Number(32) == 1 ? "another" : isVideo ? "format_codec_video" : "format_codec_audio");
    const auto add = [&](const std::string& name, const auto& value) {
        const std::size_t choice = input.Number(16);
        if (choice == 1) stream.AddNamed(input.Tree(name, 3));
        if (choice > 2 || choice == 0) stream.AddNamed(Property(name, value));
    };
    const auto number = [&](long long lo, long long hi) {
        return lo + static_cast<long long>(input.Number(256) * 256 + input.Number(256)) * (hi - lo) / 65535;
    };
    const auto any = [&](std::initializer_list<const char*> words) {
        return words.begin()[input.Number(words.size())];
    };
    const std::vector<std::string>& ids = codecs[isVideo ? 1 : 0];
    add("codec_id", ids[input.Number(ids.size())]);
    add("bitrate_mode", any({"cbr", "vbr", "cbr_auto", ""}));
    add("bitrate", number(1000, 1000000));
    add("quality", number(0, 60));
    add("a stranger", "stays");
    if (isVideo) {
        add("frame_rate", Core::Ratio(number(1, 120000), input.Flag() ? 1001 : 1000));
        add("max_b_frames", number(0, 20));
        add("key_frame_interval", number(0, 500));
        add("cover", input.Flag());
        Property options("encode_options");
        options.SetChildT("profile", any({"main", "high", "baseline", "none"}));
        if (input.Flag()) stream.AddNamed(options);
    } else {
        add("sample_rate", number(7000, 200000));
        add("sample_format", any({"s16", "fltp", "u8", "s32p", "dbl"}));
        add("channel_layout", any({"mono", "stereo", "5.1", "5.1(side)", "7.1", "2.1", "unknown", "4.0", "quad"}));
    }
    return stream;
}

/// What is promised of a correction that fails; false where it did not.
bool Fails(const IDataHelper& helper, bool isAudioCodec, Property& stream) {
    try {
        helper.CorrectFormatCodec(stream);
        return false;
    } catch (const Core::PropertyException&) {
    } catch (const ConstraintIsNotApplicableForTypeException&) {
    } catch (const FormatException&) {
        Require(isAudioCodec, "only a codec of sound looks names up");
    } catch (const std::logic_error&) {
        Require(isAudioCodec, "only a codec of sound has values that cannot be mended");
    }
    return true;
}

void RequireOnlyChanges(const Property& before, const Property& after, const Kind& kind, const std::string& id) {
    Require(after.GetName() == before.GetName(), "a correction keeps the stream's name");
    for (const auto& [one, two] : {std::pair(&before, &after), std::pair(&after, &before)}) {
        for (const Property& child : *one) {
            const auto other = two->FindChild(child.GetName());
            if (other != two->end() && Same(*other, *one->FindChild(child.GetName()))) continue;
            Require(kind.changes.count(child.GetName()) == 1, "a correction changes what it may");
            static const Tags withoutBFrames = {"mjpeg", "flv1", "wmv2", "h263"};
            Require(after.ChildExists(child.GetName()) ||
                        (child.GetName() == "max_b_frames" && withoutBFrames.count(id) != 0),
                    "a correction takes nothing away");
        }
    }
}

bool Keeps(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value);
    } catch (const std::exception&) {
        return false;
    }
}

/// Mode, bitrate and quality are legal or the default, and what the first rule about the sound wants is kept.
void RequireSettled(const std::string& id, const IDataHelper& codec, const Property& before, const Property& after) {
    if (id == "auto") return Require(Same(before, after), "the automatic codec changes nothing");
    const Property defaults = codec.GetDefaults();
    ConstraintMap constraints;
    codec.GetConstraints(constraints);
    for (const char* const tag : {"bitrate_mode", "bitrate", "quality"}) {
        const auto constraint = constraints.find(tag);
        if (!after.ChildExists(tag)) {
            Require(!before.ChildExists(tag) && !defaults.ChildExists(tag), "what is missing takes the default");
        } else if (constraint != constraints.end() && !Keeps(*constraint->second, after[tag])) {
            const bool isDefault = defaults.ChildExists(tag) && after[tag] == defaults[tag];
            // Where there is a range and no default, what is no number stays as it is.
            Require(isDefault || (!defaults.ChildExists(tag) && Same(after[tag], before[tag])),
                    "a value is legal or the default");
        }
    }
    RuleList rules;
    codec.GetValidationRules(rules);
    for (const char* const tag : {"sample_rate", "sample_format", "channel_layout"}) {
        const auto rule = std::find_if(rules.begin(), rules.end(), [tag](const auto& candidate) {
            return candidate.second->GetSecondPath().find(tag) != std::string::npos;
        });
        if (rule == rules.end() || !after.ChildExists(tag)) continue;
        Require(Keeps(*rule->second->GetSecondConstraint(), after[tag]), "the first rule about the sound is kept");
    }
}

/// What the last rule that ties a value to the codec wants is kept, or the value could not be mended.
void RequireRuled(const IDataHelper& format, bool isVideo, const Property& before, const Property& after) {
    if (!after.ChildExists("codec_id") || after.GetName() == "another") return;
    const std::pair<const char*, const char*> places[] = {
        {"frame_rate", "filter_rate/frame_rate"},
        {"cover", "format/cover"},
        {"encode_options/profile", "format/encode_options/profile"},
        {"sample_rate", "filter_resample/resample/sample_rate"},
        {"channel_layout", "filter_resample/resample/channel_layout"}};
    RuleList rules;
    format.GetValidationRules(rules);
    for (const auto& [tag, path] : places) {
        SP<IPropertyConstraint> last;
        for (const auto& [key, rule] : rules) {
            const bool isMine = rule->GetFirstPath() == (isVideo ? "video_codec/codec_id" : "audio_codec/codec_id");
            if (isMine && rule->GetSecondPath() == path && Keeps(*rule->GetFirstConstraint(), after["codec_id"])) {
                last = rule->GetSecondConstraint();
            }
        }
        if (!last || !after.ChildExists(tag)) continue;
        Require(Keeps(*last, after[tag]) || Same(after[tag], before[tag]), "the last rule of a container is kept");
    }
}

/// The report of a correction changes nothing of it, and tells of every change.
void RequireReported(const NamedHelper& named, Property stream, const Property& corrected, bool fails) {
    const Property before = stream;
    const CorrectionReport report = CorrectWithReport(stream, {named});
    Require(Same(stream, corrected), "a report changes nothing");
    Require(Same(stream, before) == report.changes.empty(), "a report tells of every change");
    Require((report.failure != nullptr) == fails, "a report tells of the failure");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isRegistered = (RegisterModernHelpers(), true);
    (void)isRegistered;
    Input input(data, size);
    while (!input.IsEmpty()) {
        const Kind& kind = Kinds()[input.Number(3)];
        const auto& table = GetAvailableDataHelpers(kind.name);
        const auto row = std::next(table.begin(), static_cast<std::ptrdiff_t>(input.Number(table.size())));
        const auto& [id, helper] = *row;
        const bool isVideo = kind.name == "format" ? input.Flag() : kind.name == "video_codec";
        const Property before = Stream(input, isVideo);
        Property once = before;
        const bool fails = Fails(*helper, kind.name == "audio_codec", once);
        RequireOnlyChanges(before, once, kind, id);
        RequireReported({kind.name, id, helper}, before, once, fails);
        if (fails) continue;
        if (kind.name == "format") {
            RequireRuled(*helper, isVideo, before, once);
        } else {
            RequireSettled(id, *helper, before, once);
        }
        Property twice = once;
        Require(!Fails(*helper, true, twice), "what was corrected can be corrected again");
        // A missing mode becomes the default, which is the automatic one here and stands in no list.
        if (id == "hevc" && once.ChildExists("bitrate_mode") && once["bitrate_mode"] == Property("", "cbr_auto")) {
            Require(twice["bitrate_mode"] == Property("", "cbr"), "the automatic mode is settled in the end");
            twice["bitrate_mode"] = "cbr_auto";
        }
        Require(Same(once, twice), "correcting twice is the same as once");
    }
    return 0;
}
