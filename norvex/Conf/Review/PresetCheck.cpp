#include "norvex/Conf/Review/PresetCheck.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"
#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/foundation/Localization.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Conf/Messages.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using P = IPreset;
using Problem = Finding::Problem;
using Verdict = Finding::Verdict;

// ------------------------------------------------------------------------------------------------------- words

// gettext messages. The marks stand for: %1 the parameter, %2 its value, %3 what is allowed, %4 the parameter of the
// condition, %5 its value.
const char* const notAllowedMessage = "Parameter %1 is %2 but must be %3";
const char* const notAllowedWhenMessage = "Parameter %1 is %2 but must be %3 when %4 is %5";
const char* const missingMessage = "Parameter %1 is missing but must be %3";
const char* const missingWhenMessage = "Parameter %1 is missing but must be %3 when %4 is %5";
const char* const wrongTypeMessage = "Parameter %1 is %2, which is no value of its type, but must be %3";
const char* const wrongTypeWhenMessage =
    "Parameter %1 is %2, which is no value of its type, but must be %3 when %4 is %5";
// What stands for %3.
const char* const oneOfMessage = "one of %1";
const char* const rangeMessage = "from %1 to %2";
const char* const evenMessage = "even";
const char* const otherMessage = "another value";

std::string Translate(const std::string& message) {
    const Core::LocalizationDomain localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    return localization.manager.Translate(message, localization.domain);
}

/// Puts the texts in the places of the marks, in one go: a text may look like a mark itself.
std::string Fill(const std::string& message, std::initializer_list<std::string> texts) {
    std::string filled;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const std::size_t mark =
            message[i] == '%' && i + 1 < message.size() ? static_cast<std::size_t>(message[i + 1] - '1') : texts.size();
        if (mark < texts.size()) {
            filled += *(texts.begin() + mark);
            ++i;
        } else {
            filled += message[i];
        }
    }
    return filled;
}

std::string TextOf(const std::optional<Property>& value) {
    return value ? Core::PropertyValueToString(*value) : std::string();
}

/// Takes down what a constraint offers.
class AllowedConsumer final : public RefCounted<IConstraintConsumer> {
public:
    const Allowed& Get() const { return m_allowed; }

    void Reset() override { m_allowed = {}; }
    void AddValue(const std::string& name, const Property& value) override {
        Property named(name);
        named.CopyDataFrom(value);
        m_allowed.values.push_back(std::move(named));
    }
    void EndValues() override {}
    void SetMaxValue(double value) override { m_allowed.max = Number(value); }
    void SetMaxValue(long long value) override { m_allowed.max = Number(value); }
    void SetMinValue(double value) override { m_allowed.min = Number(value); }
    void SetMinValue(long long value) override { m_allowed.min = Number(value); }
    void SetStep(double step) override { m_allowed.step = Number(step); }
    void SetStep(long long step) override { m_allowed.step = Number(step); }
    Property GetValue() const override { return Property(); }
    void SetValue(const Property& /*value*/) override {}

private:
    template <class T>
    static Property Number(T value) {
        return Property(std::string(), value);
    }

    Allowed m_allowed;
};

std::string WordsFor(const Allowed& allowed, const IPropertyConstraint& constraint) {
    std::vector<std::string> names;
    for (const Property& value : allowed.values) {
        // A flag's display name is a digit.
        std::string name = value.GetType() == PT_BOOL ? Core::PropertyValueToString(value) : value.GetName();
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
    }
    if (names.size() == 1) return names.front();
    if (!names.empty()) {
        std::string list;
        for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
        return Fill(Translate(oneOfMessage), {list});
    }
    if (allowed.min && allowed.max) return Fill(Translate(rangeMessage), {TextOf(allowed.min), TextOf(allowed.max)});
    const std::string description = constraint.Description(std::string());
    return description == IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE ? Translate(evenMessage)
                                                                        : Translate(description);
}

std::string MessageFor(const Finding& finding) {
    const bool isConditional = finding.condition.has_value();
    const char* message = isConditional ? notAllowedWhenMessage : notAllowedMessage;
    if (finding.problem == Problem::Missing) message = isConditional ? missingWhenMessage : missingMessage;
    if (finding.problem == Problem::WrongType) message = isConditional ? wrongTypeWhenMessage : wrongTypeMessage;
    const std::string& words = finding.allowed.words;
    return Fill(Translate(message),
                {finding.path, TextOf(finding.value), words.empty() ? Translate(otherMessage) : words,
                 finding.conditionPath, TextOf(finding.condition)});
}

// ------------------------------------------------------------------------------------------------------ judging

/// What is wrong with a value. A constraint that throws, be it whatever a host throws, cannot judge that value.
Problem Judge(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value) ? Problem::None : Problem::NotAllowed;
    } catch (...) {
        return Problem::WrongType;
    }
}

std::optional<Property> Read(const Property& preset, const std::string& path) {
    if (!preset.ChildExists(path)) return std::nullopt;
    return preset[path];
}

/// Judges the finding's value, and says what comes of it.
void Conclude(Finding& finding) {
    if (!finding.constraint) return;
    finding.problem = finding.value ? Judge(*finding.constraint, *finding.value) : Problem::Missing;
    if (finding.problem == Problem::None) return;
    finding.verdict = Verdict::Violated;
    finding.allowed = WhatIsAllowed(*finding.constraint);
    finding.message = MessageFor(finding);
}

/// The section of a preset that a kind of helper rules.
const std::string& SectionOf(const std::string& kind) {
    const auto& aliases = GetCatalogue().kindAliases;
    const auto alias = aliases.find(kind);
    return alias != aliases.end() ? alias->second : kind;
}

/// The values that a constraint is about, with their paths. Streams may share a name, and so a path.
std::vector<std::pair<std::string, const Property*>> ValuesOf(const Property& preset, const std::string& section,
                                                              const std::string& key) {
    std::vector<std::pair<std::string, const Property*>> values;
    const auto add = [&](const std::string& path) {
        if (preset.ChildExists(path)) values.emplace_back(path, &preset[path]);
    };
    const std::string anyStream = P::KEY_STREAMS + P::INDEX;
    if (section == P::KEY_FORMAT && key.compare(0, anyStream.size(), anyStream) == 0) {
        const std::size_t end = std::min(key.find(Property::SEPARATOR), key.size());
        const std::string type = key.substr(anyStream.size(), end - anyStream.size());
        const std::string below = key.substr(std::min(end + Property::SEPARATOR.size(), key.size()));
        const std::string streams = Path(section, P::KEY_STREAMS);
        if (preset.ChildExists(streams)) {
            for (const Property& stream : preset[streams]) {
                const auto typeId = stream.FindChild(P::KEY_TYPE_ID);
                if (typeId == stream.end() || *typeId != Property(std::string(), type)) continue;
                if (stream.ChildExists(below)) {
                    values.emplace_back(Path(streams, stream.GetName(), below), &stream[below]);
                }
            }
        }
        add(below);  // the codec's own section
        return values;
    }
    add(Path(section, key));
    if (values.empty()) add(key);
    return values;
}

void ExplainConstraints(const Property& preset, const NamedHelper& named, std::vector<Finding>& findings) {
    ConstraintMap constraints;
    named.helper->GetConstraints(constraints);
    for (const auto& [key, constraint] : constraints) {
        for (const auto& [path, value] : ValuesOf(preset, SectionOf(named.kind), key)) {
            Finding finding;
            finding.helperKind = named.kind;
            finding.helperId = named.id;
            finding.source = Finding::Source::Constraint;
            finding.key = key;
            finding.path = path;
            finding.value = *value;
            finding.constraint = constraint;
            Conclude(finding);
            findings.push_back(std::move(finding));
        }
    }
}

void ExplainRules(const Property& preset, const NamedHelper& named, std::vector<Finding>& findings) {
    RuleList rules;
    named.helper->GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        if (!rule) continue;
        Finding finding;
        finding.helperKind = named.kind;
        finding.helperId = named.id;
        finding.source = Finding::Source::Rule;
        finding.key = key;
        finding.path = rule->GetSecondPath();
        finding.value = Read(preset, finding.path);
        finding.constraint = rule->GetSecondConstraint();
        bool applies = true;
        if (const auto condition = rule->GetFirstConstraint()) {
            finding.conditionPath = rule->GetFirstPath();
            finding.condition = Read(preset, finding.conditionPath);
            applies = finding.condition && Judge(*condition, *finding.condition) == Problem::None;
        }
        if (applies) {
            Conclude(finding);
        } else {
            finding.verdict = Verdict::DoesNotApply;
        }
        findings.push_back(std::move(finding));
    }
}

}  // namespace

NamedHelper FindHelper(const std::string& kind, const std::string& id) {
    return {kind, id, CreateDataHelper(kind, id)};
}

std::vector<NamedHelper> HelpersOf(const Property& preset) {
    std::vector<NamedHelper> helpers;
    const auto add = [&](const std::string& kind, const std::string& idTag) {
        const std::optional<Property> id = Read(preset, Path(kind, idTag));
        if (!id || id->GetType() != PT_STRING) return;
        const auto& table = GetAvailableDataHelpers(kind);
        const auto helper = table.find(id->GetString());
        if (helper != table.end()) helpers.push_back({kind, helper->first, helper->second});
    };
    add(P::KEY_FORMAT, IFormatFile::TAG_CONTAINER);
    add(P::KEY_FILTER_VIDEO_CODEC, IFormatCodec::TAG_CODEC_ID);
    add(P::KEY_FILTER_AUDIO_CODEC, IFormatCodec::TAG_CODEC_ID);
    for (const auto& [kind, helper] : GetCatalogue().filters) {
        if (preset.ChildExists(kind)) helpers.push_back({kind, std::string(), helper});
    }
    return helpers;
}

Allowed WhatIsAllowed(const IPropertyConstraint& constraint) {
    // Counted, and with what it took down: a host's constraint may keep it.
    const SP<AllowedConsumer> consumer(new AllowedConsumer);
    Allowed allowed;
    try {
        constraint.FillValueList(consumer);
        allowed = consumer->Get();
        allowed.words = WordsFor(allowed, constraint);
    } catch (...) {
        // A constraint of the host's own that has no list has no words either.
    }
    return allowed;
}

std::vector<Finding> ExplainPreset(const Property& preset, const std::vector<NamedHelper>& helpers) {
    std::vector<Finding> findings;
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        ExplainConstraints(preset, named, findings);
        ExplainRules(preset, named, findings);
    }
    return findings;
}

std::vector<Finding> CheckPreset(const Property& preset, const std::vector<NamedHelper>& helpers) {
    std::vector<Finding> findings = ExplainPreset(preset, helpers);
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) { return finding.verdict != Verdict::Violated; }),
                   findings.end());
    return findings;
}

}  // namespace Norvex::Conf
