#include "norvex/Conf/DataHelpers/Constraints/ConstraintMethod.h"
#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/CodecLists.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// The format of projects: it carries every codec.

namespace Norvex::Conf {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

DataHelperFormatQFX::DataHelperFormatQFX() {
    SetVideoCodecs(GetAllVideoCodecs(), V::CODEC_ID_H264);
    SetAudioCodecs(GetAllAudioCodecs(), A::CODEC_ID_AAC);
    SetSubtitleTextCodecs(GetAllSubtitleCodecs(), S::CODEC_ID_ASS);
}

SP<IDataHelper> DataHelperFormatQFX::Create() {
    return Keeping(new DataHelperFormatQFX);
}

Core::Property DataHelperFormatQFX::GetDefaults() const {
    return FormatTree(F::FORMAT_QFX_1_0, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 64, /*audio*/ 64, /*subtitle*/ 64, /*other*/ 64},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

void DataHelperFormatQFX::GetConstraints(ConstraintMap& constraints) const {
    constraints[F::TAG_DISABLE_FOR_LOSSLESS] = ConstraintMethod::CreateAlwaysTrue(std::string());
    FormatHelper::GetConstraints(constraints);
}

}  // namespace Norvex::Conf
