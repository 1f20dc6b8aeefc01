#pragma once

#include <functional>
#include <string>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// Whatever a function accepts. It lists nothing and corrects nothing. What the function throws passes through IsValid
/// and Fixup.
class NORVEX_API ConstraintMethod final : public RefCounted<IPropertyConstraint> {
public:
    using Method = std::function<bool(const Core::Property&)>;

    /// An empty method accepts nothing. `description` is given back as it is.
    static SP<IPropertyConstraint> Create(Method method, const std::string& description);
    static SP<IPropertyConstraint> CreateEven(const std::string& description);
    static SP<IPropertyConstraint> CreateAlwaysTrue(const std::string& description);

    /// Whether the value is an even PT_INT64. Never throws.
    static bool IsEven(const Core::Property& value);
    static bool AlwaysTrue(const Core::Property& value);

    /// Does not call the consumer at all.
    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    bool IsValid(const Core::Property& value) const override;
    /// The same as IsValid: the value is never changed.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    ConstraintMethod(Method method, const std::string& description)
        : m_method(std::move(method)), m_description(description) {}

    const Method m_method;
    const std::string m_description;
};

}  // namespace Norvex::Conf
