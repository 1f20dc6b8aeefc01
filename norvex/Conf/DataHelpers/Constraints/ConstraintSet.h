#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// One of a list of values, each with a display name. Equality is exact, also of doubles. Correction goes to the
/// nearest value, of two equally near ones to the earlier, and from an unlisted text to the first.
class NORVEX_API ConstraintSet final : public RefCounted<IPropertyConstraint> {
public:
    template <class T>
    using ValueList = std::vector<std::pair<std::string, T>>;

    /// Pairs of display name and value, kept as they are given.
    static SP<IPropertyConstraint> Create(const ValueList<bool>& values);
    static SP<IPropertyConstraint> Create(const ValueList<double>& values);
    static SP<IPropertyConstraint> Create(const ValueList<long long>& values);
    static SP<IPropertyConstraint> Create(const ValueList<std::string>& values);
    static SP<IPropertyConstraint> Create(const ValueList<Core::Ratio>& values);
    /// The values must be of that type: Fixup throws Core::PropertyException where it meets a value that is no number
    /// and should be one.
    static SP<IPropertyConstraint> Create(PropertyTypes type, const ValueList<Core::Property>& values);
    /// The same. Each child of `list` is a value under its own name, as a consumer gives them back.
    static SP<IPropertyConstraint> Create(PropertyTypes type, const Core::Property& list);

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    /// A set of ratios reads texts as well; a text that is no ratio is not valid.
    bool IsValid(const Core::Property& value) const override;
    /// A boolean is never corrected, nor a text in a set of ratios. Throws as IsValid does, except with an empty
    /// list.
    bool Fixup(Core::Property& value) const override;
    /// A translated sentence that lists the display names.
    std::string Description(const std::string& parameterName) const override;

private:
    ConstraintSet(PropertyTypes type, ValueList<Core::Property> values) : m_type(type), m_values(std::move(values)) {}
    template <class T>
    ConstraintSet(PropertyTypes type, const ValueList<T>& values);

    const PropertyTypes m_type;
    const ValueList<Core::Property> m_values;
};

}  // namespace Norvex::Conf
