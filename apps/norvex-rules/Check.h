/// What came of judging and mending a preset, to read.
#pragma once

#include <string>

#include "norvex/Conf/Review/PresetMending.h"

namespace NorvexRules {

std::string JudgementText(const Norvex::Conf::MendedPreset& mended);
std::string JudgementJson(const Norvex::Conf::MendedPreset& mended);

}  // namespace NorvexRules
