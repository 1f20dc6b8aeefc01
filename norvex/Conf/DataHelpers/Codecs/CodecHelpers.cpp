#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"

#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Conf {

AudioCodecHelper::AudioCodecHelper(const std::string& codecId)
    : RefCounted<DataHelperCodecFFMPEG>(codecId, MediaType::Audio) {}

void AudioCodecHelper::GetRequiredObjects(ObjectList& objects) const {
    objects.emplace_back(Proc::IFilterResample::CLASS_ID, std::string());
}

VideoCodecHelper::VideoCodecHelper(const std::string& codecId)
    : RefCounted<DataHelperCodecFFMPEG>(codecId, MediaType::Video) {}

void VideoCodecHelper::GetRequiredObjects(ObjectList& objects) const {
    objects.emplace_back(Proc::IFilterResize::CLASS_ID, std::string());
    objects.emplace_back(Proc::IFilterFrameRate::CLASS_ID, std::string());
}

void AnyFrameRateVideoCodecHelper::GetValidationRules(RuleList& /*rules*/) const {}

}  // namespace Norvex::Conf
