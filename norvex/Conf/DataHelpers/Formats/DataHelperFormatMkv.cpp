#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// The containers of the Matroska kind (RFC 9559). They all ask FFmpeg; for sound alone it is asked by the name of
// Matroska itself.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

std::vector<std::string> MatroskaAudioCodecs() {
    return FormatValidator::Instance().GetSupportedAudioCodecs(
        F::FORMAT_MATROSKA,
        {A::CODEC_ID_AAC, A::CODEC_ID_AC3, A::CODEC_ID_DTS, A::CODEC_ID_MP3, A::CODEC_ID_ALAC, A::CODEC_ID_VORBIS}, {});
}

}  // namespace

DataHelperFormatMkv::DataHelperFormatMkv() {
    FormatValidator& validator = FormatValidator::Instance();
    SetVideoCodecs(
        validator.GetSupportedVideoCodecs(
            F::FORMAT_MATROSKA,
            {V::CODEC_ID_H264, V::CODEC_ID_H265, V::CODEC_ID_MJPEG, V::CODEC_ID_MPEG2VIDEO, V::CODEC_ID_MPEG4,
             V::CODEC_ID_THEORA, V::CODEC_ID_VP9, V::CODEC_ID_DVVIDEO, V::CODEC_ID_AV1, V::CODEC_ID_HAP},
            {}),
        V::CODEC_ID_H264);
    SetAudioCodecs(MatroskaAudioCodecs(), A::CODEC_ID_AAC);
    SetSubtitleTextCodecs(
        validator.GetSupportedSubtitleCodecs(
            F::FORMAT_MATROSKA,
            {S::CODEC_ID_DVB_SUBTITLE, S::CODEC_ID_DVD_SUBTITLE, S::CODEC_ID_HDMV_PGS_SUBTITLE,
             S::CODEC_ID_HDMV_TEXT_SUBTITLE, S::CODEC_ID_SUBRIP, S::CODEC_ID_TEXT, S::CODEC_ID_ASS, S::CODEC_ID_SSA},
            {}),
        S::CODEC_ID_DVB_SUBTITLE);
}

SP<IDataHelper> DataHelperFormatMkv::Create() {
    return Keeping(new DataHelperFormatMkv);
}

Core::Property DataHelperFormatMkv::GetDefaults() const {
    return FormatTree(F::FORMAT_MATROSKA, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 2, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

DataHelperFormatMka::DataHelperFormatMka() {
    SetAudioCodecs(MatroskaAudioCodecs(), A::CODEC_ID_AAC);
}

SP<IDataHelper> DataHelperFormatMka::Create() {
    return Keeping(new DataHelperFormatMka);
}

Core::Property DataHelperFormatMka::GetDefaults() const {
    return FormatTree(F::FORMAT_MKA, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 0, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Audio});
}

DataHelperFormatWebm::DataHelperFormatWebm() {
    FormatValidator& validator = FormatValidator::Instance();
    SetVideoCodecs(
        validator.GetSupportedVideoCodecs(F::FORMAT_WEBM, {V::CODEC_ID_VP8, V::CODEC_ID_VP9, V::CODEC_ID_AV1}, {}),
        V::CODEC_ID_VP8);
    SetAudioCodecs(validator.GetSupportedAudioCodecs(F::FORMAT_WEBM, {A::CODEC_ID_VORBIS}, {}), A::CODEC_ID_VORBIS);
}

SP<IDataHelper> DataHelperFormatWebm::Create() {
    return Keeping(new DataHelperFormatWebm);
}

Core::Property DataHelperFormatWebm::GetDefaults() const {
    return FormatTree(F::FORMAT_WEBM, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

}  // namespace Norvex::Conf
