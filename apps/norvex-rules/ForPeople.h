/// One helper of the rule book for people: what holds in the end, with names and units.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace NorvexRules {

/// What a helper starts with and what its values may be: every constraint and rule about a value together, long lists
/// folded, in lines of at most so many columns. None where there is no such helper. `kind` is one of "format", "video",
/// "audio" and "filter". The census of encoders must be taken.
std::optional<std::string> ShowForPeople(const std::string& kind, const std::string& id, std::size_t columns);

}  // namespace NorvexRules
