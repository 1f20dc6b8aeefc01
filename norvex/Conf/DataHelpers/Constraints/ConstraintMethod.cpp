#include "norvex/Conf/DataHelpers/Constraints/ConstraintMethod.h"

namespace Norvex::Conf {

SP<IPropertyConstraint> ConstraintMethod::Create(Method method, const std::string& description) {
    return SP<IPropertyConstraint>(new ConstraintMethod(std::move(method), description));
}

SP<IPropertyConstraint> ConstraintMethod::CreateEven(const std::string& description) {
    return Create(&ConstraintMethod::IsEven, description);
}

SP<IPropertyConstraint> ConstraintMethod::CreateAlwaysTrue(const std::string& description) {
    return Create(&ConstraintMethod::AlwaysTrue, description);
}

bool ConstraintMethod::IsEven(const Core::Property& value) {
    return value.GetType() == PT_INT64 && value.GetInt64() % 2 == 0;
}

bool ConstraintMethod::AlwaysTrue(const Core::Property& /*value*/) {
    return true;
}

void ConstraintMethod::FillValueList(const SP<IConstraintConsumer>& /*consumer*/) const {}

bool ConstraintMethod::IsValid(const Core::Property& value) const {
    return m_method && m_method(value);
}

bool ConstraintMethod::Fixup(Core::Property& value) const {
    return IsValid(value);
}

std::string ConstraintMethod::Description(const std::string& /*parameterName*/) const {
    return m_description;
}

}  // namespace Norvex::Conf
