#include <algorithm>
#include <iterator>

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// MP3 (ISO/IEC 11172-3 and 13818-3 Layer III, and the low rates of MPEG-2.5). The sample rate bounds the bitrate.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Hz: three of MPEG-2.5, three of MPEG-2, three of MPEG-1.
constexpr long long availableSampleRateList_mp3[] = {
    8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000,
};

/// Bits per second: the book's own choice of those of MPEG-1 (ISO/IEC 11172-3, 2.4.2.3).
constexpr long long availableBitrateList_mp3[] = {
    32000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000,
};

/// Neighbouring sample rates, and the highest bitrate that all of them bear: a member of the list above, of which the
/// band may use what lies up to it.
struct Band {
    const long long* begin;  ///< Hz, in availableSampleRateList_mp3
    const long long* end;
    long long maxBitrate;
};
// clang-format off
/// The highest of LAME for MPEG-2.5, and of the standards for MPEG-2 and MPEG-1; that of 16000 Hz is the book's own.
constexpr Band s_maxSupportedBitrates[] = {
    {availableSampleRateList_mp3,     availableSampleRateList_mp3 + 3,  64000},  //  8000, 11025, 12000
    {availableSampleRateList_mp3 + 3, availableSampleRateList_mp3 + 4, 128000},  // 16000
    {availableSampleRateList_mp3 + 4, availableSampleRateList_mp3 + 6, 160000},  // 22050, 24000
    {availableSampleRateList_mp3 + 6, availableSampleRateList_mp3 + 9, 320000},  // 32000, 44100, 48000
};
// clang-format on

/// For a rate that no band has.
constexpr long long highestBitrate = 320000;

long long MaxBitrate(long long sampleRate) {
    for (const Band& band : s_maxSupportedBitrates) {
        if (std::find(band.begin, band.end, sampleRate) != band.end) return band.maxBitrate;
    }
    return highestBitrate;
}

}  // namespace

DataHelperAudioCodecMp3::DataHelperAudioCodecMp3() : AudioCodecHelper(A::CODEC_ID_MP3) {}

SP<IDataHelper> DataHelperAudioCodecMp3::Create() {
    return Keeping(new DataHelperAudioCodecMp3);
}

Core::Property DataHelperAudioCodecMp3::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_MP3},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_QUALITY, 1},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecMp3::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    AddRule(rules, AudioCodecIdPath(), OneOf({A::CODEC_ID_MP3}), SampleRatePath(), OneOf(availableSampleRateList_mp3));
    for (const Band& band : s_maxSupportedBitrates) {
        const auto* const end =
            std::upper_bound(std::begin(availableBitrateList_mp3), std::end(availableBitrateList_mp3), band.maxBitrate);
        AddRule(rules, SampleRatePath(), OneOf(band.begin, band.end), AudioBitratePath(),
                OneOf(availableBitrateList_mp3, end));
    }
}

void DataHelperAudioCodecMp3::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_mp3);
    constraints[A::TAG_QUALITY] = s_defaultQualityConstraint;
    // Variable first: that is what an unknown mode becomes.
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_VBR, A::TAG_BITRATE_MODE_CBR});
}

void DataHelperAudioCodecMp3::CorrectFormatCodec(Core::Property& tree) const {
    AudioCodecHelper::CorrectFormatCodec(tree);
    const long long limit = MaxBitrate(tree[A::TAG_SAMPLE_RATE].GetInt64());
    tree.SetChildT(A::TAG_BITRATE, std::min(tree[A::TAG_BITRATE].GetInt64(), limit));
}

}  // namespace Norvex::Conf
