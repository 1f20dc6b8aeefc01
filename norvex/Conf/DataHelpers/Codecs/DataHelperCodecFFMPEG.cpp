#include "norvex/Conf/DataHelpers/Codecs/DataHelperCodecFFMPEG.h"

#include <array>
#include <charconv>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintSampleFormat.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Conf {

namespace {

/// Lower rates are of use to few; a helper that wants them adds them by hand.
constexpr int lowestSampleRate = 11025;  // Hz

/// Five digits, as streams of the standard library write them.
std::string FrameRateLabel(const AVRational& rate) {
    std::array<char, 32> label{};
    const double value = static_cast<double>(rate.num) / rate.den;
    return std::string(
        label.data(),
        std::to_chars(label.data(), label.data() + label.size(), value, std::chars_format::general, 5).ptr);
}

/// The record of a layout that an encoder declares, or null where the system has no name for it.
const LayoutRecord* FindRecord(const AVChannelLayout& layout) {
    if (!Proc::IsValid(layout)) return nullptr;
    switch (layout.order) {
        case AV_CHANNEL_ORDER_NATIVE:
            if (!Proc::IsSupportedAVChannelLayoutMask(layout.u.mask)) return nullptr;
            return &LayoutRecord::Find(Proc::NorvexFromAVChannelLayout(layout));
        case AV_CHANNEL_ORDER_UNSPEC:
            return LayoutRecord::FindDefault(layout.nb_channels);
        default:
            return nullptr;
    }
}

}  // namespace

NORVEX_CONSTANT(const SP<IPropertyConstraint>, DataHelperCodecFFMPEG::s_defaultVideoBitrateConstraint) =
    ConstraintRange::Create(100000LL, IFormatCodecVideo::MAX_VIDEO_BITRATE, 0LL);
NORVEX_CONSTANT(const SP<IPropertyConstraint>, DataHelperCodecFFMPEG::s_defaultQualityConstraint) =
    ConstraintRange::Create(1LL, IFormatCodec::MAX_QUALITY, 0LL);

DataHelperCodecFFMPEG::DataHelperCodecFFMPEG(const std::string& codecId, MediaType type)
    : m_codecId(codecId),
      m_mediaType(type),
      m_presetKey(type == MediaType::Audio ? IPreset::KEY_FILTER_AUDIO_CODEC : IPreset::KEY_FILTER_VIDEO_CODEC) {
    Load();
}

void DataHelperCodecFFMPEG::Load() {
    DropAnswers();
    const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(m_codecId, Proc::ImplNames::FFMPEG);
    if (!encoder) return;

    if (m_mediaType == MediaType::Video) {
        m_frameRates.clear();
        for (const AVRational& rate : encoder.GetSupportedFrameRates()) {
            m_frameRates.emplace_back(FrameRateLabel(rate), Core::Ratio(rate.num, rate.den));
        }
        return;
    }
    if (m_mediaType != MediaType::Audio) return;

    m_sampleFormats.clear();
    if (const AVSampleFormat* format = encoder.GetSupportedSampleFormats()) {
        for (; *format != AV_SAMPLE_FMT_NONE; ++format) {
            m_sampleFormats.push_back(Proc::SampleFormatNorvexFromFFMPEG(*format));
        }
    }
    m_sampleRates.clear();
    if (const int* rate = encoder.GetSupportedSampleRates()) {
        for (; *rate != 0; ++rate) {
            if (*rate >= lowestSampleRate) m_sampleRates.emplace_back(std::to_string(*rate), *rate);
        }
    }
    m_channelLayouts.clear();
    for (const AVChannelLayout* layout = encoder.GetSupportedChannelLayouts(); !Proc::IsZeroed(layout); ++layout) {
        if (const LayoutRecord* record = FindRecord(*layout))
            m_channelLayouts.emplace_back(*record->name, *record->name);
    }
}

Core::Property DataHelperCodecFFMPEG::GetDefaults() const {
    return Tree(m_presetKey, {{IFormatCodec::TAG_CODEC_ID, m_codecId}});
}

void DataHelperCodecFFMPEG::GetRequiredObjects(ObjectList& /*objects*/) const {}

void DataHelperCodecFFMPEG::GetValidationRules(RuleList& rules) const {
    const SP<IPropertyConstraint> isThisCodec = OneOf({m_codecId});
    if (m_mediaType == MediaType::Video && !m_frameRates.empty()) {
        AddRule(rules, VideoCodecIdPath(), isThisCodec, FrameRatePath(), ConstraintSet::Create(m_frameRates));
    }
    if (m_mediaType != MediaType::Audio) return;
    if (!m_sampleRates.empty()) {
        AddRule(rules, AudioCodecIdPath(), isThisCodec, SampleRatePath(), ConstraintSet::Create(m_sampleRates));
    }
    if (!m_sampleFormats.empty()) {
        AddRule(rules, AudioCodecIdPath(), isThisCodec, SampleFormatPath(),
                ConstraintSampleFormat::Create(m_sampleFormats));
    }
    if (!m_channelLayouts.empty()) {
        AddRule(rules, AudioCodecIdPath(), isThisCodec, LayoutPath(),
                ConstraintChannelLayout::Create(m_channelLayouts));
    }
}

void DataHelperCodecFFMPEG::GetConstraints(ConstraintMap& constraints) const {
    if (m_mediaType != MediaType::Video || m_frameRates.empty()) return;
    constraints[IFormatCodecVideo::TAG_FPS] = ConstraintSet::Create(m_frameRates);
}

}  // namespace Norvex::Conf
