#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/AudioCodecs/VorbisCombinations.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// Vorbis. What libvorbis encodes depends on three values at once, while a rule ties two: the rules are coarser than the
// table of combinations and do not agree with it everywhere. A stream that was corrected is in the table.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// The book's own choice.
constexpr Name channelLayouts_vorbis[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,  A::TAG_CH_LAYOUT_2_1,     A::TAG_CH_LAYOUT_2_2,
    A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_7POINT1,
};

// clang-format off
/// What validation wants of a bitrate at a sample rate, whatever the channels: the book's own choice.
constexpr long long bitrates_8000[]  = {16000, 24000, 32000, 48000};
constexpr long long bitrates_11025[] = {16000, 24000, 32000, 48000, 96000};
constexpr long long bitrates_16000[] = {24000, 32000, 48000, 64000, 96000, 128000, 160000, 192000};
constexpr long long bitrates_22050[] = {32000, 48000, 64000, 96000, 128000, 160000};
constexpr long long bitrates_32000[] = {48000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000};
constexpr long long bitrates_44100[] = {48000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000, 448000};
// clang-format on

}  // namespace

DataHelperAudioCodecVorbis::DataHelperAudioCodecVorbis() : AudioCodecHelper(A::CODEC_ID_VORBIS) {}

SP<IDataHelper> DataHelperAudioCodecVorbis::Create() {
    return Keeping(new DataHelperAudioCodecVorbis);
}

Core::Property DataHelperAudioCodecVorbis::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_VORBIS},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_QUALITY, 1},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
        {A::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperAudioCodecVorbis::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isVorbis = OneOf({A::CODEC_ID_VORBIS});
    AddRule(rules, AudioCodecIdPath(), isVorbis, SampleRatePath(), OneOf(sampleRates_vorbis));
    AddRule(rules, AudioCodecIdPath(), isVorbis, LayoutPath(), LayoutsOf(channelLayouts_vorbis));
    const auto tie = [&rules](long long sampleRate, const SP<IPropertyConstraint>& bitrates) {
        AddRule(rules, SampleRatePath(), OneOf({sampleRate}), AudioBitratePath(), bitrates);
    };
    tie(8000, OneOf(bitrates_8000));
    tie(11025, OneOf(bitrates_11025));
    tie(16000, OneOf(bitrates_16000));
    tie(22050, OneOf(bitrates_22050));
    tie(24000, OneOf(bitrates_22050));
    tie(32000, OneOf(bitrates_32000));
    tie(44100, OneOf(bitrates_44100));
    tie(48000, OneOf(bitrates_44100));
}

void DataHelperAudioCodecVorbis::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_vorbis);
    constraints[A::TAG_QUALITY] = s_defaultQualityConstraint;
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR, A::TAG_BITRATE_MODE_VBR});
}

void DataHelperAudioCodecVorbis::CorrectFormatCodec(Core::Property& tree) const {
    AudioCodecHelper::CorrectFormatCodec(tree);
    const long long channels = ChannelsOf(tree);
    const VorbisCombination nearest =
        NearestVorbisCombination({channels, tree[A::TAG_SAMPLE_RATE].GetInt64(), tree[A::TAG_BITRATE].GetInt64()});
    // A layout of the right count stays, also one that is not the default of that count.
    if (nearest.channels != channels) {
        tree.SetChildT(A::TAG_LAYOUT, *LayoutRecord::Find(static_cast<int>(nearest.channels)).name);
    }
    tree.SetChildT(A::TAG_SAMPLE_RATE, nearest.sampleRate);
    tree.SetChildT(A::TAG_BITRATE, nearest.bitrate);
}

}  // namespace Norvex::Conf
