#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// The sound codecs whose bitrate is a result: TrueHD and WavPack, which shrink PCM as FLAC does, and the kinds of PCM
// that the classic book leaves out.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using MA = ModernAudio;

/// Hz: those of the DVD and the Blu-ray disc, of which TrueHD is the lossless sound.
constexpr long long sampleRates_truehd[] = {44100, 48000, 88200, 96000, 176400, 192000};

/// Those of FFmpeg's encoder (libavcodec/mlpenc.c).
constexpr Name channelLayouts_truehd[] = {
    A::TAG_CH_LAYOUT_STEREO,
    A::TAG_CH_LAYOUT_5POINT0_BACK,
    A::TAG_CH_LAYOUT_5POINT1_BACK,
};

/// Hz: those that a WavPack block's flags number (WavPack 4 & 5 binary file format, 2.0).
constexpr long long sampleRates_wavpack[] = {
    6000, 8000, 9600, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000, 64000, 88200, 96000, 192000,
};

/// Hz: ITU-T G.711 has 8000 alone, and files carry the others.
constexpr long long sampleRates_g711[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};

/// Hz: those of sound cards and of audio editors.
constexpr long long sampleRates_float[] = {
    8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000, 88200, 96000, 176400, 192000,
};

/// What a mask of WAVEFORMATEXTENSIBLE tells, up to eight channels.
constexpr Name channelLayouts_any[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,       A::TAG_CH_LAYOUT_2POINT1, A::TAG_CH_LAYOUT_SURROUND,
    A::TAG_CH_LAYOUT_QUAD,    A::TAG_CH_LAYOUT_4POINT0,      A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT0_BACK,
    A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_5POINT1_BACK, A::TAG_CH_LAYOUT_6POINT1, A::TAG_CH_LAYOUT_7POINT1,
};

/// The lists of a codec, where its encoder has not spoken.
template <std::size_t R, std::size_t L>
void AddLists(RuleList& rules, const std::string& codecId, const long long (&rates)[R], const Name (&layouts)[L]) {
    const SP<IPropertyConstraint> isThisCodec = OneOf({codecId});
    if (!Speaks(rules, SampleRatePath())) {
        AddRule(rules, AudioCodecIdPath(), isThisCodec, SampleRatePath(), OneOf(rates));
    }
    if (!Speaks(rules, LayoutPath())) {
        AddRule(rules, AudioCodecIdPath(), isThisCodec, LayoutPath(), LayoutsOf(layouts));
    }
}

}  // namespace

DataHelperAudioCodecTrueHD::DataHelperAudioCodecTrueHD() : LosslessAudioCodecHelper(A::CODEC_ID_TRUEHD) {}

void DataHelperAudioCodecTrueHD::GetValidationRules(RuleList& rules) const {
    LosslessAudioCodecHelper::GetValidationRules(rules);
    AddLists(rules, m_codecId, sampleRates_truehd, channelLayouts_truehd);
}

DataHelperAudioCodecWavPack::DataHelperAudioCodecWavPack() : LosslessAudioCodecHelper(MA::CODEC_ID_WAVPACK) {}

void DataHelperAudioCodecWavPack::GetValidationRules(RuleList& rules) const {
    LosslessAudioCodecHelper::GetValidationRules(rules);
    AddLists(rules, m_codecId, sampleRates_wavpack, channelLayouts_any);
}

DataHelperAudioCodecStoredPCM::DataHelperAudioCodecStoredPCM(const std::string& codecId, Kind kind)
    : AudioCodecHelper(codecId), m_kind(kind) {}

Core::Property DataHelperAudioCodecStoredPCM::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, m_codecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecStoredPCM::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    if (m_kind == Kind::G711) {
        AddLists(rules, m_codecId, sampleRates_g711, {A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO});
    } else {
        AddLists(rules, m_codecId, sampleRates_float, channelLayouts_any);
    }
}

void DataHelperAudioCodecStoredPCM::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    stream.SetChildT(A::TAG_CODEC_ID, m_codecId);
    ApplyPresetEncodeOptions(preset, stream);
}

void DataHelperAudioCodecStoredPCM::CorrectFormatCodec(Core::Property& tree) const {
    CorrectAudioResamplerSettings(tree);
    const long long bits = DataHelperAudioCodecPCM::GetStoredBitsPerSample(m_codecId);
    tree.SetChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR);
    tree.SetChildT(A::TAG_BITRATE, tree[A::TAG_SAMPLE_RATE].GetInt64() * ChannelsOf(tree) * bits);
}

}  // namespace Norvex::Conf
