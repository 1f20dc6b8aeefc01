/// What people call the parameters and values of the book.
#pragma once

#include "norvex/document/Json.h"

namespace NorvexRules {

/// Names and units of parameters, and names of values, by the last tag of their path. Codecs and containers have theirs
/// in their own entries.
Norvex::Document::Value NamesJson();

}  // namespace NorvexRules
