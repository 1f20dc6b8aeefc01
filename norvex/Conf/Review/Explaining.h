#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "norvex/Conf/DataHelpers/Answers.h"
#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/interfaces/Conf/IPreset.h"

/// How the reviews look at one helper, at one constraint and at one rule. Not for hosts.

namespace Norvex::Conf {

enum class Wanted { All, Violations };

/// The way to a value, which becomes a text only where there is something to tell. Refers to its parts.
class Way {
public:
    template <class... Parts>
    explicit Way(const Parts&... parts) : m_parts{std::string_view(parts)...}, m_count(sizeof...(parts)) {}

    std::string Path() const;
    bool operator==(std::string_view path) const noexcept;

private:
    std::array<std::string_view, 4> m_parts;
    std::size_t m_count;
};

/// Whether the text begins with that part, which is then taken off.
bool Take(std::string_view& text, std::string_view part) noexcept;

/// AssemblePreset of one stream alone.
Core::Property AssembleStream(const Core::Property& stream);

/// The section of a preset that a stream's flat node goes to; null where it is no stream's.
const std::string* CodecSectionOf(const std::string& streamName);

/// The path to which a value of a stream goes beside that section; null where it goes nowhere else.
const std::string* OtherPlaceOf(const std::string& streamName, std::string_view streamPath);

/// Empty where the stream does not say.
std::string_view TypeOf(const Core::Property& stream);

/// What a container's key says when it is about every stream of a type: that type, and the path within the stream.
struct StreamKey {
    std::string_view type;
    std::string_view below;
};
/// Nothing for another key.
std::optional<StreamKey> ParseStreamKey(std::string_view key);

/// The section of a preset that a kind of helper rules.
const std::string& SectionOf(const std::string& kind);

/// A section of a preset, which may not be there, and the way to what constraints say of it.
struct SectionOfPreset {
    SectionOfPreset(const Core::Property& whole, const std::string& path)
        : preset(whole), section(path), own(preset.FindByPath(section)) {}

    const Core::Property& preset;
    const std::string& section;
    const Core::Property* const own;
};

/// Calls `see` with each value that the constraint of a section is about, and the way to it. Streams may share a name,
/// and so a path.
template <class See>
void VisitValues(const SectionOfPreset& place, const std::string& key, const See& see) {
    using P = IPreset;
    const auto& [preset, section, own] = place;
    const auto stream = section == P::KEY_FORMAT ? ParseStreamKey(key) : std::nullopt;
    if (!stream) {
        const Core::Property* value = own != nullptr ? own->FindByPath(key) : nullptr;
        if (value != nullptr) return see(*value, Way(section, key));
        value = preset.FindByPath(key);
        if (value != nullptr) see(*value, Way(key));
        return;
    }
    const Core::Property* const streams = own != nullptr ? own->FindByPath(P::KEY_STREAMS) : nullptr;
    if (streams != nullptr) {
        for (const Core::Property& node : *streams) {
            if (TypeOf(node) != stream->type) continue;
            const Core::Property* const value = node.FindByPath(stream->below);
            if (value != nullptr) see(*value, Way(section, P::KEY_STREAMS, node.GetName(), stream->below));
        }
    }
    // The codec's own section.
    const Core::Property* const value = preset.FindByPath(stream->below);
    if (value != nullptr) see(*value, Way(stream->below));
}

// `Findings` is a list, or room for the one that is wanted: findings are large, and are made in their place.

/// Adds what comes of the constraint and one value that it is about.
template <class Findings>
void ExplainConstraint(const NamedHelper& named, const ConstraintMap::value_type& constraint,
                       const Core::Property& value, const Way& way, Wanted wanted, Findings& findings);

/// Adds what comes of the rule.
template <class Findings>
void ExplainRule(const Core::Property& preset, const NamedHelper& named, const ReadRule& rule, Wanted wanted,
                 Findings& findings);

/// Appends what comes of everything that the helper says. Passes null helpers over, and throws what helpers throw.
void ExplainHelper(const Core::Property& preset, const NamedHelper& named, Wanted wanted,
                   std::vector<Finding>& findings);

}  // namespace Norvex::Conf
