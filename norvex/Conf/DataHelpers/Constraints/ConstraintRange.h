#pragma once

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// A number between two bounds, which belong to the range; NaN lies in none. The step is a hint for controls: a value
/// beside its grid is allowed, and correction goes to a bound and never to the grid.
class NORVEX_API ConstraintRange final : public RefCounted<IPropertyConstraint> {
public:
    /// A step of 0 is no step. Bounds in the wrong order allow nothing.
    static SP<IPropertyConstraint> Create(double lo, double hi, double step);
    static SP<IPropertyConstraint> Create(long long lo, long long hi, long long step);

    /// `type` is the type that the range works in. With another than PT_DOUBLE or PT_INT64, FillValueList, IsValid and
    /// Fixup of a number throw ConstraintIsNotApplicableForTypeException.
    template <class T>
    ConstraintRange(PropertyTypes type, T lo, T hi, T step)
        : m_type(type), m_loBound("loBound", lo), m_hiBound("hiBound", hi), m_step("step", step) {}

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    /// Reads the value in the range's own type, whatever its own, and throws Core::PropertyException for what is
    /// no number.
    bool IsValid(const Core::Property& value) const override;
    /// Takes the lower bound for what is below it and the upper for everything else; false for what is no number.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    const PropertyTypes m_type;
    const Core::Property m_loBound;
    const Core::Property m_hiBound;
    const Core::Property m_step;
};

}  // namespace Norvex::Conf
