#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// FLV1 (Sorenson H.263). The plainest: no filters that it needs, no quality to start from.

namespace Norvex::Conf {

using V = IFormatCodecVideo;

DataHelperVideoCodecFlv1::DataHelperVideoCodecFlv1()
    : RefCounted<DataHelperCodecFFMPEG>(V::CODEC_ID_FLV1, MediaType::Video) {}

SP<IDataHelper> DataHelperVideoCodecFlv1::Create() {
    return Keeping(new DataHelperVideoCodecFlv1);
}

Core::Property DataHelperVideoCodecFlv1::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, m_codecId},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperVideoCodecFlv1::GetConstraints(ConstraintMap& constraints) const {
    DataHelperCodecFFMPEG::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

}  // namespace Norvex::Conf
