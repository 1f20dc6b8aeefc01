#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// One of a list of channel layouts. Correction walks from the first layout of the list towards the count of
/// channels that is wanted and stops short of passing it.
class NORVEX_API ConstraintChannelLayout final : public RefCounted<IPropertyConstraint> {
public:
    static SP<IPropertyConstraint> Create(const std::vector<std::string>& layouts);
    /// Keeps the second members; the display names are dropped.
    static SP<IPropertyConstraint> Create(const std::vector<std::pair<std::string, std::string>>& layouts);

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    bool IsValid(const Core::Property& value) const override;
    /// A layout that LayoutRecord does not hold, in the value or on the way, gives the last one of the list.
    /// Throws as IsValid does.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    explicit ConstraintChannelLayout(std::vector<std::string> layouts) : m_values(std::move(layouts)) {}

    const std::string& Nearest(const std::string& layout) const;

    const std::vector<std::string> m_values;
};

}  // namespace Norvex::Conf
