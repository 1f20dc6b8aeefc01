#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"

#include <cmath>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintFailure.h"

namespace Norvex::Conf {

SP<IPropertyConstraint> ConstraintRange::Create(double lo, double hi, double step) {
    return SP<IPropertyConstraint>(new ConstraintRange(PT_DOUBLE, lo, hi, step));
}

SP<IPropertyConstraint> ConstraintRange::Create(long long lo, long long hi, long long step) {
    return SP<IPropertyConstraint>(new ConstraintRange(PT_INT64, lo, hi, step));
}

void ConstraintRange::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    switch (m_type) {
        case PT_INT64:
            consumer->SetMinValue(m_loBound.GetInt64());
            consumer->SetMaxValue(m_hiBound.GetInt64());
            if (m_step.GetInt64() != 0) consumer->SetStep(m_step.GetInt64());
            return;
        case PT_DOUBLE:
            consumer->SetMinValue(m_loBound.GetDouble());
            consumer->SetMaxValue(m_hiBound.GetDouble());
            if (m_step.GetDouble() != 0.0) consumer->SetStep(m_step.GetDouble());
            return;
        default:
            NORVEX_THROW(NotApplicable("ConstraintRange", m_type));
    }
}

bool ConstraintRange::IsValid(const Core::Property& value) const {
    switch (m_type) {
        case PT_INT64:
            // As an integer it would read as the largest, which a range may allow.
            if (value.GetType() == PT_DOUBLE && std::isnan(value.GetDouble())) return false;
            return m_loBound.GetInt64() <= value.GetInt64() && value.GetInt64() <= m_hiBound.GetInt64();
        case PT_DOUBLE:
            return m_loBound.GetDouble() <= value.GetDouble() && value.GetDouble() <= m_hiBound.GetDouble();
        default:
            NORVEX_THROW(NotApplicable("ConstraintRange", m_type));
    }
}

bool ConstraintRange::Fixup(Core::Property& value) const {
    if (value.GetType() != PT_DOUBLE && value.GetType() != PT_INT64) return false;
    if (IsValid(value)) return true;
    const bool below =
        m_type == PT_INT64 ? value.GetInt64() < m_loBound.GetInt64() : value.GetDouble() < m_loBound.GetDouble();
    value.CopyDataFrom(below ? m_loBound : m_hiBound);
    return true;
}

std::string ConstraintRange::Description(const std::string& /*parameterName*/) const {
    return {};
}

}  // namespace Norvex::Conf
