/// The rule book for a terminal.
#pragma once

#include <optional>
#include <string>

#include "norvex/document/Json.h"

namespace NorvexRules {

/// Every container, codec and filter, a line each.
std::string ListText(const Norvex::Document::Value& book);

/// One helper: what it carries, its defaults, what is allowed, its rules. None where the book has no such helper.
/// `kind` is one of "format", "video", "audio" and "filter".
std::optional<std::string> ShowText(const Norvex::Document::Value& book, const std::string& kind,
                                    const std::string& id);

/// Containers by codecs, a grid for each kind of stream.
std::string MatrixText(const Norvex::Document::Value& book);

}  // namespace NorvexRules
