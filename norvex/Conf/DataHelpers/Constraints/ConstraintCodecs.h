#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// One of a list of codecs, with a default to fall back on.
class NORVEX_API ConstraintCodecs final : public RefCounted<IPropertyConstraint> {
public:
    /// Pairs of display name and codec id. The default may be empty, and need not be in the list.
    static SP<IPropertyConstraint> Create(const std::vector<std::pair<std::string, std::string>>& codecs,
                                          const std::string& defaultCodec);

    void FillValueList(const SP<IConstraintConsumer>& consumer) const override;
    bool IsValid(const Core::Property& value) const override;
    /// Takes the default, if there is one. Throws as IsValid does.
    bool Fixup(Core::Property& value) const override;
    std::string Description(const std::string& parameterName) const override;

private:
    ConstraintCodecs(const std::vector<std::pair<std::string, std::string>>& codecs, const std::string& defaultCodec)
        : m_values(codecs), m_defaultCodec(defaultCodec) {}

    const std::vector<std::pair<std::string, std::string>> m_values;
    const std::string m_defaultCodec;
};

}  // namespace Norvex::Conf
