#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

// PCM. The bitrate is a result, and exact: sample rate by channels by bits. The lists are the book's own choice.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long availableSampleRateList_pcm[] = {6000, 8000, 11025, 16000, 22050, 32000, 44100, 48000};  // Hz

constexpr Name channelLayouts_pcm[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,       A::TAG_CH_LAYOUT_2POINT1,      A::TAG_CH_LAYOUT_5POINT0,
    A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_5POINT0_BACK, A::TAG_CH_LAYOUT_5POINT1_BACK,
};

}  // namespace

DataHelperAudioCodecPCM::DataHelperAudioCodecPCM(const std::string& codecId)
    : AudioCodecHelper(codecId), m_pcmCodecId(codecId) {}

SP<IDataHelper> DataHelperAudioCodecPCM::Create(const std::string& codecId) {
    return Keeping(new DataHelperAudioCodecPCM(codecId));
}

int DataHelperAudioCodecPCM::GetStoredBitsPerSample(const std::string& codecId) {
    return av_get_exact_bits_per_sample(CodecIDFromTextID(codecId));
}

Core::Property DataHelperAudioCodecPCM::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, m_pcmCodecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecPCM::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isThisCodec = OneOf({m_pcmCodecId});
    AddRule(rules, AudioCodecIdPath(), isThisCodec, LayoutPath(), LayoutsOf(channelLayouts_pcm));
    AddRule(rules, AudioCodecIdPath(), isThisCodec, SampleRatePath(), OneOf(availableSampleRateList_pcm));
}

void DataHelperAudioCodecPCM::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    stream.SetChildT(A::TAG_CODEC_ID, m_pcmCodecId);
    ApplyPresetEncodeOptions(preset, stream);
}

void DataHelperAudioCodecPCM::CorrectFormatCodec(Core::Property& tree) const {
    CorrectAudioResamplerSettings(tree);
    const AudioFormat sound = AudioFormatOf(tree);
    tree.SetChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR);
    tree.SetChildT(A::TAG_BITRATE, sound.sampleRate * sound.channels * sound.bitsPerSample);
}

}  // namespace Norvex::Conf
