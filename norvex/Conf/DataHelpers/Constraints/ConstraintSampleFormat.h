#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"

namespace Norvex::Conf {

/// One of a list of sample formats. Correction goes to the twin, which has the same samples in the other
/// arrangement, and else to the nearest width.
class NORVEX_API ConstraintSampleFormat final : public RefCounted<IPropertyConstraint> {
public:
    /// Throws FormatException for a format that SampleFmtRecord does not hold.
    static SP<IPropertyConstraint> Create(const std::vector<SampleFormats>& formats);

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    /// Throws FormatException for a name that SampleFmtRecord does not hold.
    bool IsValid(const Core::Property& value) const override;
    /// Throws as IsValid does.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    explicit ConstraintSampleFormat(const std::vector<SampleFormats>& formats);

    bool IsListed(SampleFormats format) const;

    const std::vector<std::pair<SampleFormats, std::string>> m_values;
};

}  // namespace Norvex::Conf
