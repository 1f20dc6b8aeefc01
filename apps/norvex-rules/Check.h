/// What came of judging and mending a preset, to read.
#pragma once

#include <string>

#include "norvex/Conf/Review/PresetMending.h"

namespace NorvexRules {

std::string JudgementText(const Norvex::Conf::MendedPreset& mended);
/// The same with what mending changed in the document in the place of the document: lines with - went, with + came.
std::string JudgementDiff(const Norvex::Core::Property& preset, const Norvex::Conf::MendedPreset& mended);
std::string JudgementJson(const Norvex::Conf::MendedPreset& mended);

}  // namespace NorvexRules
