/// The rule book as one page of its own: no network, no other file.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace NorvexRules {

std::string PageHtml(const nlohmann::ordered_json& book);

}  // namespace NorvexRules
