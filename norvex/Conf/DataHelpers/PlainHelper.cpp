#include "norvex/Conf/DataHelpers/PlainHelper.h"

namespace Norvex::Conf {

void PlainHelper::GetRequiredObjects(ObjectList& /*objects*/) const {}

void PlainHelper::GetValidationRules(RuleList& /*rules*/) const {}

void PlainHelper::GetConstraints(ConstraintMap& /*constraints*/) const {}

void PlainHelper::ApplyPresetSettings(const Core::Property& /*preset*/, Core::Property& /*stream*/) const {}

void PlainHelper::CorrectFormatCodec(Core::Property& /*tree*/) const {}

}  // namespace Norvex::Conf
