#include "norvex/Conf/DataHelpers/Lookup/DataHelperProxyAuto.h"

#include "norvex/Conf/DataHelpers/Constraints/FakeConstraintConsumer.h"
#include "norvex/Conf/DataHelpers/Constraints/PairValidationRule.h"
#include "norvex/Conf/DataHelpers/PlainHelper.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"

namespace Norvex::Conf {

namespace {

using Core::Property;

/// A set of `automatic`, listed first, and what the constraint lists. A constraint that gives bounds and no list
/// becomes a set of the automatic value alone.
SP<IPropertyConstraint> Widened(const IPropertyConstraint& constraint, const std::string& displayName,
                                const Property& automatic, const SP<IConstraintConsumer>& consumer) {
    consumer->Reset();
    consumer->AddValue(displayName, automatic);
    constraint.FillValueList(consumer);
    return ConstraintSet::Create(automatic.GetType(), consumer->GetValue());
}

/// Whatever the constraint makes of the value: a constraint that refuses its type does not allow it.
bool Allows(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value);
    } catch (...) {
        return false;
    }
}

/// Stands in for a helper that is not there.
class NoHelper final : public PlainHelper {
public:
    Property GetDefaults() const override { return Property(std::string()); }
};

}  // namespace

SP<const IDataHelper> DataHelperProxyAuto::Create(const std::string& type, SP<const IDataHelper> helper) {
    if (!helper) helper = new NoHelper;
    return SP<const IDataHelper>(new DataHelperProxyAuto(type, std::move(helper)));
}

Property DataHelperProxyAuto::GetDefaults() const {
    return m_helper->GetDefaults();
}

void DataHelperProxyAuto::GetRequiredObjects(ObjectList& objects) const {
    m_helper->GetRequiredObjects(objects);
}

void DataHelperProxyAuto::GetValidationRules(RuleList& rules) const {
    RuleList own;
    m_helper->GetValidationRules(own);
    const std::map<std::string, Property> automaticValues = {
        {SampleRatePath(), Property("Auto", -1)},
        {LayoutPath(), Property("Auto", IFormatCodecAudio::TAG_CH_LAYOUT_UNKNOWN)},
        {FrameRatePath(), Property("Auto", Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE)},
    };
    const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
    for (const auto& [key, rule] : own) {
        if (!rule) {
            rules.emplace_back(key, nullptr);
            continue;
        }
        SP<IPropertyConstraint> second = rule->GetSecondConstraint();
        const auto automatic = automaticValues.find(rule->GetSecondPath());
        if (second && automatic != automaticValues.end() && !Allows(*second, automatic->second)) {
            second = Widened(*second, "Auto", automatic->second, consumer);
        }
        rules.emplace_back(key, PairValidationRule::Create(rule->GetFirstPath(), rule->GetFirstConstraint(),
                                                           rule->GetSecondPath(), std::move(second)));
    }
}

void DataHelperProxyAuto::GetConstraints(ConstraintMap& constraints) const {
    ConstraintMap own;
    m_helper->GetConstraints(own);
    const std::map<std::string, std::string> automaticValues = {
        {IFormatCodec::TAG_BITRATE_MODE, IFormatCodec::TAG_BITRATE_MODE_CBR_AUTO},
        {StreamCodecPattern(IPreset::STREAM_TYPE_AUDIO, IPreset::KEY_FILTER_AUDIO_CODEC), IFormatCodec::CODEC_ID_AUTO},
    };
    const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
    for (const auto& [path, constraint] : own) {
        const auto automatic = automaticValues.find(path);
        constraints[path] =
            !constraint || automatic == automaticValues.end()
                ? constraint
                : Widened(*constraint, automatic->second, Property(std::string(), automatic->second), consumer);
    }
}

void DataHelperProxyAuto::ApplyPresetSettings(const Property& preset, Property& stream) const {
    m_helper->ApplyPresetSettings(preset, stream);
}

void DataHelperProxyAuto::CorrectFormatCodec(Property& tree) const {
    m_helper->CorrectFormatCodec(tree);
}

}  // namespace Norvex::Conf
