#include "norvex/Conf/Review/PresetCheck.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"
#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/PresetAssembly.h"
#include "norvex/Conf/Review/Sentences.h"
#include "norvex/foundation/Excerpt.h"
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
// %1 the section or the stream, %2 the container, %3 the kind of stream, %4 a number.
const char* const sectionMessage = "Section %1 has no place: %2 holds no %3";
const char* const streamMessage = "Stream %1 has no place: %2 holds no %3";
const char* const surplusMessage = "Stream %1 is one too many: %2 holds no more than %4 of %3";
// %1 a section of a stream, %2 the type of that stream.
const char* const otherKindMessage = "Section %1 has no place in a stream of type %2";
const char* const videoWord = "video";
const char* const audioWord = "audio";
const char* const subtitlesWord = "subtitles";
const char* const otherWord = "other types";
// What stands for %3 of a parameter.
const char* const oneOfMessage = "one of %1";
const char* const rangeMessage = "from %1 to %2";
const char* const evenMessage = "even";
const char* const otherMessage = "another value";

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
    return Fill(Translate(message), {Core::Excerpt(finding.documentPath), TextOf(finding.value),
                                     words.empty() ? Translate(otherMessage) : words,
                                     Core::Excerpt(DocumentPathOf(finding.conditionPath)), TextOf(finding.condition)});
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

/// The value at a path, or null.
const Property* At(const Property& preset, const std::string& path) {
    return preset.ChildExists(path) ? &preset[path] : nullptr;
}

Finding Begin(const NamedHelper& named, Finding::Source source, const std::string& key) {
    Finding finding;
    finding.helperKind = named.kind;
    finding.helperId = named.id;
    finding.source = source;
    finding.key = key;
    return finding;
}

/// Says what comes of the finding's value.
void Conclude(Finding& finding, Problem problem) {
    finding.problem = problem;
    if (problem == Problem::None) return;
    finding.verdict = Verdict::Violated;
    finding.allowed = WhatIsAllowed(*finding.constraint);
    finding.documentPath = DocumentPathOf(finding.path);
    finding.message = MessageFor(finding);
}

/// The section of a preset that a kind of helper rules.
const std::string& SectionOf(const std::string& kind) {
    const auto& aliases = GetCatalogue().kindAliases;
    const auto alias = aliases.find(kind);
    return alias != aliases.end() ? alias->second : kind;
}

/// Empty where the stream does not say.
std::string_view TypeOf(const Property& stream) {
    const auto type = stream.FindChild(P::KEY_TYPE_ID);
    return type != stream.end() && type->GetType() == PT_STRING ? std::string_view(type->GetString())
                                                                : std::string_view();
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
                if (TypeOf(stream) != type) continue;
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

// ------------------------------------------------------------------------------------ what a container has room for

/// One kind of stream: its type, the section of its codec, its limit, and its name in messages.
struct StreamKind {
    const std::string& type;
    const std::string& section;
    const std::string& limit;
    const char* word;
};

std::array<StreamKind, 3> StreamKinds() {
    return {{{P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, IFormatFile::TAG_LIMITS_VIDEO, videoWord},
             {P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, IFormatFile::TAG_LIMITS_AUDIO, audioWord},
             {P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC, IFormatFile::TAG_LIMITS_SUBTITLE,
              subtitlesWord}}};
}

/// Tells what of a preset a container has no room for.
class RoomCheck {
public:
    RoomCheck(const Property& preset, const NamedHelper& container, const ConstraintMap& constraints,
              std::vector<Finding>& findings)
        : m_preset(preset), m_container(container), m_constraints(constraints), m_findings(findings) {}

    void Run() {
        for (const StreamKind& kind : StreamKinds()) {
            const auto section = m_preset.FindChild(kind.section);
            if (section != m_preset.end() && !Holds(kind)) Refuse(sectionMessage, kind.section, kind.word);
        }
        const auto format = m_preset.FindChild(P::KEY_FORMAT);
        if (format == m_preset.end()) return;
        const auto streams = format->FindChild(P::KEY_STREAMS);
        if (streams != format->end()) CheckStreams(*streams);
    }

private:
    bool Holds(const StreamKind& kind) const {
        return m_constraints.count(StreamCodecPattern(kind.type, kind.section)) > 0;
    }

    void CheckStreams(const Property& streams) {
        const auto kinds = StreamKinds();
        std::array<std::size_t, kinds.size() + 1> counts{};  // of other types last
        for (const Property& stream : streams) {
            const std::string_view type = TypeOf(stream);
            const std::string path = Path(P::KEY_FORMAT, P::KEY_STREAMS, stream.GetName());
            const auto kind =
                std::find_if(kinds.begin(), kinds.end(), [type](const auto& k) { return k.type == type; });
            std::size_t& count = counts[static_cast<std::size_t>(kind - kinds.begin())];
            if (kind == kinds.end()) {
                RequireRoom(path, std::string(), IFormatFile::TAG_LIMITS_OTHER, otherWord, ++count);
            } else if (!Holds(*kind)) {
                Refuse(streamMessage, path, kind->word);
            } else if (++count > 1) {
                RequireRoom(path, kind->type, kind->limit, kind->word, count);
            }
            for (const StreamKind& other : kinds) {
                if (other.type == type || stream.FindChild(other.section) == stream.end()) continue;
                const std::string section = Path(path, other.section);
                Add(Problem::NoPlace, section,
                    Fill(Translate(otherKindMessage), {Core::Excerpt(section), Core::Excerpt(type)}));
            }
        }
    }

    void RequireRoom(const std::string& path, const std::string& type, const std::string& limit, const char* word,
                     std::size_t count) {
        // Helpers make their defaults anew on each call, and few presets need them.
        if (!m_defaults) m_defaults = m_container.helper->GetDefaults();
        const std::size_t most = std::max(Limit(*m_defaults, limit), CountOf(*m_defaults, type));
        if (count <= most) return;
        Add(Problem::TooMany, path,
            Fill(Translate(surplusMessage),
                 {Core::Excerpt(path), m_container.id, Translate(word), std::to_string(most)}));
    }

    static std::size_t Limit(const Property& defaults, const std::string& tag) {
        const std::string path = Path(IFormatFile::TAG_LIMITS, tag);
        if (!defaults.ChildExists(path) || defaults[path].GetType() != PT_INT64) return 0;
        return static_cast<std::size_t>(std::max(defaults[path].GetInt64(), 0LL));
    }

    /// Default streams have room whatever the limit says: FLV starts with subtitles and states a limit of none.
    static std::size_t CountOf(const Property& defaults, const std::string& type) {
        const auto streams = defaults.FindChild(P::KEY_STREAMS);
        if (streams == defaults.end()) return 0;
        return static_cast<std::size_t>(std::count_if(
            streams->begin(), streams->end(), [&type](const Property& stream) { return TypeOf(stream) == type; }));
    }

    void Refuse(const char* message, const std::string& path, const char* word) {
        Add(Problem::NoPlace, path, Fill(Translate(message), {Core::Excerpt(path), m_container.id, Translate(word)}));
    }

    void Add(Problem problem, const std::string& path, const std::string& message) {
        Finding finding = Begin(m_container, Finding::Source::Helper, std::string());
        finding.verdict = Verdict::Violated;
        finding.problem = problem;
        finding.path = path;
        finding.documentPath = path;
        finding.message = message;
        m_findings.push_back(std::move(finding));
    }

    const Property& m_preset;
    const NamedHelper& m_container;
    const ConstraintMap& m_constraints;
    std::vector<Finding>& m_findings;
    std::optional<Property> m_defaults;
};

// ------------------------------------------------------------------------------------------------------ explaining

enum class Wanted { All, Violations };

void ExplainConstraints(const Property& preset, const NamedHelper& named, Wanted wanted,
                        std::vector<Finding>& findings) {
    ConstraintMap constraints;
    named.helper->GetConstraints(constraints);
    if (SectionOf(named.kind) == P::KEY_FORMAT) RoomCheck(preset, named, constraints, findings).Run();
    for (const auto& [key, constraint] : constraints) {
        for (const auto& [path, value] : ValuesOf(preset, SectionOf(named.kind), key)) {
            const Problem problem = constraint ? Judge(*constraint, *value) : Problem::None;
            if (problem == Problem::None && wanted == Wanted::Violations) continue;
            Finding finding = Begin(named, Finding::Source::Constraint, key);
            finding.path = path;
            finding.value = *value;
            finding.constraint = constraint;
            Conclude(finding, problem);
            findings.push_back(std::move(finding));
        }
    }
}

void ExplainRules(const Property& preset, const NamedHelper& named, Wanted wanted, std::vector<Finding>& findings) {
    RuleList rules;
    named.helper->GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        if (!rule) continue;
        const SP<IPropertyConstraint> first = rule->GetFirstConstraint();
        const SP<IPropertyConstraint> second = rule->GetSecondConstraint();
        const Property* const condition = first ? At(preset, rule->GetFirstPath()) : nullptr;
        const bool applies = !first || (condition != nullptr && IsLegal(*condition, *first));
        if (!applies && wanted == Wanted::Violations) continue;
        const Property* const value = At(preset, rule->GetSecondPath());
        Problem problem = Problem::None;
        if (applies && second) problem = value != nullptr ? Judge(*second, *value) : Problem::Missing;
        if (problem == Problem::None && wanted == Wanted::Violations) continue;
        Finding finding = Begin(named, Finding::Source::Rule, key);
        finding.path = rule->GetSecondPath();
        if (value != nullptr) finding.value = *value;
        finding.constraint = second;
        if (first) finding.conditionPath = rule->GetFirstPath();
        if (condition != nullptr) finding.condition = *condition;
        Conclude(finding, problem);
        if (!applies) finding.verdict = Verdict::DoesNotApply;
        findings.push_back(std::move(finding));
    }
}

std::vector<Finding> Explain(const Property& preset, const std::vector<NamedHelper>& helpers, Wanted wanted) {
    std::vector<Finding> findings;
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        ExplainConstraints(preset, named, wanted, findings);
        ExplainRules(preset, named, wanted, findings);
    }
    return findings;
}

}  // namespace

NamedHelper FindHelper(const std::string& kind, const std::string& id) {
    return {kind, id, CreateDataHelper(kind, id)};
}

std::vector<NamedHelper> HelpersOf(const Property& preset) {
    std::vector<NamedHelper> helpers;
    const auto add = [&](const std::string& kind, const std::string& idTag) {
        const Property* const id = At(preset, Path(kind, idTag));
        if (id == nullptr || id->GetType() != PT_STRING) return;
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

bool IsLegal(const Property& value, const IPropertyConstraint& constraint) noexcept {
    return Judge(constraint, value) == Problem::None;
}

std::vector<Finding> ExplainPreset(const Property& preset, const std::vector<NamedHelper>& helpers) {
    return Explain(preset, helpers, Wanted::All);
}

std::vector<Finding> CheckPreset(const Property& preset, const std::vector<NamedHelper>& helpers) {
    return Explain(preset, helpers, Wanted::Violations);
}

std::vector<Finding> TellOnce(std::vector<Finding> violations) {
    std::vector<Finding> told;
    for (Finding& finding : violations) {
        const bool isTold = std::any_of(told.begin(), told.end(), [&finding](const Finding& known) {
            return known.documentPath == finding.documentPath && known.problem == finding.problem &&
                   known.value == finding.value && known.allowed.words == finding.allowed.words;
        });
        if (!isTold) told.push_back(std::move(finding));
    }
    return told;
}

}  // namespace Norvex::Conf
