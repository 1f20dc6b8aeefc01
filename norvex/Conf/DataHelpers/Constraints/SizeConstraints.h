#pragma once

#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// Offers frame sizes to choose from, as subtrees of width and height. What it judges is the frame size mode, which
/// must say that the size is custom.
class NORVEX_API SizeConstraints final : public RefCounted<IPropertyConstraint> {
public:
    using SizeList = std::vector<std::pair<long long, long long>>;

    /// Pairs of width and height in pixels.
    static SP<IPropertyConstraint> Create(const SizeList& sizes);

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    /// Whether the value is the text Proc::IResize::FRAME_SIZE_CUSTOM. Never throws.
    bool IsValid(const Core::Property& value) const override;
    /// The same as IsValid: the value is never changed.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    explicit SizeConstraints(const SizeList& sizes) : m_sizes(sizes) {}

    const SizeList m_sizes;
};

}  // namespace Norvex::Conf
