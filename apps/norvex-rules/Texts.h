/// The rule book for a terminal.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace NorvexRules {

/// Every container, codec and filter, a line each.
std::string ListText(const nlohmann::ordered_json& book);

/// One helper: what it carries, its defaults, what is allowed, its rules. None where the book has no such helper.
/// `kind` is one of "format", "video", "audio" and "filter".
std::optional<std::string> ShowText(const nlohmann::ordered_json& book, const std::string& kind, const std::string& id);

/// Containers by codecs, a grid for each kind of stream.
std::string MatrixText(const nlohmann::ordered_json& book);

}  // namespace NorvexRules
