#include "norvex/interfaces/Conf/CodecLists.h"

#include <algorithm>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

bool Contains(const std::vector<std::string>& ids, const std::string& id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

}  // namespace

const std::vector<std::string>& GetAllVideoCodecs() {
    using C = IFormatCodecVideo;
    static const std::vector<std::string>& ids = Lasting(std::vector<std::string>{
        C::CODEC_ID_APNG,       C::CODEC_ID_AV1,      C::CODEC_ID_BMP,    C::CODEC_ID_DPX,    C::CODEC_ID_DVVIDEO,
        C::CODEC_ID_FLV1,       C::CODEC_ID_GIF,      C::CODEC_ID_H263,   C::CODEC_ID_H264,   C::CODEC_ID_H265,
        C::CODEC_ID_HAP,        C::CODEC_ID_JPEG2000, C::CODEC_ID_JPEGLS, C::CODEC_ID_MJPEG,  C::CODEC_ID_MPEG1VIDEO,
        C::CODEC_ID_MPEG2VIDEO, C::CODEC_ID_MPEG4,    C::CODEC_ID_PAM,    C::CODEC_ID_PBM,    C::CODEC_ID_PCX,
        C::CODEC_ID_PGM,        C::CODEC_ID_PGMYUV,   C::CODEC_ID_PNG,    C::CODEC_ID_PPM,    C::CODEC_ID_PRORES,
        C::CODEC_ID_QTRLE,      C::CODEC_ID_SGI,      C::CODEC_ID_TARGA,  C::CODEC_ID_THEORA, C::CODEC_ID_TIFF,
        C::CODEC_ID_UTVIDEO,    C::CODEC_ID_VC1,      C::CODEC_ID_VP8,    C::CODEC_ID_VP9,    C::CODEC_ID_WMV2,
        C::CODEC_ID_WMV3,       C::CODEC_ID_XBM,      C::CODEC_ID_XWD,
    });
    return ids;
}

const std::vector<std::string>& GetAllAudioCodecs() {
    using C = IFormatCodecAudio;
    static const std::vector<std::string>& ids = Lasting(std::vector<std::string>{
        C::CODEC_ID_AAC,       C::CODEC_ID_AC3,        C::CODEC_ID_ALAC,      C::CODEC_ID_AMR_NB,
        C::CODEC_ID_DTS,       C::CODEC_ID_EAC3,       C::CODEC_ID_FLAC,      C::CODEC_ID_MP2,
        C::CODEC_ID_MP3,       C::CODEC_ID_PCM_BLURAY, C::CODEC_ID_PCM_S16BE, C::CODEC_ID_PCM_S16LE,
        C::CODEC_ID_PCM_S24BE, C::CODEC_ID_PCM_S24LE,  C::CODEC_ID_PCM_S32BE, C::CODEC_ID_PCM_S32LE,
        C::CODEC_ID_PCM_S8,    C::CODEC_ID_PCM_U16BE,  C::CODEC_ID_PCM_U16LE, C::CODEC_ID_PCM_U24BE,
        C::CODEC_ID_PCM_U24LE, C::CODEC_ID_PCM_U32BE,  C::CODEC_ID_PCM_U32LE, C::CODEC_ID_PCM_U8,
        C::CODEC_ID_TRUEHD,    C::CODEC_ID_VORBIS,     C::CODEC_ID_WMAV2,
    });
    return ids;
}

const std::vector<std::string>& GetAllSubtitleCodecs() {
    using C = IFormatCodecSubtitle;
    static const std::vector<std::string>& ids = Lasting(std::vector<std::string>{
        C::CODEC_ID_ASS,
        C::CODEC_ID_DVB_SUBTITLE,
        C::CODEC_ID_DVB_TELETEXT,
        C::CODEC_ID_DVD_SUBTITLE,
        C::CODEC_ID_HDMV_PGS_SUBTITLE,
        C::CODEC_ID_HDMV_TEXT_SUBTITLE,
        C::CODEC_ID_MOV_TEXT,
        C::CODEC_ID_SRT,
        C::CODEC_ID_SSA,
        C::CODEC_ID_SUBRIP,
        C::CODEC_ID_TEXT,
        C::CODEC_ID_XSUB,
    });
    return ids;
}

bool IsVideoCodec(const std::string& id) {
    return Contains(GetAllVideoCodecs(), id);
}

bool IsAudioCodec(const std::string& id) {
    return Contains(GetAllAudioCodecs(), id);
}

}  // namespace Norvex::Conf
