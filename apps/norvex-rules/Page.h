/// The rule book as one page of its own: no network, no other file.
#pragma once

#include <string>

#include "norvex/document/Json.h"

namespace NorvexRules {

std::string PageHtml(const Norvex::Document::Value& book);

}  // namespace NorvexRules
