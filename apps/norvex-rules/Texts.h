/// The rule book for a terminal.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "norvex/document/Json.h"

namespace NorvexRules {

/// The kinds of which the book has lists, as the command line calls them: "format", "video", "audio", "subtitles" and
/// "filter".
std::vector<std::string> Kinds();

/// A value of the book as a line of text has it: a text without its quotes, all else as JSON.
std::string TextOfValue(const Norvex::Document::Value& value);

/// What is to be listed.
struct Listing {
    std::string kind;     ///< empty for all
    std::string pattern;  ///< a part of the ids, or a pattern with * and ?; empty for all
};

/// Every container, codec and filter, a line each.
std::string ListText(const Norvex::Document::Value& book, const Listing& listing);

/// The same for programs: for each kind, and its id.
std::string ListJson(const Norvex::Document::Value& book, const Listing& listing);

/// One helper: what it carries or which containers carry it, its defaults, what is allowed, its rules. None where the
/// book has no such helper.
std::optional<std::string> ShowText(const Norvex::Document::Value& book, const std::string& kind,
                                    const std::string& id);

/// Containers by codecs, a grid for each kind of stream.
std::string MatrixText(const Norvex::Document::Value& book);

}  // namespace NorvexRules
