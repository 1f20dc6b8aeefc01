#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// QuickTime. It refuses what FFmpeg would write and players of the format do not know.

namespace Norvex::Conf {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

DataHelperFormatMov::DataHelperFormatMov() {
    const std::vector<std::string> video = {
        V::CODEC_ID_H264, V::CODEC_ID_H265,   V::CODEC_ID_MPEG4, V::CODEC_ID_MJPEG,
        V::CODEC_ID_HAP,  V::CODEC_ID_PRORES, V::CODEC_ID_QTRLE,
    };
    const std::vector<std::string> neverVideo = {V::CODEC_ID_AV1, V::CODEC_ID_VP8, V::CODEC_ID_VP9};
    const std::vector<std::string> audio = {A::CODEC_ID_AAC, A::CODEC_ID_ALAC, A::CODEC_ID_MP3};
    FormatValidator& validator = FormatValidator::Instance();
    SetVideoCodecs(validator.GetSupportedVideoCodecs(F::FORMAT_MOV, video, neverVideo), V::CODEC_ID_H264);
    SetAudioCodecs(validator.GetSupportedAudioCodecs(F::FORMAT_MOV, audio, {A::CODEC_ID_FLAC}), A::CODEC_ID_AAC);
    SetSubtitleTextCodecs(validator.GetSupportedSubtitleCodecs(F::FORMAT_MOV, {S::CODEC_ID_MOV_TEXT}, {}),
                          S::CODEC_ID_MOV_TEXT);
}

SP<IDataHelper> DataHelperFormatMov::Create() {
    return Keeping(new DataHelperFormatMov);
}

Core::Property DataHelperFormatMov::GetDefaults() const {
    return FormatTree(F::FORMAT_MOV, {{F::TAG_PROGRESSIVE_READ, false}, {IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

}  // namespace Norvex::Conf
