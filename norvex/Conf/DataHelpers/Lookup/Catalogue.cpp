#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Filters/FilterHelpers.h"
#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

// The tables are function-local statics and no globals: the constants that they are keyed by come from other sources,
// which may be initialised later than this one.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
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
        {V::CODEC_ID_H264, DataHelperVideoCodecX264::Create()},
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

Table Formats() {
    return {
        // id                                             ipod   m4v
        {F::FORMAT_MP4,  DataHelperFormatMp4::Create(F::FORMAT_MP4,  false, false)},
        {F::FORMAT_M4V,  DataHelperFormatMp4::Create(F::FORMAT_M4V,  false, true)},
        {F::FORMAT_IPOD, DataHelperFormatMp4::Create(F::FORMAT_IPOD, true,  false)},
        {F::FORMAT_M4A,  DataHelperFormatM4a::Create(F::FORMAT_M4A)},
        {F::FORMAT_M4B,  DataHelperFormatM4a::Create(F::FORMAT_M4B)},
        {F::FORMAT_M4R,  DataHelperFormatM4a::Create(F::FORMAT_M4R)},
        {F::FORMAT_F4A,  DataHelperFormatM4a::Create(F::FORMAT_F4A)},
        {F::FORMAT_3GP,  DataHelperFormat3gp::Create(F::FORMAT_3GP)},
        {F::FORMAT_3G2,  DataHelperFormat3gp::Create(F::FORMAT_3G2)},
    };
}
// clang-format on

}  // namespace

const Catalogue& GetCatalogue() {
    static const Catalogue catalogue = {AudioCodecs(), VideoCodecs(), Filters(), KindAliases()};
    return catalogue;
}

const IDataHelper::DataHelperMap& GetFormatTable() {
    static const Table formats = Formats();
    return formats;
}

}  // namespace Norvex::Conf
