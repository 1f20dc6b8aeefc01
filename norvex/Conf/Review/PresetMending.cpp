#include "norvex/Conf/Review/PresetMending.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/DataHelperProxyAuto.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/PresetAssembly.h"
#include "norvex/Conf/Review/PresetParameters.h"
#include "norvex/Conf/Review/Sentences.h"
#include "norvex/foundation/Excerpt.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using F = IFormatFile;
using P = IPreset;
using V = IFormatCodecVideo;
using Outcome = MendedValue::Outcome;
using Problem = Finding::Problem;

// gettext messages. The marks stand for: %1 the parameter, %2 its value, %3 its former value or its helper.
const char* const keptMessage = "Parameter %1 stays %2";
const char* const correctedMessage = "Parameter %1 is %2 now; it was %3";
const char* const defaultedMessage = "Parameter %1 is %2 now, the default of %3";
const char* const droppedMessage = "%1 is left out";

// ------------------------------------------------------------------------------------------------------- reading

/// The preset's value at a path, or null.
const Property* At(const Property& tree, const std::string& path) {
    return tree.ChildExists(path) ? &tree[path] : nullptr;
}

std::string TextAt(const Property& tree, const std::string& path) {
    const Property* const value = At(tree, path);
    return value != nullptr && value->GetType() == PT_STRING ? value->GetString() : std::string();
}

const std::string& IdTag(const std::string& kind) {
    return kind == P::KEY_FORMAT ? F::TAG_CONTAINER : C::TAG_CODEC_ID;
}

bool IsCodecSection(const std::string& name) {
    return name == P::KEY_FILTER_VIDEO_CODEC || name == P::KEY_FILTER_AUDIO_CODEC ||
           name == P::KEY_FILTER_SUBTITLE_CODEC;
}

/// The helper that rules a section, with what findings call it.
NamedHelper HelperOf(const Property& preset, const std::string& kind) {
    for (const NamedHelper& named : HelpersOf(preset)) {
        if (named.kind == kind) return named;
    }
    return {kind, TextAt(preset, Path(kind, IdTag(kind))), nullptr};
}

/// What people call the ruler of a section: "h264", "mp4", "filter_resize".
const std::string& NameOf(const NamedHelper& named) {
    return named.id.empty() ? named.kind : named.id;
}

std::vector<NamedHelper> AutomaticHelpersOf(const Property& preset) {
    std::vector<NamedHelper> helpers = HelpersOf(preset);
    const auto isOfKind = [](const std::string& kind) {
        return [&kind](const NamedHelper& named) { return named.kind == kind; };
    };
    if (std::any_of(helpers.begin(), helpers.end(), isOfKind(P::KEY_FILTER_AUDIO_CODEC))) {
        helpers.erase(std::remove_if(helpers.begin(), helpers.end(), isOfKind(Proc::IFilterResample::CLASS_ID)),
                      helpers.end());
    }
    for (NamedHelper& named : helpers) named.helper = DataHelperProxyAuto::Create(named.kind, named.helper);
    return helpers;
}

/// Whether the value at that path keeps the source's own. Rules of automatic helpers know, constraints do not.
bool IsAutomatic(const std::string& path, const Property& value) {
    const auto is = [&value](const auto& automatic) { return value == Property(std::string(), automatic); };
    if (path == SampleRatePath()) return is(-1);
    if (path == LayoutPath()) return is(A::TAG_CH_LAYOUT_UNKNOWN);
    return (path == FrameRatePath() || path == Path(P::KEY_FILTER_VIDEO_CODEC, V::TAG_FPS)) &&
           is(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE);
}

bool IsOverruled(const Finding& finding) {
    return finding.source == Finding::Source::Constraint && finding.value && IsAutomatic(finding.path, *finding.value);
}

std::vector<Finding> TakeMissing(std::vector<Finding>& findings) {
    const auto missing = std::stable_partition(
        findings.begin(), findings.end(), [](const Finding& finding) { return finding.problem != Problem::Missing; });
    std::vector<Finding> taken(std::make_move_iterator(missing), std::make_move_iterator(findings.end()));
    findings.erase(missing, findings.end());
    return taken;
}

// ---------------------------------------------------------------------------------------- what a section may hold

/// What has no place in a section.
struct Foreign {
    std::string parent;  ///< path of the node that holds it, empty for the section itself
    std::string name;

    std::string Path() const { return parent.empty() ? name : Conf::Path(parent, name); }
};

/// Adds what is no parameter of a section, stands there twice, or is a section where a value belongs or the reverse.
void FindForeign(const Property& node, const ParameterMap& parameters, const std::string& path,
                 std::vector<Foreign>& foreign) {
    std::set<std::string_view> names;
    for (const Property& child : node) {
        Foreign self{path, child.GetName()};
        const std::string below = self.Path();
        const auto parameter = parameters.find(below);
        const bool isStreams = below == P::KEY_STREAMS && node.GetName() == P::KEY_FORMAT;
        const bool isSection = child.GetType() == PT_NODE;
        const bool isKnown =
            isStreams || (parameter != parameters.end() && isSection == (parameter->second.type == PT_NODE) &&
                          self.name.find(Property::SEPARATOR) == std::string::npos);
        if (!isKnown || !names.insert(child.GetName()).second) {
            foreign.push_back(std::move(self));
        } else if (isSection && !isStreams) {
            FindForeign(child, parameters, below, foreign);
        }
    }
}

std::vector<Foreign> ForeignIn(const Property& section, const ParameterMap& parameters) {
    std::vector<Foreign> foreign;
    FindForeign(section, parameters, std::string(), foreign);
    return foreign;
}

/// Calls `see` with each section of the preset that a helper or a list of codecs rules, those of the streams included,
/// and with its path.
template <class Tree, class See>
void VisitSections(Tree& preset, const See& see) {
    for (auto& section : preset) {
        if (section.GetType() != PT_NODE) continue;
        see(section, section.GetName());
        if (section.GetName() != P::KEY_FORMAT) continue;
        const auto streams = section.FindChild(P::KEY_STREAMS);
        if (streams == section.end()) continue;
        for (auto& stream : *streams) {
            for (auto& below : stream) {
                if (below.GetType() != PT_NODE) continue;
                see(below, Path(P::KEY_FORMAT, P::KEY_STREAMS, stream.GetName(), below.GetName()));
            }
        }
    }
}

/// The parameters of sections, each made once: helpers make theirs anew on each call.
class Parameters {
public:
    const ParameterMap& Of(const Property& section) {
        const std::string& kind = section.GetName();
        const auto [row, isNew] = m_maps.try_emplace({kind, TextAt(section, IdTag(kind))});
        if (isNew) row->second = ParametersOf(kind, row->first.second);
        return row->second;
    }

private:
    std::map<std::pair<std::string, std::string>, ParameterMap> m_maps;  ///< by kind and id
};

Finding ForeignFinding(const Property& section, const std::string& path) {
    Finding finding;
    finding.helperKind = section.GetName();
    finding.helperId = TextAt(section, IdTag(section.GetName()));
    finding.source = Finding::Source::Helper;
    finding.verdict = Finding::Verdict::Violated;
    finding.problem = Problem::NoPlace;
    finding.path = path;
    finding.documentPath = path;
    const std::string& name = finding.helperId.empty() ? finding.helperKind : finding.helperId;
    finding.message = Say(foreignMessage, {Core::Excerpt(path), Core::Excerpt(name)});
    return finding;
}

// ------------------------------------------------------------------------------------------------------ frame sizes

std::string SizePath() {
    return Path(Proc::IFilterResize::CLASS_ID, Proc::IResize::CLASS_ID);
}

using Size = std::pair<long long, long long>;

std::optional<Size> SizeIn(const Property& section) {
    const Property* const width = At(section, V::TAG_WIDTH);
    const Property* const height = At(section, V::TAG_HEIGHT);
    if (width == nullptr || height == nullptr) return std::nullopt;
    if (width->GetType() != PT_INT64 || height->GetType() != PT_INT64) return std::nullopt;
    return Size(width->GetInt64(), height->GetInt64());
}

/// A rule on the frame size mode judges nothing but the mode: its sizes are choices. A size that is none of them is
/// one that the codec cannot have.
struct SizeRule {
    SP<IValidationRule> rule;  ///< null where no rule of a codec offers sizes
    Allowed allowed;
    std::vector<Size> sizes;
};

SizeRule SizeRuleOf(const Property& assembled, const NamedHelper& codec) {
    RuleList rules;
    if (codec.helper) codec.helper->GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        if (!rule || rule->GetSecondPath() != FrameSizeModePath() || !rule->GetSecondConstraint()) continue;
        const Property* const condition = At(assembled, rule->GetFirstPath());
        const SP<IPropertyConstraint> first = rule->GetFirstConstraint();
        if (first && (condition == nullptr || !IsLegal(*condition, *first))) continue;
        SizeRule found{rule, WhatIsAllowed(*rule->GetSecondConstraint()), {}};
        for (const Property& value : found.allowed.values) {
            if (value.GetType() == PT_NODE) found.sizes.push_back(*SizeIn(value));
        }
        if (!found.sizes.empty()) return found;
    }
    return {};
}

std::optional<Finding> JudgeSize(const Property& assembled, const NamedHelper& codec) {
    const Property* const resize = At(assembled, SizePath());
    const auto size = resize != nullptr ? SizeIn(*resize) : std::nullopt;
    if (!size) return std::nullopt;
    const SizeRule offered = SizeRuleOf(assembled, codec);
    const bool isFine = std::find(offered.sizes.begin(), offered.sizes.end(), *size) != offered.sizes.end();
    if (!offered.rule || isFine) return std::nullopt;
    Finding finding;
    finding.helperKind = codec.kind;
    finding.helperId = codec.id;
    finding.source = Finding::Source::Rule;
    finding.verdict = Finding::Verdict::Violated;
    finding.problem = Problem::NotAllowed;
    finding.path = SizePath();
    finding.documentPath = SizePath();
    finding.allowed = offered.allowed;
    finding.message =
        Say(sizeMessage, {finding.path, std::to_string(size->first) + " x " + std::to_string(size->second),
                          finding.allowed.words, codec.id});
    return finding;
}

// ---------------------------------------------------------------------------------------------------------- judging

std::vector<Finding> CheckAssembled(const Property& assembled, const std::vector<NamedHelper>& helpers) {
    std::vector<Finding> findings = CheckPreset(assembled, helpers);
    findings.erase(std::remove_if(findings.begin(), findings.end(), IsOverruled), findings.end());
    return findings;
}

bool IsBroken(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.problem != Problem::Missing; });
}

std::vector<Finding> Judge(const Property& preset, Parameters& parameters) {
    std::vector<Finding> findings;
    VisitSections(preset, [&](const Property& section, const std::string& path) {
        // Most of a container's streams name a codec and no more.
        if (section.Count() == 1 && section.ChildExists(C::TAG_CODEC_ID)) return;
        const ParameterMap& known = parameters.Of(section);
        if (known.empty()) return;  // a section of the host's own
        for (const Foreign& foreign : ForeignIn(section, known)) {
            findings.push_back(ForeignFinding(section, Path(path, foreign.Path())));
        }
    });
    const Property assembled = AssembleDocument(preset);
    for (Finding& finding : CheckAssembled(assembled, AutomaticHelpersOf(preset))) {
        findings.push_back(std::move(finding));
    }
    if (auto size = JudgeSize(assembled, HelperOf(preset, P::KEY_FILTER_VIDEO_CODEC))) {
        findings.push_back(std::move(*size));
    }
    return TellOnce(std::move(findings));
}

// ---------------------------------------------------------------------------------------------------------- mending

std::optional<double> NumberOf(const Property& value) {
    switch (value.GetType()) {
        case PT_INT64:
        case PT_DOUBLE:
            return value.GetDouble();
        case PT_RATIO:
            return boost::rational_cast<double>(value.GetRatio());
        default:
            return std::nullopt;
    }
}

bool Fixup(Property& value, const IPropertyConstraint& constraint) {
    try {
        return constraint.Fixup(value);
    } catch (...) {
        return false;
    }
}

bool IsEmptySection(const Property& node) {
    return node.GetType() == PT_NODE && node.Count() == 0;
}

class Mender {
public:
    Mender(MendedPreset& mended, Parameters& parameters)
        : m_preset(mended.preset), m_values(mended.values), m_parameters(parameters) {}

    /// Gives what is still to be told of the preset.
    std::vector<Finding> Run() {
        DropRepeatedSections();
        NumberStreams();
        DropWhatHasNoRoom();
        MendContainer();
        VisitSections(m_preset, [this](Property& section, const std::string& path) { MendSection(section, path); });
        std::vector<Finding> left = MendValues();
        if (CompleteModes()) left = MendValues();
        return IsBroken(left) ? DropWhatIsLeft() : left;
    }

private:
    /// The node that holds what stands at a path.
    Property& ParentOf(const std::string& path) {
        const std::size_t end = path.rfind(Property::SEPARATOR);
        return end == std::string::npos ? m_preset : m_preset[path.substr(0, end)];
    }
    static std::string NameIn(const std::string& path) {
        const std::size_t end = path.rfind(Property::SEPARATOR);
        return end == std::string::npos ? path : path.substr(end + Property::SEPARATOR.size());
    }

    // What came of it.

    /// Of what is told twice of a value, the last counts, beside what it was at first.
    void Tell(Outcome outcome, const std::string& path, const Property* before, const Property* after,
              const std::string& message) {
        const auto copy = [](const Property* value) {
            return value != nullptr ? std::optional<Property>(*value) : std::nullopt;
        };
        MendedValue told{outcome, path, copy(before), copy(after), message};
        const auto known = std::find_if(m_values.begin(), m_values.end(),
                                        [&path](const MendedValue& value) { return value.path == path; });
        if (known != m_values.end()) {
            told.before = std::move(known->before);
            m_values.erase(known);
        }
        m_values.push_back(std::move(told));
    }
    void TellDefault(const std::string& path, const Property* before, const Property& after, const std::string& name) {
        Tell(Outcome::Defaulted, path, before, &after,
             Say(defaultedMessage, {Core::Excerpt(path), TextOf(after), Core::Excerpt(name)}));
    }
    void TellDropped(const std::string& path, const Property& before) {
        Tell(Outcome::Dropped, path, &before, nullptr, Say(droppedMessage, {Core::Excerpt(path)}));
    }
    void Remove(const std::string& path) {
        if (!m_preset.ChildExists(path)) return;
        TellDropped(path, m_preset[path]);
        ParentOf(path).RemoveChild(NameIn(path));
    }

    // The container.

    /// Assembly takes the last of sections with one name, and paths lead to the first.
    void DropRepeatedSections() {
        Property once(m_preset.GetName());
        for (const Property& section : m_preset) {
            if (section.GetName().empty()) continue;
            once.SetChild(section.GetName(), section);
        }
        m_preset = std::move(once);
    }

    static bool AreNumbered(const Property& streams) {
        std::set<std::string_view> names;
        return std::all_of(streams.begin(), streams.end(), [&names](const Property& stream) {
            const std::string& name = stream.GetName();
            const bool isNumber = !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
            return isNumber && names.insert(name).second;
        });
    }

    Property* Streams() {
        const std::string path = Path(P::KEY_FORMAT, P::KEY_STREAMS);
        if (!m_preset.ChildExists(path) || m_preset[path].GetType() != PT_NODE) return nullptr;
        return &m_preset[path];
    }

    /// Streams are named by their numbers in the file; where they have none, by their places.
    void NumberStreams() {
        Property* const streams = Streams();
        if (streams == nullptr || AreNumbered(*streams)) return;
        Property numbered(streams->GetName());
        for (const Property& stream : *streams) numbered.SetChild(std::to_string(numbered.Count()), stream);
        *streams = std::move(numbered);
    }

    void DropWhatHasNoRoom() {
        const NamedHelper container = HelperOf(m_preset, P::KEY_FORMAT);
        Property* const streams = Streams();
        const bool hadStreams = streams != nullptr && streams->Count() > 0;
        std::vector<Finding> findings;
        if (container.helper) findings = CheckPreset(AssembleDocument(m_preset), {container});
        for (const Finding& finding : findings) {
            if (finding.source == Finding::Source::Helper) Remove(finding.path);
        }
        if (hadStreams && streams->Count() == 0) {
            streams->CopyDataFrom(container.helper->GetDefaults()[P::KEY_STREAMS]);
            for (const Property& stream : *streams) {
                TellDefault(Path(P::KEY_FORMAT, P::KEY_STREAMS, stream.GetName()), nullptr, stream, container.id);
            }
        }
        NumberStreams();
    }

    /// The limits and the header flag are facts of the container and no choices; limits may be narrower.
    void MendContainer() {
        const NamedHelper container = HelperOf(m_preset, P::KEY_FORMAT);
        if (!container.helper) return;
        const Property defaults = container.helper->GetDefaults();
        const auto take = [&](const std::string& path, bool (*isFine)(const Property& value, const Property& own)) {
            const std::string whole = Path(P::KEY_FORMAT, path);
            if (!m_preset.ChildExists(whole) || !defaults.ChildExists(path)) return;
            Property& value = m_preset[whole];
            if (isFine(value, defaults[path])) return;
            const Property before = value;
            value.CopyDataFrom(defaults[path]);
            TellDefault(whole, &before, value, container.id);
        };
        take(C::TAG_GLOBAL_HEADER, [](const Property& value, const Property& own) { return value == own; });
        for (const std::string& tag :
             {F::TAG_LIMITS_VIDEO, F::TAG_LIMITS_AUDIO, F::TAG_LIMITS_SUBTITLE, F::TAG_LIMITS_OTHER}) {
            take(Path(F::TAG_LIMITS, tag), [](const Property& value, const Property& own) {
                return value.GetType() == PT_INT64 && 0 <= value.GetInt64() && value.GetInt64() <= own.GetInt64();
            });
        }
    }

    // Sections of codecs and filters.

    void MendSection(Property& section, const std::string& path) {
        const Property former = section;
        const bool isCodec = IsCodecSection(section.GetName());
        const bool isCodecChanged = isCodec && TakeLegalCodec(section, path);
        const ParameterMap& parameters = m_parameters.Of(section);
        if (parameters.empty()) return;  // a section of the host's own
        const std::vector<Foreign> foreign = ForeignIn(section, parameters);
        if (isCodec && (isCodecChanged || !foreign.empty())) return StartAnew(section, former, path, parameters);
        for (const Foreign& one : foreign) {
            Property& parent = one.parent.empty() ? section : section[one.parent];
            TellDropped(Path(path, one.Path()), *parent.FindChild(one.name));
            parent.RemoveChild(one.name);
        }
    }

    /// Gives a codec's section a codec that the container may have. Returns whether it has another one now.
    bool TakeLegalCodec(Property& section, const std::string& path) {
        const NamedHelper container = HelperOf(m_preset, P::KEY_FORMAT);
        if (!container.helper) return false;
        ConstraintMap constraints;
        container.helper->GetConstraints(constraints);
        const std::string& kind = section.GetName();
        const std::string& type = kind == P::KEY_FILTER_VIDEO_CODEC   ? P::STREAM_TYPE_VIDEO
                                  : kind == P::KEY_FILTER_AUDIO_CODEC ? P::STREAM_TYPE_AUDIO
                                                                      : P::STREAM_TYPE_SUBTITLES_TEXT;
        const auto codecs = constraints.find(StreamCodecPattern(type, kind));
        const Property* const id = At(section, C::TAG_CODEC_ID);
        if (codecs == constraints.end() || (id != nullptr && IsLegal(*id, *codecs->second))) return false;
        if (kind == P::KEY_FILTER_AUDIO_CODEC && TextAt(section, C::TAG_CODEC_ID) == C::CODEC_ID_AUTO) return false;
        Property legal{std::string(), std::string()};
        if (!Fixup(legal, *codecs->second)) return false;
        const std::optional<Property> before = id != nullptr ? std::optional<Property>(*id) : std::nullopt;
        section.SetChild(C::TAG_CODEC_ID).CopyDataFrom(legal);
        TellDefault(Path(path, C::TAG_CODEC_ID), before ? &*before : nullptr, legal, container.id);
        return true;
    }

    void StartAnew(Property& section, const Property& former, const std::string& path, const ParameterMap& parameters) {
        const std::string id = TextAt(section, C::TAG_CODEC_ID);
        Property fresh(section.GetName());
        fresh.SetChildT(C::TAG_CODEC_ID, id);
        // A container's stream has but what differs from the shared section.
        const bool isShared = path == section.GetName();
        const NamedHelper codec = HelperOf(m_preset, section.GetName());
        if (isShared && codec.helper) fresh = codec.helper->GetDefaults();
        for (const std::string& tag :
             {C::TAG_BITRATE_MODE, C::TAG_BITRATE, C::TAG_QUALITY, C::TAG_THREAD_NUMBER, V::TAG_FPS}) {
            const Property* const value = At(former, tag);
            const auto parameter = parameters.find(tag);
            if (value == nullptr || parameter == parameters.end()) continue;
            const bool isOpen = tag == C::TAG_THREAD_NUMBER || tag == V::TAG_FPS;
            const auto& constraint = parameter->second.constraint;
            const bool isAutomatic = parameter->second.automatic && *value == *parameter->second.automatic;
            const bool isLegal = constraint ? isAutomatic || IsLegal(*value, *constraint) : isOpen;
            if (!isLegal || value->GetType() != parameter->second.type) continue;
            fresh.SetChild(tag).CopyDataFrom(*value);
        }
        if (isShared) CompleteMode(fresh);
        Compare(former, fresh, path, id);
        section = std::move(fresh);
    }

    /// Tells what became of each value of a section that was made anew.
    void Compare(const Property& former, const Property& fresh, const std::string& path, const std::string& name) {
        for (const Property& before : former) {
            const std::string below = Path(path, before.GetName());
            if (before.GetName() == C::TAG_CODEC_ID || IsEmptySection(before)) continue;
            const Property* const after = At(fresh, before.GetName());
            if (before.GetType() == PT_NODE) {
                Compare(before, after != nullptr && after->GetType() == PT_NODE ? *after : Property(), below, name);
            } else if (after == nullptr) {
                TellDropped(below, before);
            } else if (*after == before) {
                Tell(Outcome::Kept, below, &before, after, Say(keptMessage, {Core::Excerpt(below), TextOf(before)}));
            } else {
                TellDefault(below, &before, *after, name);
            }
        }
        for (const Property& after : fresh) {
            const bool isTold = after.GetName() == C::TAG_CODEC_ID || IsEmptySection(after);
            if (isTold || former.FindChild(after.GetName()) != former.end()) continue;
            TellDefault(Path(path, after.GetName()), nullptr, after, name);
        }
    }

    /// Sees to it that a codec's section has what its bitrate mode needs. Returns whether it was changed.
    bool CompleteMode(Property& section) {
        const std::string& kind = section.GetName();
        const NamedHelper codec = HelperOf(m_preset, kind);
        const std::string mode = TextAt(section, C::TAG_BITRATE_MODE);
        if (!codec.helper || mode.empty()) return false;
        const Property defaults = codec.helper->GetDefaults();
        const bool isDefaultMode = TextAt(defaults, C::TAG_BITRATE_MODE) == mode;
        std::vector<std::string> needed;
        if (mode == C::TAG_BITRATE_MODE_CBR) needed = {C::TAG_BITRATE};
        if (mode == C::TAG_BITRATE_MODE_VBR) needed = {C::TAG_QUALITY};
        if (mode == C::TAG_BITRATE_MODE_VBR && kind == P::KEY_FILTER_AUDIO_CODEC) needed.push_back(C::TAG_BITRATE);
        bool isChanged = false;
        for (const std::string& tag : needed) {
            if (section.ChildExists(tag)) continue;
            if (!defaults.ChildExists(tag)) {
                if (isDefaultMode || !defaults.ChildExists(C::TAG_BITRATE_MODE)) continue;
                section[C::TAG_BITRATE_MODE].CopyDataFrom(defaults[C::TAG_BITRATE_MODE]);
                CompleteMode(section);
                return true;
            }
            section.SetChild(tag, defaults[tag]);
            isChanged = true;
        }
        return isChanged;
    }

    bool CompleteModes() {
        bool isChanged = false;
        for (const std::string& kind : {P::KEY_FILTER_VIDEO_CODEC, P::KEY_FILTER_AUDIO_CODEC}) {
            if (!m_preset.ChildExists(kind) || m_preset[kind].GetType() != PT_NODE) continue;
            Property& section = m_preset[kind];
            const Property before = section;
            if (!CompleteMode(section)) continue;
            isChanged = true;
            const std::string id = TextAt(section, C::TAG_CODEC_ID);
            for (const Property& value : section) {
                const Property* const former = At(before, value.GetName());
                if (former != nullptr && *former == value) continue;
                TellDefault(Path(kind, value.GetName()), former, value, id);
            }
        }
        return isChanged;
    }

    // Single values.

    /// Gives what is still to be told of the preset.
    std::vector<Finding> MendValues() {
        // A value that is mended may bring another rule into play, but not for ever: two rules may want opposites.
        constexpr int patience = 8;
        for (int round = 0;; ++round) {
            MendSize();
            const std::vector<NamedHelper> helpers = AutomaticHelpersOf(m_preset);
            const Property assembled = AssembleDocument(m_preset);
            std::vector<Finding> broken = CheckAssembled(assembled, helpers);
            std::vector<Finding> looked;
            std::set<std::string> done;
            bool isChanged = false;
            for (const Finding& finding : broken) {
                if (!finding.constraint || !finding.value || !done.insert(finding.documentPath).second) continue;
                if (looked.empty()) looked = ExplainPreset(assembled, helpers);
                isChanged = MendValue(finding, looked) || isChanged;
            }
            if (!isChanged || round == patience) return TellOnce(std::move(broken));
        }
    }

    /// Takes the size nearest in area, of those that a codec offers.
    void MendSize() {
        if (!m_preset.ChildExists(SizePath()) || m_preset[SizePath()].GetType() != PT_NODE) return;
        const std::vector<Size> sizes = SizeRuleOf(m_preset, HelperOf(m_preset, P::KEY_FILTER_VIDEO_CODEC)).sizes;
        const Size size = SizeIn(m_preset[SizePath()]).value_or(Size(0, 0));
        if (sizes.empty() || std::find(sizes.begin(), sizes.end(), size) != sizes.end()) return;
        const double area = static_cast<double>(size.first) * static_cast<double>(size.second);
        const auto distance = [area](const Size& other) {
            return std::abs(static_cast<double>(other.first) * static_cast<double>(other.second) - area);
        };
        const Size nearest = *std::min_element(sizes.begin(), sizes.end(), [&](const Size& one, const Size& two) {
            return distance(one) < distance(two);
        });
        Set(Path(SizePath(), V::TAG_WIDTH), Property(std::string(), nearest.first), Outcome::Corrected);
        Set(Path(SizePath(), V::TAG_HEIGHT), Property(std::string(), nearest.second), Outcome::Corrected);
    }

    void Set(const std::string& path, const Property& legal, Outcome outcome) {
        Property& value = ParentOf(path).SetChild(NameIn(path));
        const Property before = value;
        value.CopyDataFrom(legal);
        if (outcome == Outcome::Defaulted) {
            const std::string kind = path.substr(0, path.find(Property::SEPARATOR));
            TellDefault(path, &before, value, NameOf(HelperOf(m_preset, kind)));
        } else {
            Tell(outcome, path, &before, &value,
                 Say(correctedMessage, {Core::Excerpt(path), TextOf(value), TextOf(before)}));
        }
    }

    /// Gives a value that pleases all who judge it.
    bool MendValue(const Finding& finding, const std::vector<Finding>& looked) {
        const std::string& path = finding.documentPath;
        if (!m_preset.ChildExists(path)) return false;
        std::vector<const IPropertyConstraint*> judges;
        for (const Finding& other : looked) {
            const bool isJudge = other.constraint && other.verdict != Finding::Verdict::DoesNotApply;
            if (isJudge && DocumentPathOf(other.path) == path) judges.push_back(other.constraint.get());
        }
        const std::optional<Property> ownDefault = DefaultAt(path);
        for (const Property& candidate : Candidates(finding, judges, ownDefault)) {
            const bool isLegal = std::all_of(judges.begin(), judges.end(), [&](const IPropertyConstraint* judge) {
                return IsLegal(candidate, *judge);
            });
            if (!isLegal) continue;
            const bool isDefault = ownDefault && candidate == *ownDefault && !NumberOf(*finding.value);
            Set(path, candidate, isDefault ? Outcome::Defaulted : Outcome::Corrected);
            return true;
        }
        return false;
    }

    /// What the helper of a section has there by default.
    std::optional<Property> DefaultAt(const std::string& path) const {
        const std::size_t end = path.find(Property::SEPARATOR);
        const NamedHelper named = HelperOf(m_preset, path.substr(0, end));
        if (!named.helper || end == std::string::npos) return std::nullopt;
        const Property defaults = named.helper->GetDefaults();
        const Property* const value = At(defaults, path.substr(end + Property::SEPARATOR.size()));
        return value != nullptr ? std::optional<Property>(*value) : std::nullopt;
    }

    /// What may stand in the place of a broken value, the best first.
    static std::vector<Property> Candidates(const Finding& finding,
                                            const std::vector<const IPropertyConstraint*>& judges,
                                            const std::optional<Property>& ownDefault) {
        const Property& value = *finding.value;
        std::vector<Property> listed;
        std::vector<Property> fixed;
        std::vector<Property> automatic;
        for (const IPropertyConstraint* const judge : judges) {
            const Allowed allowed = WhatIsAllowed(*judge);
            for (const Property& one : allowed.values) {
                (IsAutomatic(finding.path, one) ? automatic : listed).push_back(one);
            }
            Property mended = value;
            if (Fixup(mended, *judge) && !IsAutomatic(finding.path, mended)) fixed.push_back(std::move(mended));
            for (const auto& end : {allowed.min, allowed.max}) {
                if (end && NumberOf(value)) fixed.push_back(*end);
            }
        }
        std::vector<Property> candidates;
        const auto add = [&candidates](const std::vector<Property>& more) {
            candidates.insert(candidates.end(), more.begin(), more.end());
        };
        if (const auto number = NumberOf(value)) {
            add(listed);
            // Of what only a test knows, the neighbours: an odd width becomes even.
            for (const Property& near : fixed.empty() ? std::vector<Property>{value} : fixed) {
                if (near.GetType() != PT_INT64 || std::abs(near.GetDouble()) > 1e15) continue;
                candidates.emplace_back(std::string(), near.GetInt64() - 1);
                candidates.emplace_back(std::string(), near.GetInt64() + 1);
            }
            add(fixed);
            if (ownDefault) candidates.push_back(*ownDefault);
            const auto distance = [number](const Property& candidate) {
                const double far = std::abs(NumberOf(candidate).value_or(std::nan("")) - *number);
                return far >= 0 ? far : std::numeric_limits<double>::infinity();
            };
            std::stable_sort(candidates.begin(), candidates.end(),
                             [&](const Property& one, const Property& two) { return distance(one) < distance(two); });
        } else {
            // A filter's default is no better than another value: its choices have nothing to do with the codec's.
            const bool isOfCodec = IsCodecSection(finding.path.substr(0, finding.path.find(Property::SEPARATOR)));
            if (ownDefault && isOfCodec) candidates.push_back(*ownDefault);
            add(fixed);
            if (ownDefault && !isOfCodec) candidates.push_back(*ownDefault);
            add(listed);
        }
        add(automatic);
        return candidates;
    }

    /// Nothing helped: what is left out breaks nothing. Gives what is still to be told of the preset.
    std::vector<Finding> DropWhatIsLeft() {
        for (;;) {
            std::vector<Finding> left = Judge(m_preset, m_parameters);
            bool isChanged = false;
            for (const Finding& finding : left) {
                if (finding.problem == Problem::Missing || !m_preset.ChildExists(finding.documentPath)) continue;
                Remove(finding.documentPath);
                isChanged = true;
            }
            if (!isChanged) return left;
        }
    }

    Property& m_preset;
    std::vector<MendedValue>& m_values;
    Parameters& m_parameters;
};

}  // namespace

std::vector<Finding> JudgePreset(const Property& preset) {
    Parameters parameters;
    return Judge(preset, parameters);
}

MendedPreset MendPreset(const Property& preset) {
    Parameters parameters;
    MendedPreset mended;
    mended.preset = preset;
    mended.broken = Judge(preset, parameters);
    mended.open = TakeMissing(mended.broken);
    if (mended.broken.empty()) return mended;
    mended.left = Mender(mended, parameters).Run();
    mended.open = TakeMissing(mended.left);
    return mended;
}

}  // namespace Norvex::Conf
