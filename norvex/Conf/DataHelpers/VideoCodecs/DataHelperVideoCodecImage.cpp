#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// The still picture codecs, and Motion JPEG, which differs from them in its default mode.

namespace Norvex::Conf {

using V = IFormatCodecVideo;

DataHelperVideoCodecImageBase::DataHelperVideoCodecImageBase(const std::string& codecId) : VideoCodecHelper(codecId) {}

SP<IDataHelper> DataHelperVideoCodecImageBase::Create(const std::string& codecId) {
    return Keeping(new DataHelperVideoCodecImageBase(codecId));
}

Core::Property DataHelperVideoCodecImageBase::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, m_codecId},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_QUALITY, 1},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperVideoCodecImageBase::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecMjpeg::DataHelperVideoCodecMjpeg() : DataHelperVideoCodecImageBase(V::CODEC_ID_MJPEG) {}

SP<IDataHelper> DataHelperVideoCodecMjpeg::Create() {
    return Keeping(new DataHelperVideoCodecMjpeg);
}

Core::Property DataHelperVideoCodecMjpeg::GetDefaults() const {
    Core::Property defaults = DataHelperVideoCodecImageBase::GetDefaults();
    defaults.SetChildT(V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_VBR);
    return defaults;
}

}  // namespace Norvex::Conf
