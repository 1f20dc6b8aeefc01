#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Filters/FilterHelpers.h"
#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Lookup/Registry.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

// The tables are filled on the first request and not while the library is loaded: containers ask for the census of
// encoders, which the host fills.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;
using Table = IDataHelper::DataHelperMap;

// clang-format off
Table AudioCodecs() {
    return {
        {A::CODEC_ID_AUTO,       DataHelperAudioCodecEmpty::Create(A::CODEC_ID_AUTO)},
        {A::CODEC_ID_AAC,        DataHelperAudioCodecAac::Create()},
        {A::CODEC_ID_AC3,        DataHelperAudioCodecAc3::Create()},
        {A::CODEC_ID_DTS,        DataHelperAudioCodecDTS::Create()},
        {A::CODEC_ID_MP3,        DataHelperAudioCodecMp3::Create()},
        {A::CODEC_ID_FLAC,       DataHelperAudioCodecFlac::Create()},
        {A::CODEC_ID_ALAC,       DataHelperAudioCodecAlac::Create()},
        {A::CODEC_ID_AMR_NB,     DataHelperAudioCodecAmrNB::Create()},
        {A::CODEC_ID_WMAV2,      DataHelperAudioCodecWmav2::Create()},
        {A::CODEC_ID_MP2,        DataHelperAudioCodecMp2::Create()},
        {A::CODEC_ID_VORBIS,     DataHelperAudioCodecVorbis::Create()},
        {A::CODEC_ID_PCM_U16BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U16BE)},
        {A::CODEC_ID_PCM_U16LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U16LE)},
        {A::CODEC_ID_PCM_U24BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U24BE)},
        {A::CODEC_ID_PCM_U24LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U24LE)},
        {A::CODEC_ID_PCM_U8,     DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U8)},
        {A::CODEC_ID_PCM_U32BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U32BE)},
        {A::CODEC_ID_PCM_U32LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_U32LE)},
        {A::CODEC_ID_PCM_S16BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S16BE)},
        {A::CODEC_ID_PCM_S16LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S16LE)},
        {A::CODEC_ID_PCM_S24BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S24BE)},
        {A::CODEC_ID_PCM_S24LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S24LE)},
        {A::CODEC_ID_PCM_S8,     DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S8)},
        {A::CODEC_ID_PCM_S32BE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S32BE)},
        {A::CODEC_ID_PCM_S32LE,  DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S32LE)},
        {A::CODEC_ID_PCM_BLURAY, DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_BLURAY)},
    };
}

Table VideoCodecs() {
    return {
        {V::CODEC_ID_H264,        DataHelperVideoCodecX264::Create()},
        {V::CODEC_ID_H265,        DataHelperVideoCodecX265::Create()},
        {V::CODEC_ID_MPEG4,       DataHelperVideoCodecMpeg4::Create()},
        {V::CODEC_ID_MPEG1VIDEO,  DataHelperVideoCodecMpeg1::Create()},
        {V::CODEC_ID_MPEG2VIDEO,  DataHelperVideoCodecMpeg2::Create()},
        {V::CODEC_ID_THEORA,      DataHelperVideoCodecTheora::Create()},
        {V::CODEC_ID_VP8,         DataHelperVideoCodecVP8::Create()},
        {V::CODEC_ID_VP9,         DataHelperVideoCodecVP9::Create()},
        {V::CODEC_ID_AV1,         DataHelperVideoCodecAV1::Create()},
        {V::CODEC_ID_H263,        DataHelperVideoCodecH263::Create()},
        {V::CODEC_ID_FLV1,        DataHelperVideoCodecFlv1::Create()},
        {V::CODEC_ID_PRORES,      DataHelperVideoCodecProres::Create()},
        {V::CODEC_ID_QTRLE,       DataHelperVideoCodecRLE::Create()},
        {V::CODEC_ID_WMV2,        DataHelperVideoCodecWmv2::Create()},
        {V::CODEC_ID_DVVIDEO,     DataHelperVideoCodecDV::Create()},
        {V::CODEC_ID_UTVIDEO,     DataHelperVideoCodecUTVideo::Create()},
        {V::CODEC_ID_HAP,         DataHelperVideoCodecHAP::Create()},
        {V::CODEC_ID_MJPEG,       DataHelperVideoCodecMjpeg::Create()},
        {V::CODEC_ID_BMP,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_BMP)},
        {V::CODEC_ID_GIF,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_GIF)},
        {V::CODEC_ID_PNG,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PNG)},
        {V::CODEC_ID_APNG,        DataHelperVideoCodecImageBase::Create(V::CODEC_ID_APNG)},
        {V::CODEC_ID_TIFF,        DataHelperVideoCodecImageBase::Create(V::CODEC_ID_TIFF)},
        {V::CODEC_ID_DPX,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_DPX)},
        {V::CODEC_ID_JPEG2000,    DataHelperVideoCodecImageBase::Create(V::CODEC_ID_JPEG2000)},
        {V::CODEC_ID_PBM,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PBM)},
        {V::CODEC_ID_PCX,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PCX)},
        {V::CODEC_ID_PGM,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PGM)},
        {V::CODEC_ID_PPM,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PPM)},
        {V::CODEC_ID_TARGA,       DataHelperVideoCodecImageBase::Create(V::CODEC_ID_TARGA)},
        {V::CODEC_ID_XBM,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_XBM)},
        {V::CODEC_ID_JPEGLS,      DataHelperVideoCodecImageBase::Create(V::CODEC_ID_JPEGLS)},
        {V::CODEC_ID_PAM,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PAM)},
        {V::CODEC_ID_PGMYUV,      DataHelperVideoCodecImageBase::Create(V::CODEC_ID_PGMYUV)},
        {V::CODEC_ID_SGI,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_SGI)},
        {V::CODEC_ID_XWD,         DataHelperVideoCodecImageBase::Create(V::CODEC_ID_XWD)},
    };
}

Table Filters() {
    return {
        {Proc::IFilterResample::CLASS_ID,       DataHelperAudioResample::Create()},
        {Proc::IFilterAudioVolume::CLASS_ID,    DataHelperAudioVolume::Create()},
        {Proc::IFilterAudioFormatter::CLASS_ID, DataHelperAudioFormatter::Create()},
        {Proc::IFilterFrameRate::CLASS_ID,      DataHelperVideoResample::Create()},
        {Proc::IFilterResize::CLASS_ID,         DataHelperVideoResize::Create()},
    };
}

std::map<std::string, std::string> KindAliases() {
    return {
        {A::TAG_FORMAT_CODEC_AUDIO, IPreset::KEY_FILTER_AUDIO_CODEC},
        {V::TAG_FORMAT_CODEC_VIDEO, IPreset::KEY_FILTER_VIDEO_CODEC},
    };
}

// clang-format on

}  // namespace

// clang-format off
IDataHelper::DataHelperMap MakeFormatTable() {
    return {
        // id                                                             ipod   m4v
        {F::FORMAT_MP4,         DataHelperFormatMp4::Create(F::FORMAT_MP4,     false, false)},
        {F::FORMAT_M4V,         DataHelperFormatMp4::Create(F::FORMAT_M4V,     false, true)},
        {F::FORMAT_IPOD,        DataHelperFormatMp4::Create(F::FORMAT_IPOD,    true,  false)},
        {F::FORMAT_M4A,         DataHelperFormatM4a::Create(F::FORMAT_M4A)},
        {F::FORMAT_M4B,         DataHelperFormatM4a::Create(F::FORMAT_M4B)},
        {F::FORMAT_M4R,         DataHelperFormatM4a::Create(F::FORMAT_M4R)},
        {F::FORMAT_F4A,         DataHelperFormatM4a::Create(F::FORMAT_F4A)},
        {F::FORMAT_3GP,         DataHelperFormat3gp::Create(F::FORMAT_3GP)},
        {F::FORMAT_3G2,         DataHelperFormat3gp::Create(F::FORMAT_3G2)},
        {F::FORMAT_MOV,         DataHelperFormatMov::Create()},
        {F::FORMAT_MATROSKA,    DataHelperFormatMkv::Create()},
        {F::FORMAT_MKA,         DataHelperFormatMka::Create()},
        {F::FORMAT_MPEG,        DataHelperFormatMpeg1::Create(F::FORMAT_MPEG)},
        {F::FORMAT_MPEG1VIDEO,  DataHelperFormatMpeg1::Create(F::FORMAT_MPEG1VIDEO)},
        {F::FORMAT_VOB,         DataHelperFormatVOB::Create(F::FORMAT_VOB)},
        {F::FORMAT_MPEG2VIDEO,  DataHelperFormatVOB::Create(F::FORMAT_MPEG2VIDEO)},
        {F::FORMAT_MXF,         DataHelperFormatMxf::Create()},
        {F::FORMAT_AVI,         DataHelperFormatAvi::Create()},
        {F::FORMAT_DVD,         DataHelperFormatDVD::Create(F::FORMAT_DVD)},
        {F::FORMAT_VCD,         DataHelperFormatDVD::Create(F::FORMAT_VCD)},
        {F::FORMAT_SVCD,        DataHelperFormatDVD::Create(F::FORMAT_SVCD)},
        {F::FORMAT_FLV,         DataHelperFormatFlv::Create()},
        {F::FORMAT_MP3,         DataHelperFormatMp3::Create()},
        {F::FORMAT_AAC,         DataHelperFormatAAC::Create()},
        {F::FORMAT_AC3,         DataHelperFormatAC3::Create()},
        {F::FORMAT_AU,          DataHelperFormatAu::Create()},
        {F::FORMAT_OGG,         DataHelperFormatOgg::Create()},
        {F::FORMAT_FLAC,        DataHelperFormatFlac::Create()},
        {F::FORMAT_WAV,         DataHelperFormatWav::Create(F::FORMAT_WAV)},
        {F::FORMAT_AIFF,        DataHelperFormatWav::Create(F::FORMAT_AIFF)},
        {F::FORMAT_MPEGTS,      DataHelperFormatMpegTS::Create()},
        {F::FORMAT_MPEG2TS,     DataHelperFormatMpeg2TS::Create()},
        {F::FORMAT_WEBM,        DataHelperFormatWebm::Create()},
        {F::FORMAT_WMA,         DataHelperFormatWma::Create()},
        {F::FORMAT_WMV,         DataHelperFormatWmv::Create(F::FORMAT_WMV)},
        {F::FORMAT_ASF,         DataHelperFormatWmv::Create(F::FORMAT_ASF)},
        {F::FORMAT_SWF,         DataHelperFormatSwf::Create()},
        {F::FORMAT_OGV,         DataHelperFormatOgv::Create()},
        {F::FORMAT_GIF,         DataHelperFormatGif::Create()},
        {F::FORMAT_HEIC,        DataHelperFormatHeic::Create()},
        {F::FORMAT_HEIF,        DataHelperFormatHeif::Create()},
        {F::FORMAT_AVIF,        DataHelperFormatAvif::Create()},
        {F::FORMAT_SRT,         DataHelperFormatSrt::Create()},
        {F::FORMAT_QFX_1_0,     DataHelperFormatQFX::Create()},
        {F::FORMAT_SSA,         DataHelperFormatSubtitleText::Create(F::FORMAT_SSA, S::CODEC_ID_SSA)},
        {F::FORMAT_ASS,         DataHelperFormatSubtitleText::Create(F::FORMAT_ASS, S::CODEC_ID_ASS)},
        {F::FORMAT_JPEG,        DataHelperFormatImage::Create(F::FORMAT_JPEG, V::CODEC_ID_MJPEG)},
        {F::FORMAT_BMP,         DataHelperFormatImage::Create(F::FORMAT_BMP, V::CODEC_ID_BMP)},
        {F::FORMAT_PNG,         DataHelperFormatImage::Create(F::FORMAT_PNG, V::CODEC_ID_PNG)},
        {F::FORMAT_APNG,        DataHelperFormatImage::Create(F::FORMAT_APNG, V::CODEC_ID_APNG)},
        {F::FORMAT_TIFF,        DataHelperFormatImage::Create(F::FORMAT_TIFF, V::CODEC_ID_TIFF)},
        {F::FORMAT_DPX,         DataHelperFormatImage::Create(F::FORMAT_DPX, V::CODEC_ID_DPX)},
        {F::FORMAT_JPEG2000,    DataHelperFormatImage::Create(F::FORMAT_JPEG2000, V::CODEC_ID_JPEG2000)},
        {F::FORMAT_PBM,         DataHelperFormatImage::Create(F::FORMAT_PBM, V::CODEC_ID_PBM)},
        {F::FORMAT_PCX,         DataHelperFormatImage::Create(F::FORMAT_PCX, V::CODEC_ID_PCX)},
        {F::FORMAT_PGM,         DataHelperFormatImage::Create(F::FORMAT_PGM, V::CODEC_ID_PGM)},
        {F::FORMAT_PPM,         DataHelperFormatImage::Create(F::FORMAT_PPM, V::CODEC_ID_PPM)},
        {F::FORMAT_TARGA,       DataHelperFormatImage::Create(F::FORMAT_TARGA, V::CODEC_ID_TARGA)},
        {F::FORMAT_XBM,         DataHelperFormatImage::Create(F::FORMAT_XBM, V::CODEC_ID_XBM)},
        {F::FORMAT_JPEGLS,      DataHelperFormatImage::Create(F::FORMAT_JPEGLS, V::CODEC_ID_JPEGLS)},
        {F::FORMAT_PAM,         DataHelperFormatImage::Create(F::FORMAT_PAM, V::CODEC_ID_PAM)},
        {F::FORMAT_PGMYUV,      DataHelperFormatImage::Create(F::FORMAT_PGMYUV, V::CODEC_ID_PGMYUV)},
        {F::FORMAT_SGI,         DataHelperFormatImage::Create(F::FORMAT_SGI, V::CODEC_ID_SGI)},
        {F::FORMAT_XWD,         DataHelperFormatImage::Create(F::FORMAT_XWD, V::CODEC_ID_XWD)},
    };
}
// clang-format on

namespace {

/// Rows of the host's own stand in the place of ours.
void Put(Table& table, const std::string& key, SP<const IDataHelper> helper) {
    table.erase(key);
    table.emplace(key, std::move(helper));
}

Catalogue BuildCatalogue() {
    TableBuild build(Tables::Codecs);
    Catalogue catalogue = {AudioCodecs(), VideoCodecs(), Filters(), KindAliases()};
    build.MakeRegistered([&catalogue](const Registration& registration, SP<const IDataHelper> helper) {
        if (registration.kind == IPreset::KEY_FILTER_AUDIO_CODEC) {
            Put(catalogue.audioCodecs, registration.id, std::move(helper));
        } else if (registration.kind == IPreset::KEY_FILTER_VIDEO_CODEC) {
            Put(catalogue.videoCodecs, registration.id, std::move(helper));
        } else {
            Put(catalogue.filters, registration.kind, std::move(helper));
        }
    });
    build.Finish();
    return catalogue;
}

Table BuildFormatTable() {
    TableBuild build(Tables::Formats);
    if (HasRegistered(Tables::Codecs)) GetCatalogue();
    Table formats = MakeFormatTable();
    build.MakeRegistered([&formats](const Registration& registration, SP<const IDataHelper> helper) {
        Put(formats, registration.id, std::move(helper));
    });
    build.Finish();
    return formats;
}

}  // namespace

const Catalogue& GetCatalogue() {
    RequireNotWithinBuild(Tables::Codecs);
    static const Catalogue& catalogue = Lasting(BuildCatalogue());
    return catalogue;
}

const IDataHelper::DataHelperMap& GetFormatTable() {
    RequireNotWithinBuild(Tables::Formats);
    static const Table& formats = Lasting(BuildFormatTable());
    return formats;
}

}  // namespace Norvex::Conf
