#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// AMR narrow band (3GPP TS 26.071): one rate, one channel, and the eight modes of the codec as bitrates.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long availableSampleRateList_amr[] = {8000};  // Hz

constexpr long long availableBitrateList_amr[] = {4750, 5150, 5900, 6700, 7400, 7950, 10200, 12200};  // bits per second

}  // namespace

DataHelperAudioCodecAmrNB::DataHelperAudioCodecAmrNB() : AudioCodecHelper(A::CODEC_ID_AMR_NB) {}

SP<IDataHelper> DataHelperAudioCodecAmrNB::Create() {
    return Keeping(new DataHelperAudioCodecAmrNB);
}

Core::Property DataHelperAudioCodecAmrNB::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_AMR_NB},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 12200},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecAmrNB::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isAmr = OneOf({A::CODEC_ID_AMR_NB});
    AddRule(rules, AudioCodecIdPath(), isAmr, SampleRatePath(), OneOf(availableSampleRateList_amr));
    AddRule(rules, AudioCodecIdPath(), isAmr, LayoutPath(), LayoutsOf({A::TAG_CH_LAYOUT_MONO}));
}

void DataHelperAudioCodecAmrNB::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_amr);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
}

}  // namespace Norvex::Conf
