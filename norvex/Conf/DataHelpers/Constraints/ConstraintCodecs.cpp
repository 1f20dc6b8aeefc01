#include "norvex/Conf/DataHelpers/Constraints/ConstraintCodecs.h"

#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintFailure.h"

namespace Norvex::Conf {

SP<IPropertyConstraint> ConstraintCodecs::Create(const std::vector<std::pair<std::string, std::string>>& codecs,
                                                 const std::string& defaultCodec) {
    return SP<IPropertyConstraint>(new ConstraintCodecs(codecs, defaultCodec));
}

void ConstraintCodecs::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    for (const auto& [name, codecId] : m_values) consumer->AddValue(name, Core::Property(std::string(), codecId));
    consumer->EndValues();
}

bool ConstraintCodecs::IsValid(const Core::Property& value) const {
    if (value.GetType() != PT_STRING) NORVEX_THROW(NotApplicable("ConstraintCodecs", PT_STRING));
    return std::any_of(m_values.begin(), m_values.end(),
                       [&value](const auto& codec) { return codec.second == value.GetString(); });
}

bool ConstraintCodecs::Fixup(Core::Property& value) const {
    if (IsValid(value)) return true;
    if (m_defaultCodec.empty()) return false;
    value = m_defaultCodec;
    return true;
}

std::string ConstraintCodecs::Description(const std::string& /*parameterName*/) const {
    return {};
}

}  // namespace Norvex::Conf
