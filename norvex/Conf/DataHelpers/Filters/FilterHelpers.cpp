#include "norvex/Conf/DataHelpers/Filters/FilterHelpers.h"

namespace Norvex::Conf {

void FilterHelper::GetRequiredObjects(ObjectList& /*objects*/) const {}

void FilterHelper::GetValidationRules(RuleList& /*rules*/) const {}

void FilterHelper::GetConstraints(ConstraintMap& /*constraints*/) const {}

void FilterHelper::ApplyPresetSettings(const Core::Property& /*preset*/, Core::Property& /*stream*/) const {}

void FilterHelper::CorrectFormatCodec(Core::Property& /*tree*/) const {}

}  // namespace Norvex::Conf
