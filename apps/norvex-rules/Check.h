/// What came of judging and mending a preset, to read.
#pragma once

#include <string>

#include "norvex/Conf/Review/PresetMending.h"
#include "norvex/document/PresetDocument.h"

namespace NorvexRules {

/// The document is what was read, and keeps what it says of itself.
std::string JudgementText(const Norvex::Document::PresetDocument& read, const Norvex::Conf::MendedPreset& mended);
/// The same with what mending changed in the document in the place of the document: lines with - went, with + came.
std::string JudgementDiff(const Norvex::Document::PresetDocument& read, const Norvex::Conf::MendedPreset& mended);
std::string JudgementJson(const Norvex::Document::PresetDocument& read, const Norvex::Conf::MendedPreset& mended);

}  // namespace NorvexRules
