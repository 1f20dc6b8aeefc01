/// What came, went or changed between two rule books.
#pragma once

#include <string>

#include "norvex/document/Json.h"

namespace NorvexRules {

/// Reads a book that 'norvex-rules json' wrote. Throws std::runtime_error in one sentence.
Norvex::Document::Value ReadBook(const std::string& path);

/// Empty where nothing of what the books say about containers, codecs and filters differs.
std::string DiffText(const Norvex::Document::Value& before, const Norvex::Document::Value& after);

}  // namespace NorvexRules
