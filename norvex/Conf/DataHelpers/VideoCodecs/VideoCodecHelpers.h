#pragma once

#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"

/// The video codec helpers. Each is told in a source of its own.

namespace Norvex::Conf {

class NORVEX_API DataHelperVideoCodecX264 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecX264();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

}  // namespace Norvex::Conf
