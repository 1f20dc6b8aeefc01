#pragma once

#include "norvex/Conf/DataHelpers/KeepingHelper.h"

namespace Norvex::Conf {

/// A helper that says nothing but its defaults, unless it overrides more.
class NORVEX_API PlainHelper : public RefCounted<KeepingHelper> {
public:
    void GetRequiredObjects(ObjectList& objects) const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    void CorrectFormatCodec(Core::Property& tree) const override;
};

}  // namespace Norvex::Conf
