#pragma once

#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"

/// The audio codec helpers. Each is told in a source of its own.

namespace Norvex::Conf {

class NORVEX_API DataHelperAudioCodecAac final : public AudioCodecHelper {
public:
    DataHelperAudioCodecAac();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

}  // namespace Norvex::Conf
