#include "norvex/Conf/Review/PresetCheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"
#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/Explaining.h"
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

// gettext messages, which stand for %3 of a finding on a parameter.
const char* const rangeMessage = "from %1 to %2";
const char* const evenMessage = "even";

/// Takes down what a constraint offers.
class AllowedConsumer final : public RefCounted<IConstraintConsumer> {
public:
    /// Leaves what it took down to a constraint that keeps it.
    Allowed Take() { return GetRefCount() > 1 ? m_allowed : std::move(m_allowed); }

    void Reset() override { m_allowed = {}; }
    void AddValue(const std::string& name, const Property& value) override {
        if (m_allowed.values.empty()) m_allowed.values.reserve(16);  // most lists are short
        m_allowed.values.emplace_back(name, value);
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
    const auto nameOf = [](const Property& value) {
        // A flag's display name is a digit.
        if (value.GetType() == PT_BOOL) return std::string_view(value.GetBool() ? "true" : "false");
        return std::string_view(value.GetName());
    };
    if (!allowed.values.empty()) {
        std::size_t count = 0;
        std::uint64_t seen = 0;  // one bit for some names: where it is not set, no name before is the same
        std::string list;
        list.reserve(16 * allowed.values.size());
        for (auto value = allowed.values.begin(); value != allowed.values.end(); ++value) {
            const std::string_view name = nameOf(*value);
            const std::uint64_t mark = std::uint64_t{1} << (std::hash<std::string_view>()(name) % 64);
            const bool isNew =
                (seen & mark) == 0 || std::none_of(allowed.values.begin(), value,
                                                   [&](const Property& before) { return nameOf(before) == name; });
            seen |= mark;
            if (!isNew) continue;
            if (!list.empty()) list.append(", ", 2);
            list += name;
            ++count;
        }
        return count == 1 ? list : Say(oneOfMessage, {list});
    }
    if (allowed.min && allowed.max) return Say(rangeMessage, {TextOf(allowed.min), TextOf(allowed.max)});
    const std::string description = constraint.Description(std::string());
    return description == IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE ? Translate(evenMessage)
                                                                        : Translate(description);
}

std::string MessageFor(const Finding& finding) {
    const bool isConditional = finding.condition.has_value();
    const char* message = isConditional ? notAllowedWhenMessage : notAllowedMessage;
    if (finding.problem == Problem::Missing) message = isConditional ? missingWhenMessage : missingMessage;
    if (finding.problem == Problem::WrongType) message = isConditional ? wrongTypeWhenMessage : wrongTypeMessage;
    const std::string otherWords = finding.allowed.words.empty() ? Translate(otherMessage) : std::string();
    std::string shownPath, shownConditionPath;
    return Say(message,
               {Core::Excerpt(finding.documentPath, shownPath), TextOf(finding.value),
                finding.allowed.words.empty() ? otherWords : finding.allowed.words,
                Core::Excerpt(DocumentPathOf(finding.conditionPath), shownConditionPath), TextOf(finding.condition)});
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

Finding& Add(std::vector<Finding>& findings) {
    return findings.emplace_back();
}

Finding& Add(std::optional<Finding>& finding) {
    return finding.emplace();
}

template <class Findings>
Finding& Begin(const NamedHelper& named, Finding::Source source, const std::string& key, Findings& findings) {
    Finding& finding = Add(findings);
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
    RoomCheck(const Property& preset, const NamedHelper& container, Reading& said, std::vector<Finding>& findings)
        : m_preset(preset), m_container(container), m_said(said), m_findings(findings) {}

    void Run() {
        for (const StreamKind& kind : m_kinds) {
            const auto section = m_preset.FindChild(kind.section);
            if (section != m_preset.end() && !Holds(kind)) Refuse(sectionMessage, kind.section, kind.word);
        }
        const auto format = m_preset.FindChild(P::KEY_FORMAT);
        if (format == m_preset.end()) return;
        const auto streams = format->FindChild(P::KEY_STREAMS);
        if (streams != format->end()) CheckStreams(*streams);
    }

private:
    /// Whether there is a list of codecs for the kind.
    bool Holds(const StreamKind& kind) {
        const ConstraintMap& constraints = m_said.Constraints();
        return std::any_of(constraints.begin(), constraints.end(), [&kind](const auto& constraint) {
            const auto key = ParseStreamKey(constraint.first);
            return key && key->type == kind.type && Way(kind.section, IFormatCodec::TAG_CODEC_ID) == key->below;
        });
    }

    void CheckStreams(const Property& streams) {
        std::array<std::size_t, std::tuple_size_v<decltype(m_kinds)> + 1> counts{};  // of other types last
        for (const Property& stream : streams) {
            const std::string_view type = TypeOf(stream);
            const Way way(P::KEY_FORMAT, P::KEY_STREAMS, stream.GetName());
            const auto kind =
                std::find_if(m_kinds.begin(), m_kinds.end(), [type](const auto& k) { return k.type == type; });
            std::size_t& count = counts[static_cast<std::size_t>(kind - m_kinds.begin())];
            if (kind == m_kinds.end()) {
                RequireRoom(way, std::string_view(), IFormatFile::TAG_LIMITS_OTHER, otherWord, ++count);
            } else if (!Holds(*kind)) {
                Refuse(streamMessage, way.Path(), kind->word);
            } else if (++count > 1) {
                RequireRoom(way, kind->type, kind->limit, kind->word, count);
            }
            for (const StreamKind& other : m_kinds) {
                if (other.type == type || stream.FindChild(other.section) == stream.end()) continue;
                const std::string section = Path(way.Path(), other.section);
                Add(Problem::NoPlace, section, Say(otherKindMessage, {Core::Excerpt(section), Core::Excerpt(type)}));
            }
        }
    }

    void RequireRoom(const Way& way, std::string_view type, const std::string& limit, const char* word,
                     std::size_t count) {
        const Property& defaults = m_said.Defaults();
        const std::size_t most = std::max(Limit(defaults, limit), CountOf(defaults, type));
        if (count <= most) return;
        const std::string path = way.Path();
        Add(Problem::TooMany, path,
            Say(surplusMessage, {Core::Excerpt(path), m_container.id, Translate(word), std::to_string(most)}));
    }

    static std::size_t Limit(const Property& defaults, const std::string& tag) {
        const std::string path = Path(IFormatFile::TAG_LIMITS, tag);
        if (!defaults.ChildExists(path) || defaults[path].GetType() != PT_INT64) return 0;
        return static_cast<std::size_t>(std::max(defaults[path].GetInt64(), 0LL));
    }

    /// Default streams have room whatever the limit says: FLV starts with subtitles and states a limit of none.
    static std::size_t CountOf(const Property& defaults, std::string_view type) {
        const auto streams = defaults.FindChild(P::KEY_STREAMS);
        if (streams == defaults.end()) return 0;
        return static_cast<std::size_t>(std::count_if(
            streams->begin(), streams->end(), [type](const Property& stream) { return TypeOf(stream) == type; }));
    }

    void Refuse(const char* message, const std::string& path, const char* word) {
        Add(Problem::NoPlace, path, Say(message, {Core::Excerpt(path), m_container.id, Translate(word)}));
    }

    void Add(Problem problem, const std::string& path, const std::string& message) {
        Finding& finding = Begin(m_container, Finding::Source::Helper, std::string(), m_findings);
        finding.verdict = Verdict::Violated;
        finding.problem = problem;
        finding.path = path;
        finding.documentPath = path;
        finding.message = message;
    }

    const Property& m_preset;
    const NamedHelper& m_container;
    Reading& m_said;
    std::vector<Finding>& m_findings;
    const decltype(StreamKinds()) m_kinds = StreamKinds();
};

// ------------------------------------------------------------------------------------------------------ explaining

std::vector<Finding> Explain(const Property& preset, const std::vector<NamedHelper>& helpers, Wanted wanted) {
    std::vector<Finding> findings;
    for (const NamedHelper& named : helpers) ExplainHelper(preset, named, wanted, findings);
    return findings;
}

}  // namespace

std::string Way::Path() const {
    std::string path;
    std::size_t size = m_count;
    for (std::size_t i = 0; i < m_count; ++i) size += m_parts[i].size();
    path.reserve(size);
    path = m_parts[0];
    for (std::size_t i = 1; i < m_count; ++i) (path += Property::SEPARATOR) += m_parts[i];
    return path;
}

bool Way::operator==(std::string_view path) const noexcept {
    for (std::size_t i = 0; i < m_count; ++i) {
        if (i > 0 && !Take(path, Property::SEPARATOR)) return false;
        if (!Take(path, m_parts[i])) return false;
    }
    return path.empty();
}

bool Take(std::string_view& text, std::string_view part) noexcept {
    if (text.substr(0, part.size()) != part) return false;
    text.remove_prefix(part.size());
    return true;
}

std::string_view TypeOf(const Property& stream) {
    const auto type = stream.FindChild(P::KEY_TYPE_ID);
    return type != stream.end() && type->GetType() == PT_STRING ? std::string_view(type->GetString())
                                                                : std::string_view();
}

std::optional<StreamKey> ParseStreamKey(std::string_view key) {
    if (!Take(key, P::KEY_STREAMS) || !Take(key, P::INDEX)) return std::nullopt;
    const std::size_t end = std::min(key.find(Property::SEPARATOR), key.size());
    const std::string_view type = key.substr(0, end);
    key.remove_prefix(end);
    Take(key, Property::SEPARATOR);
    return StreamKey{type, key};
}

const std::string& SectionOf(const std::string& kind) {
    const auto& aliases = GetCatalogue().kindAliases;
    const auto alias = aliases.find(kind);
    return alias != aliases.end() ? alias->second : kind;
}

template <class Findings>
void ExplainConstraint(const NamedHelper& named, const ConstraintMap::value_type& constraint, const Property& value,
                       const Way& way, Wanted wanted, Findings& findings) {
    const auto& [key, allowing] = constraint;
    const Problem problem = allowing ? Judge(*allowing, value) : Problem::None;
    if (problem == Problem::None && wanted == Wanted::Violations) return;
    Finding& finding = Begin(named, Finding::Source::Constraint, key, findings);
    finding.path = way.Path();
    finding.value = value;
    finding.constraint = allowing;
    Conclude(finding, problem);
}

template void ExplainConstraint(const NamedHelper& named, const ConstraintMap::value_type& constraint,
                                const Property& value, const Way& way, Wanted wanted, std::optional<Finding>& findings);

template <class Findings>
void ExplainRule(const Property& preset, const NamedHelper& named, const ReadRule& rule, Wanted wanted,
                 Findings& findings) {
    const Property* const condition = rule.first ? preset.FindByPath(rule.rule->GetFirstPath()) : nullptr;
    const bool applies = !rule.first || (condition != nullptr && IsLegal(*condition, *rule.first));
    if (!applies && wanted == Wanted::Violations) return;
    const std::string& path = rule.rule->GetSecondPath();
    const Property* const value = preset.FindByPath(path);
    Problem problem = Problem::None;
    if (applies && rule.second) problem = value != nullptr ? Judge(*rule.second, *value) : Problem::Missing;
    if (problem == Problem::None && wanted == Wanted::Violations) return;
    Finding& finding = Begin(named, Finding::Source::Rule, rule.key, findings);
    finding.path = path;
    if (value != nullptr) finding.value = *value;
    finding.constraint = rule.second;
    if (rule.first) finding.conditionPath = rule.rule->GetFirstPath();
    if (condition != nullptr) finding.condition = *condition;
    Conclude(finding, problem);
    if (!applies) finding.verdict = Verdict::DoesNotApply;
}

template void ExplainRule(const Property& preset, const NamedHelper& named, const ReadRule& rule, Wanted wanted,
                          std::optional<Finding>& findings);

void ExplainHelper(const Property& preset, const NamedHelper& named, Wanted wanted, std::vector<Finding>& findings) {
    if (!named.helper) return;
    Reading said(*named.helper);
    const std::string& section = SectionOf(named.kind);
    const ConstraintMap& constraints = said.Constraints();
    if (section == P::KEY_FORMAT) RoomCheck(preset, named, said, findings).Run();
    const SectionOfPreset place(preset, section);
    for (const auto& constraint : constraints) {
        VisitValues(place, constraint.first, [&](const Property& value, const Way& way) {
            ExplainConstraint(named, constraint, value, way, wanted, findings);
        });
    }
    for (const ReadRule& rule : said.Rules()) ExplainRule(preset, named, rule, wanted, findings);
}

NamedHelper FindHelper(const std::string& kind, const std::string& id) {
    return {kind, id, CreateDataHelper(kind, id)};
}

std::vector<NamedHelper> HelpersOf(const Property& preset) {
    const auto& filters = GetCatalogue().filters;
    std::vector<NamedHelper> helpers;
    helpers.reserve(3 + filters.size());
    const auto add = [&](const std::string& kind, const std::string& idTag) {
        const auto section = preset.FindChild(kind);
        if (section == preset.end()) return;
        const auto id = section->FindChild(idTag);
        if (id == section->end() || id->GetType() != PT_STRING) return;
        const auto& table = GetAvailableDataHelpers(kind);
        const auto helper = table.find(id->GetString());
        if (helper != table.end()) helpers.push_back({kind, helper->first, helper->second});
    };
    add(P::KEY_FORMAT, IFormatFile::TAG_CONTAINER);
    add(P::KEY_FILTER_VIDEO_CODEC, IFormatCodec::TAG_CODEC_ID);
    add(P::KEY_FILTER_AUDIO_CODEC, IFormatCodec::TAG_CODEC_ID);
    for (const auto& [kind, helper] : filters) {
        if (preset.FindByPath(kind) != nullptr) helpers.push_back({kind, std::string(), helper});
    }
    return helpers;
}

Allowed WhatIsAllowed(const IPropertyConstraint& constraint) {
    // Counted: a host's constraint may keep it.
    const SP<AllowedConsumer> consumer(new AllowedConsumer);
    Allowed allowed;
    try {
        constraint.FillValueList(consumer);
        allowed = consumer->Take();
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
