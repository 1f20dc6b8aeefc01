#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintMethod.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// DTS. Left open on purpose: no rules, not even the encoder's.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

}  // namespace

DataHelperAudioCodecDTS::DataHelperAudioCodecDTS() : AudioCodecHelper(A::CODEC_ID_DTS) {}

SP<IDataHelper> DataHelperAudioCodecDTS::Create() {
    return Keeping(new DataHelperAudioCodecDTS);
}

Core::Property DataHelperAudioCodecDTS::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_DTS},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecDTS::GetValidationRules(RuleList& /*rules*/) const {}

void DataHelperAudioCodecDTS::GetConstraints(ConstraintMap& constraints) const {
    // Without a constraint correction would replace the value by the default.
    constraints[A::TAG_BITRATE] = ConstraintMethod::CreateAlwaysTrue(std::string());
    constraints[A::TAG_BITRATE_MODE] = ConstraintMethod::CreateAlwaysTrue(std::string());
}

}  // namespace Norvex::Conf
