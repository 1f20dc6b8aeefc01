/// The whole rule book as one JSON document, which all that the program shows is made from.
#pragma once

#include "norvex/document/Json.h"

namespace NorvexRules {

/// The version of the document's form. rulebook.schema.json describes it.
constexpr int g_bookVersion = 2;

/// Takes the census of encoders first. The order is stable: by id, and within a helper as the helper gives it.
Norvex::Document::Value MakeBook();

}  // namespace NorvexRules
