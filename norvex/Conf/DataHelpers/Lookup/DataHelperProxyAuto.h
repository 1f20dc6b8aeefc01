#pragma once

#include <string>

#include "norvex/interfaces/Conf/IDataHelper.h"

namespace Norvex::Conf {

/// Wraps a helper and widens what it allows by the automatic values, by which a user leaves a choice to the system:
/// the bitrate mode and the audio codec of a stream, and in rules the sample rate, layout and frame rate. Everything
/// else is the wrapped helper's, correction included, which knows nothing of automatic values; what it throws passes.
class NORVEX_API DataHelperProxyAuto final : public RefCounted<IDataHelper> {
public:
    /// `type` is the kind that the helper was asked for. A null helper is one that says nothing: its defaults are a
    /// node without a name or children.
    static SP<const IDataHelper> Create(const std::string& type, SP<const IDataHelper> helper);

    Core::Property GetDefaults() const override;
    void GetRequiredObjects(ObjectList& objects) const override;
    /// A new rule for each of the helper's. Null rules and constraints pass as they are, here and below.
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    void CorrectFormatCodec(Core::Property& tree) const override;

private:
    DataHelperProxyAuto(const std::string& type, SP<const IDataHelper> helper)
        : m_helper(std::move(helper)), m_type(type) {}

    const SP<const IDataHelper> m_helper;
    const std::string m_type;
};

}  // namespace Norvex::Conf
