#include <algorithm>
#include <iterator>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// Opus (RFC 6716). A bitrate goes with each mode; which one is legal, and which one a stream gets that has none,
// depends on its channels.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using MA = ModernAudio;

constexpr long long sampleRates_opus[] = {48000, 24000, 16000, 12000, 8000};  // Hz; RFC 6716, 2

constexpr long long lowestBitrate = 6000;  // bits per second; RFC 6716, 2.1.1

struct Channels {
    Name layout;
    long long highest;   ///< bits per second
    long long standard;  ///< bits per second
};
// clang-format off
/// The layouts of RFC 7845 (5.1.1.2), by their count of channels. FFmpeg's encoder takes 256000 bits per second for a
/// channel, of which two coupled ones can hold 510000 (RFC 6716, 2.1.1). The standard is the encoder's own: 64000 for a
/// channel that stands alone, 96000 for two that are coupled.
constexpr Channels channels_opus[] = {
    // layout                        highest standard
    {A::TAG_CH_LAYOUT_MONO,           256000,   64000},
    {A::TAG_CH_LAYOUT_STEREO,         510000,   96000},
    {A::TAG_CH_LAYOUT_SURROUND,       768000,  160000},
    {A::TAG_CH_LAYOUT_QUAD,          1024000,  192000},
    {A::TAG_CH_LAYOUT_5POINT0_BACK,  1280000,  256000},
    {A::TAG_CH_LAYOUT_5POINT1_BACK,  1536000,  320000},
    {A::TAG_CH_LAYOUT_6POINT1,       1792000,  352000},
    {A::TAG_CH_LAYOUT_7POINT1,       2048000,  416000},
};
// clang-format on

/// Milliseconds: the frames of RFC 6716 (2.1.4), and the packets of several that libopus makes.
constexpr const char* frameDurations_opus[] = {"2.5", "5", "10", "20", "40", "60", "80", "100", "120"};

const Channels& ChannelsRow(int channels) {
    const auto last = static_cast<int>(std::size(channels_opus));
    return channels_opus[std::clamp(channels, 1, last) - 1];
}

}  // namespace

DataHelperAudioCodecOpus::DataHelperAudioCodecOpus()
    : AudioCodecHelper(MA::CODEC_ID_OPUS),
      m_rates(RatesTaken(MA::CODEC_ID_OPUS, sampleRates_opus)),
      m_options(MA::CODEC_ID_OPUS) {
    m_options.Add(MA::TAG_APPLICATION, "audio", {"audio", "voip", "lowdelay"});
    m_options.Add(MA::TAG_FRAME_DURATION, "20", frameDurations_opus);
}

Core::Property DataHelperAudioCodecOpus::GetDefaults() const {
    Core::Property defaults = AudioCodecTree({
        {A::TAG_CODEC_ID, m_codecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_VBR},
        {A::TAG_GLOBAL_HEADER, true},
    });
    defaults.AddNamed(m_options.Defaults());
    return defaults;
}

void DataHelperAudioCodecOpus::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isOpus = OneOf({m_codecId});
    Silence(rules, SampleRatePath());
    AddRule(rules, AudioCodecIdPath(), isOpus, SampleRatePath(), ConstraintSet::Create(m_rates));
    std::vector<std::string> layouts;
    for (const Channels& row : channels_opus) layouts.push_back(row.layout);
    if (!Speaks(rules, LayoutPath())) {
        AddRule(rules, AudioCodecIdPath(), isOpus, LayoutPath(), ConstraintChannelLayout::Create(layouts));
    }
    for (const Channels& row : channels_opus) {
        AddRule(rules, LayoutPath(), OneOf({row.layout}), AudioBitratePath(),
                ConstraintRange::Create(lowestBitrate, row.highest, 0LL));
    }
}

void DataHelperAudioCodecOpus::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE_MODE] =
        OneOf({A::TAG_BITRATE_MODE_VBR, MA::TAG_BITRATE_MODE_CVBR, A::TAG_BITRATE_MODE_CBR});
    const long long highest = channels_opus[std::size(channels_opus) - 1].highest;
    constraints[A::TAG_BITRATE] = ConstraintRange::Create(lowestBitrate, highest, 0LL);
    m_options.AddTo(constraints);
}

void DataHelperAudioCodecOpus::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    // The common one for the automatic mode alone: it judges the id, merges the options, and leaves the bitrate.
    Core::Property automatic = preset;
    automatic.SetChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR_AUTO);
    AudioCodecHelper::ApplyPresetSettings(automatic, stream);
    const std::string& mode = preset[A::TAG_BITRATE_MODE].GetString();
    if (mode == A::TAG_BITRATE_MODE_CBR_AUTO) return;
    ConstraintMap constraints;
    GetConstraints(constraints);
    if (!constraints[A::TAG_BITRATE_MODE]->IsValid(preset[A::TAG_BITRATE_MODE])) {
        HelperException exception;
        exception << TagDescription("Unknown bitrate mode");
        NORVEX_THROW(AddStack(exception));
    }
    stream.SetChildT(A::TAG_BITRATE_MODE, mode);
    if (preset.ChildExists(A::TAG_BITRATE)) stream.SetChild(A::TAG_BITRATE, preset[A::TAG_BITRATE]);
}

void DataHelperAudioCodecOpus::CorrectFormatCodec(Core::Property& tree) const {
    AudioCodecHelper::CorrectFormatCodec(tree);
    const Channels& row = ChannelsRow(ChannelsOf(tree));
    const bool hasBitrate = tree.ChildExists(A::TAG_BITRATE) && tree[A::TAG_BITRATE].GetType() == PT_INT64;
    const long long bitrate = hasBitrate ? tree[A::TAG_BITRATE].GetInt64() : row.standard;
    tree.SetChildT(A::TAG_BITRATE, std::min(bitrate, row.highest));
}

}  // namespace Norvex::Conf
