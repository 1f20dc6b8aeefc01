#include "norvex/Conf/DataHelpers/Modern/ModernSet.h"

#include "norvex/Conf/DataHelpers/Lookup/Registry.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"

// The rows of the second set.

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;
using F = IFormatFile;
using MA = ModernAudio;
using MF = ModernFormats;
using MV = ModernVideo;
using V = IFormatCodecVideo;
using Rows = std::vector<Registration>;

/// A function that makes the helper of these arguments, which it keeps.
template <class Helper, class... Arguments>
DataHelperMaker Make(const Arguments&... arguments) {
    return [arguments...] { return Keeping(new Helper(arguments...)); };
}

// clang-format off
void AddAudioCodecs(Rows& rows) {
    using Pcm = DataHelperAudioCodecStoredPCM;
    const auto add = [&rows](const std::string& id, DataHelperMaker make) {
        rows.push_back({IPreset::KEY_FILTER_AUDIO_CODEC, id, std::move(make)});
    };
    add(MA::CODEC_ID_OPUS,      DataHelperAudioCodecOpus::Create);
    add(A::CODEC_ID_EAC3,       DataHelperAudioCodecEac3::Create);
    add(A::CODEC_ID_DTS,        DataHelperAudioCodecDca::Create);
    add(A::CODEC_ID_TRUEHD,     DataHelperAudioCodecTrueHD::Create);
    add(MA::CODEC_ID_WAVPACK,   DataHelperAudioCodecWavPack::Create);
    add(MA::CODEC_ID_PCM_ALAW,  Make<Pcm>(MA::CODEC_ID_PCM_ALAW,  Pcm::Kind::G711));
    add(MA::CODEC_ID_PCM_MULAW, Make<Pcm>(MA::CODEC_ID_PCM_MULAW, Pcm::Kind::G711));
    add(MA::CODEC_ID_PCM_F32BE, Make<Pcm>(MA::CODEC_ID_PCM_F32BE, Pcm::Kind::Float));
    add(MA::CODEC_ID_PCM_F32LE, Make<Pcm>(MA::CODEC_ID_PCM_F32LE, Pcm::Kind::Float));
    add(MA::CODEC_ID_PCM_F64BE, Make<Pcm>(MA::CODEC_ID_PCM_F64BE, Pcm::Kind::Float));
    add(MA::CODEC_ID_PCM_F64LE, Make<Pcm>(MA::CODEC_ID_PCM_F64LE, Pcm::Kind::Float));
}

void AddVideoCodecs(Rows& rows) {
    const auto add = [&rows](const std::string& id, DataHelperMaker make) {
        rows.push_back({IPreset::KEY_FILTER_VIDEO_CODEC, id, std::move(make)});
    };
    add(MV::CODEC_ID_FFV1,    DataHelperVideoCodecFfv1::Create);
    add(MV::CODEC_ID_DNXHD,   DataHelperVideoCodecDnxhd::Create);
    add(MV::CODEC_ID_CFHD,    DataHelperVideoCodecCineForm::Create);
    add(MV::CODEC_ID_HUFFYUV, Make<DataHelperVideoCodecHuffYuv>(MV::CODEC_ID_HUFFYUV));
    add(MV::CODEC_ID_FFVHUFF, Make<DataHelperVideoCodecHuffYuv>(MV::CODEC_ID_FFVHUFF));
    add(MV::CODEC_ID_DIRAC,   DataHelperVideoCodecVc2::Create);
    add(MV::CODEC_ID_WEBP,    DataHelperVideoCodecWebp::Create);
    add(MV::CODEC_ID_JPEGXL,  DataHelperVideoCodecJpegXl::Create);
    add(MV::CODEC_ID_EXR,     DataHelperVideoCodecOpenExr::Create);
    add(MV::CODEC_ID_QOI,     DataHelperVideoCodecQoi::Create);
}

/// New containers; and AIFF, which the classic book lets offer what WAV carries.
void AddFormats(Rows& rows) {
    const DataHelperFormatSound::Row sounds[] = {
        // id                  FFmpeg is asked by   carried in any case                      never                global header
        {MF::FORMAT_OPUS,      {},                  {MA::CODEC_ID_OPUS},                     {},                         false},
        {MF::FORMAT_WAVPACK,   {},                  {MA::CODEC_ID_WAVPACK},                  {},                         false},
        {MF::FORMAT_EAC3,      {},                  {A::CODEC_ID_EAC3},                      {},                         false},
        {MF::FORMAT_TRUEHD,    {},                  {A::CODEC_ID_TRUEHD},                    {},                         false},
        {MF::FORMAT_DTS,       {},                  {A::CODEC_ID_DTS},                       {},                         false},
        {MF::FORMAT_CAF,       MF::FORMAT_CAF,      {A::CODEC_ID_PCM_S16BE, A::CODEC_ID_ALAC}, {A::CODEC_ID_AAC, MA::CODEC_ID_OPUS, A::CODEC_ID_FLAC}, true},
        {MF::FORMAT_W64,       MF::FORMAT_W64,      {A::CODEC_ID_PCM_S16LE},                 {A::CODEC_ID_AAC},          false},
        {F::FORMAT_AIFF,       F::FORMAT_AIFF,      {A::CODEC_ID_PCM_S16BE},                 {},                         false},
    };
    for (const auto& row : sounds) rows.push_back({IPreset::KEY_FORMAT, row.id, Make<DataHelperFormatSound>(row)});

    const std::pair<std::string, std::string> pictures[] = {
        {MF::FORMAT_WEBP,      MV::CODEC_ID_WEBP},
        {MF::FORMAT_WEBP_ANIM, MV::CODEC_ID_WEBP},
        {MF::FORMAT_JPEGXL,    MV::CODEC_ID_JPEGXL},
        {MF::FORMAT_EXR,       MV::CODEC_ID_EXR},
        {MF::FORMAT_QOI,       MV::CODEC_ID_QOI},
    };
    for (const auto& [id, codec] : pictures) {
        rows.push_back({IPreset::KEY_FORMAT, id, Make<DataHelperFormatPicture>(id, codec)});
    }
}

/// Classic containers that carry more in today's practice than their fixed lists have. Those that ask FFmpeg carry what is
/// new by themselves; of them stand here QuickTime, which FFmpeg writes CineForm into without saying so, and Opus only
/// with saying so, and FLV, in which G.711 has one rate, 8000 Hz, that the container's rule does not have.
void AddExtendedFormats(Rows& rows) {
    const DataHelperFormatExtended::Row formats[] = {
        // id               classic helper                   more pictures         more sound                             never
        {F::FORMAT_OGG,     DataHelperFormatOgg::Create,     {},                   {MA::CODEC_ID_OPUS, A::CODEC_ID_FLAC}, {}},
        {F::FORMAT_OGV,     DataHelperFormatOgv::Create,     {},                   {MA::CODEC_ID_OPUS},                   {}},
        {F::FORMAT_MPEGTS,  DataHelperFormatMpegTS::Create,  {},                   {MA::CODEC_ID_OPUS, A::CODEC_ID_EAC3}, {}},
        {F::FORMAT_MPEG2TS, DataHelperFormatMpeg2TS::Create, {},                   {A::CODEC_ID_DTS},                     {}},
        {F::FORMAT_MOV,     DataHelperFormatMov::Create,     {MV::CODEC_ID_CFHD},  {},                                    {MA::CODEC_ID_OPUS}},
        {F::FORMAT_FLV,     DataHelperFormatFlv::Create,     {},                   {},                                    {MA::CODEC_ID_PCM_ALAW, MA::CODEC_ID_PCM_MULAW}},
        {F::FORMAT_MXF,     DataHelperFormatMxf::Create,     {MV::CODEC_ID_DNXHD}, {A::CODEC_ID_PCM_S24LE},               {}},
    };
    for (const auto& row : formats) rows.push_back({IPreset::KEY_FORMAT, row.id, Make<DataHelperFormatExtended>(row)});
}
// clang-format on

}  // namespace

void RegisterModernHelpers() {
    Rows rows;
    AddAudioCodecs(rows);
    AddVideoCodecs(rows);
    AddFormats(rows);
    AddExtendedFormats(rows);
    RegisterWhatIsMissing(std::move(rows));
}
