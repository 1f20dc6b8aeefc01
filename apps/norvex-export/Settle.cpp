#include "Settle.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using P = IPreset;
using V = IFormatCodecVideo;

/// The node at a path, made on the way where it is missing.
Property& MakePath(Property& root, std::string_view path) {
    Property* node = &root;
    for (;;) {
        const std::size_t end = path.find(Property::SEPARATOR);
        node = &node->SetChild(std::string(path.substr(0, end)));
        if (end == std::string_view::npos) return *node;
        path.remove_prefix(end + Property::SEPARATOR.size());
    }
}

/// What in a path lies below a section, or nothing.
std::string_view Below(std::string_view path, const std::string& section) {
    if (path.substr(0, section.size()) != section) return {};
    path.remove_prefix(section.size());
    if (path.substr(0, Property::SEPARATOR.size()) != Property::SEPARATOR) return {};
    return path.substr(Property::SEPARATOR.size());
}

bool IsOfAny(const std::string& path, const std::vector<std::string>& sections) {
    return std::any_of(sections.begin(), sections.end(),
                       [&path](const std::string& section) { return !Below(path, section).empty(); });
}

/// Whether a value leaves its parameter to the system.
bool IsAutomatic(const Property& value) {
    const auto is = [&value](const auto& automatic) { return value == Property(std::string(), automatic); };
    return is(IFormatCodec::CODEC_ID_AUTO) || is(IFormatCodec::TAG_BITRATE_MODE_CBR_AUTO) || is(-1) ||
           is(A::TAG_CH_LAYOUT_UNKNOWN) || is(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE);
}

NamedHelper FindAutomatic(const std::string& kind, const std::string& id) {
    return {kind, id, CreateDataHelperAuto(kind, id)};
}

class Settler {
public:
    explicit Settler(const StreamRules& rules)
        : m_rules(rules), m_sections({rules.codec.kind}), m_helpers({rules.format, rules.codec}) {
        for (const Property& filter : rules.filters) {
            m_sections.push_back(filter.GetName());
            // The resampler's own lists are what a dialog offers; a source's rate or layout beyond them is no fault.
            if (filter.GetName() != Proc::IFilterResample::CLASS_ID) {
                m_helpers.push_back(FindHelper(filter.GetName(), std::string()));
            }
        }
    }

    StreamPlan Run(Property stream) {
        const Property source = stream;
        const Property section = WithChoices(m_rules.codec.helper->GetDefaults(), m_rules.request);
        RequireAutomaticValuesAllowed(section);
        for (const Property& filter : m_rules.filters) {
            CreateDataHelper(filter.GetName(), std::string())->ApplyPresetSettings(filter, stream);
        }
        ApplyCodec(section, stream);

        StreamPlan plan;
        plan.asked = stream;
        plan.lookedAt = ExplainPreset(PresetOf(stream), m_helpers);
        RequireChosenQuality(plan.lookedAt);
        CorrectionReport report = CorrectWithReport(stream, {m_rules.format, m_rules.codec});
        if (report.failure) Rethrow(report.failure);
        plan.changes = std::move(report.changes);
        GiveWay(plan, stream);
        ReadRateMark(plan, stream, source);
        plan.settled = std::move(stream);
        return plan;
    }

private:
    void ApplyCodec(const Property& section, Property& stream) const {
        try {
            m_rules.codec.helper->ApplyPresetSettings(section, stream);
        } catch (const HelperException& error) {
            const auto* const words = boost::get_error_info<TagDescription>(error);
            throw RequestError("'" + m_rules.codec.id + "': " + (words ? *words : "these settings do not go together"));
        } catch (const Core::PropertyException&) {
            const auto mode = section.FindChild(IFormatCodec::TAG_BITRATE_MODE);
            const bool isConstant =
                mode != section.end() && *mode == Property(std::string(), IFormatCodec::TAG_BITRATE_MODE_CBR);
            if (!isConstant || section.ChildExists(IFormatCodec::TAG_BITRATE)) throw;
            throw RequestError("'" + m_rules.codec.id + "' needs a bitrate in the mode '" + mode->GetString() + "'");
        }
    }

    Property PresetOf(const Property& stream) const {
        std::vector<Property> sections = {m_rules.formatTree};
        sections.insert(sections.end(), m_rules.filters.begin(), m_rules.filters.end());
        sections.push_back(stream);
        return AssemblePreset(sections);
    }

    const Choice* FindChoice(const Finding& finding) const {
        const std::string path = StreamPathOf(finding.path);
        const auto& choices = m_rules.request.choices;
        const auto choice = std::find_if(choices.rbegin(), choices.rend(), [&](const Choice& c) {
            return StreamPathOf(c.path) == path && IsOfAny(c.path, m_sections);
        });
        return choice != choices.rend() ? &*choice : nullptr;
    }

    /// Whether somebody asked for the value. What was left to the system was not asked for, also where that was said.
    bool IsChosen(const Finding& finding) const {
        const Choice* const choice = FindChoice(finding);
        return choice != nullptr && (finding.value == choice->value || !IsAutomatic(choice->value));
    }

    [[noreturn]] void Refuse(const Finding& finding) const {
        const Choice* const choice = FindChoice(finding);
        if (choice == nullptr) throw RequestError(finding.message);
        if (!finding.value) throw RequestError(choice->option + ": " + finding.message);
        const std::string asked = Core::PropertyValueToString(choice->value);
        const std::string value = Core::PropertyValueToString(*finding.value);
        // Two rules that want different things of a value may mend it to one that nobody asked for.
        const std::string became = asked == value ? "' is" : "' becomes '" + value + "', which is";
        throw RequestError(choice->option + ": '" + asked + became +
                           " not legal here; allowed: " + finding.allowed.words);
    }

    /// A bitrate that is not on the list means the nearest that is; a quality beyond the scale means nothing.
    void RequireChosenQuality(const std::vector<Finding>& findings) const {
        for (const Finding& finding : findings) {
            const bool isBroken = finding.verdict == Finding::Verdict::Violated && finding.value;
            if (!isBroken || StreamPathOf(finding.path) != IFormatCodec::TAG_QUALITY) continue;
            if (FindChoice(finding) != nullptr) Refuse(finding);
        }
    }

    /// What is left to the system is judged by the rules that know automatic values.
    void RequireAutomaticValuesAllowed(const Property& section) const {
        std::vector<Property> sections = m_rules.filters;
        sections.insert(sections.begin(), {m_rules.formatTree, section});
        std::vector<NamedHelper> helpers = {FindAutomatic(m_rules.format.kind, m_rules.format.id),
                                            FindAutomatic(m_rules.codec.kind, m_rules.codec.id)};
        const bool isAutomaticCodec =
            m_rules.request.TextAt(m_rules.codec.kind + Property::SEPARATOR + V::TAG_CODEC_ID) == V::CODEC_ID_AUTO;
        if (isAutomaticCodec) {
            Property automatic(m_rules.codec.kind);
            automatic.SetChildT(V::TAG_CODEC_ID, V::CODEC_ID_AUTO);
            sections.push_back(automatic);
            helpers.back() = FindAutomatic(m_rules.codec.kind, V::CODEC_ID_AUTO);
        }
        for (const Finding& finding : CheckPreset(AssemblePreset(sections), helpers)) {
            const bool isAboutChoice = finding.value && FindChoice(finding) != nullptr;
            if (isAboutChoice && (isAutomaticCodec || IsAutomatic(*finding.value))) Refuse(finding);
        }
    }

    [[noreturn]] static void Rethrow(const std::exception_ptr& failure) {
        try {
            std::rethrow_exception(failure);
        } catch (const std::logic_error& error) {
            // The message goes on with the call stack.
            const std::string message = error.what();
            throw RequestError(message.substr(0, message.find('\n')));
        } catch (const FormatException& error) {
            const auto* const subject = boost::get_error_info<TagDetails>(error);
            const auto* const words = boost::get_error_info<TagDescription>(error);
            throw RequestError((words ? *words : "Unknown name") + (subject ? " '" + *subject + "'" : ""));
        }
    }

    /// Correction leaves alone what only validation looks at, such as the encoder's options. What the user did not
    /// ask for gives way to what was asked; what still does not fit then is an error.
    void GiveWay(StreamPlan& plan, Property& stream) const {
        for (Finding& finding : CheckPreset(PresetOf(stream), m_helpers)) {
            const std::string path = StreamPathOf(finding.path);
            if (!finding.constraint || IsChosen(finding) || !stream.ChildExists(path)) continue;
            CorrectedValue change;
            change.helperKind = finding.helperKind;
            change.helperId = finding.helperId;
            change.path = path;
            change.before = stream[path];
            if (!finding.constraint->Fixup(stream[path])) continue;
            change.after = stream[path];
            change.reason = CorrectedValue::Reason::Broken;
            change.broken = std::move(finding);
            plan.givenWay.push_back(std::move(change));
        }
        const std::vector<Finding> left = CheckPreset(PresetOf(stream), m_helpers);
        if (!left.empty()) Refuse(left.front());
    }

    /// Of a low rate the nearest in a list may be the mark that keeps the source's, of which an encoder can make
    /// nothing. It stands for the source's own rate, if nothing else was asked and the container lists that rate or
    /// none as low, and else for the nearest that the container lists.
    void ReadRateMark(StreamPlan& plan, Property& stream, const Property& source) const {
        const Property mark(V::TAG_FPS, Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE);
        if (!stream.ChildExists(V::TAG_FPS) || stream[V::TAG_FPS] != mark) return;
        std::vector<Core::Ratio> listed;
        for (const Finding& finding : plan.lookedAt) {
            const bool isContainers = finding.helperKind == m_rules.format.kind && finding.constraint &&
                                      finding.verdict != Finding::Verdict::DoesNotApply;
            if (!isContainers || StreamPathOf(finding.path) != V::TAG_FPS) continue;
            for (const Property& value : WhatIsAllowed(*finding.constraint).values) {
                if (value != mark) listed.push_back(value.GetRatio());
            }
        }
        std::sort(listed.begin(), listed.end());
        Core::Ratio rate = (plan.asked[V::TAG_FPS] != mark ? plan.asked : source)[V::TAG_FPS].GetRatio();
        const bool isListed = std::binary_search(listed.begin(), listed.end(), rate);
        plan.isAtSourceRate =
            rate == source[V::TAG_FPS].GetRatio() && (listed.empty() || isListed || rate < listed.front());
        if (!plan.isAtSourceRate && !listed.empty()) {
            const auto distance = [rate](const Core::Ratio& other) {
                return std::abs(boost::rational_cast<double>(other) - boost::rational_cast<double>(rate));
            };
            rate = *std::min_element(listed.begin(), listed.end(), [&distance](const auto& one, const auto& two) {
                return distance(one) < distance(two);
            });
        }
        stream[V::TAG_FPS] = rate;
        TellRate(plan, mark, stream[V::TAG_FPS]);
    }

    /// What was told of the mark, told of the rate that it stands for.
    static void TellRate(StreamPlan& plan, const Property& mark, const Property& rate) {
        for (auto* const changes : {&plan.changes, &plan.givenWay}) {
            for (CorrectedValue& change : *changes) {
                if (change.path == V::TAG_FPS && change.after == mark) change.after = rate;
            }
            const auto isNone = [](const CorrectedValue& change) { return change.before == change.after; };
            changes->erase(std::remove_if(changes->begin(), changes->end(), isNone), changes->end());
        }
        for (Finding& finding : plan.lookedAt) {
            if (!plan.isAtSourceRate || StreamPathOf(finding.path) != V::TAG_FPS ||
                finding.verdict != Finding::Verdict::Violated || !finding.constraint->IsValid(mark)) {
                continue;
            }
            finding.verdict = Finding::Verdict::Kept;
            finding.problem = Finding::Problem::None;
            finding.value = mark;
            finding.message.clear();
        }
    }

    const StreamRules& m_rules;
    std::vector<std::string> m_sections;  ///< of a preset, that are about this stream
    std::vector<NamedHelper> m_helpers;
};

}  // namespace

StreamPlan Settle(const StreamRules& rules, Property stream) {
    return Settler(rules).Run(std::move(stream));
}

Property WithChoices(Property section, const Request& request) {
    for (const Choice& choice : request.choices) {
        const std::string_view below = Below(choice.path, section.GetName());
        if (below.empty()) continue;
        // The codec is settled before its section is made.
        if (below == IFormatCodec::TAG_CODEC_ID && section.ChildExists(IFormatCodec::TAG_CODEC_ID)) continue;
        MakePath(section, below).CopyDataFrom(choice.value);
    }
    return section;
}

}  // namespace NorvexExport
