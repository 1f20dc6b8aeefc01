#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Proc/IFilterResample.h"

// The automatic codec id: there is no encoder to ask.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long keepSampleRate = -1;

}  // namespace

DataHelperAudioCodecEmpty::DataHelperAudioCodecEmpty(const std::string& codecId) : m_emptyCodecId(codecId) {}

SP<IDataHelper> DataHelperAudioCodecEmpty::Create(const std::string& codecId) {
    return Keeping(new DataHelperAudioCodecEmpty(codecId));
}

Core::Property DataHelperAudioCodecEmpty::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, m_emptyCodecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR_AUTO},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecEmpty::GetRequiredObjects(ObjectList& objects) const {
    objects.emplace_back(Proc::IFilterResample::CLASS_ID, std::string());
}

void DataHelperAudioCodecEmpty::GetValidationRules(RuleList& rules) const {
    const SP<IPropertyConstraint> isThisCodec = OneOf({m_emptyCodecId});
    AddRule(rules, AudioCodecIdPath(), isThisCodec, SampleRatePath(), OneOf({keepSampleRate}));
    // A plain set: the value is a mark and no layout.
    AddRule(rules, AudioCodecIdPath(), isThisCodec, LayoutPath(), OneOf({A::TAG_CH_LAYOUT_UNKNOWN}));
}

void DataHelperAudioCodecEmpty::GetConstraints(ConstraintMap& constraints) const {
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR_AUTO});
}

}  // namespace Norvex::Conf
