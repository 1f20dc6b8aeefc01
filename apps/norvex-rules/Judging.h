/// What a program needs to judge presets by the book's document as the library does, and to correct single values.
#pragma once

#include <string>

#include "norvex/Norvex.h"
#include "norvex/document/Json.h"

namespace NorvexRules {

/// What the constraint allows, and how it judges: its class, the type in which it works, and what its class needs.
Norvex::Document::Value AllowedJson(const Norvex::Conf::IPropertyConstraint& constraint);

/// The constraints of a helper of that kind, by path.
Norvex::Document::Value ConstraintsJson(const std::string& kind, const Norvex::Conf::IDataHelper& helper);

/// The rules of a helper of that kind, in its order.
Norvex::Document::Value RulesJson(const std::string& kind, const Norvex::Conf::IDataHelper& helper);

/// What the section of that kind may hold where its codec or container is that one: types, and automatic values.
Norvex::Document::Value ParametersJson(const std::string& kind, const std::string& id);

/// What belongs to no helper.
Norvex::Document::Value JudgingJson();

}  // namespace NorvexRules
