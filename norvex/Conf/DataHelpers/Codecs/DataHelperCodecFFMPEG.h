#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/Conf/DataHelpers/KeepingHelper.h"
#include "norvex/interfaces/Conf/MediaType.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"

namespace Norvex::Conf {

/// Base of the codec helpers: asks the running FFmpeg what the encoder of its codec declares, turns that into rules
/// and constraints, and applies presets and corrects streams by whatever the concrete helper allows. A build
/// without the encoder is a normal situation, in which the hand-written rules stand alone.
class NORVEX_API DataHelperCodecFFMPEG : public KeepingHelper {
public:
    /// Shared by every helper that has no narrower range: 100000 to IFormatCodecVideo::MAX_VIDEO_BITRATE bits per
    /// second.
    static const SP<IPropertyConstraint> s_defaultVideoBitrateConstraint;
    /// 1 to IFormatCodec::MAX_QUALITY.
    static const SP<IPropertyConstraint> s_defaultQualityConstraint;

    /// Asks the encoder. Throws boost::bad_rational for an encoder that declares a frame rate without denominator.
    DataHelperCodecFFMPEG(const std::string& codecId, MediaType type);

    const std::string& GetCodecID() const { return m_codecId; }

    /// The codec's section with the codec id alone.
    Core::Property GetDefaults() const override;
    /// Adds nothing.
    void GetRequiredObjects(ObjectList& objects) const override;
    /// A rule for each list that the encoder declares: the frame rate; or sample rate, sample format and layout, in
    /// this order. A helper that extends this calls it first, so that the encoder's rules stand ahead.
    void GetValidationRules(RuleList& rules) const override;
    /// The frame rate of a video codec whose encoder declares a list.
    void GetConstraints(ConstraintMap& constraints) const override;

    /// Both trees are flat: the preset's codec section and the stream's node. Video needs width, height and, where
    /// the preset has none, the frame rate in the stream. Throws HelperException for a preset of another codec
    /// ("Incompatible preset codec id: ...") and for a helper that is neither video nor audio ("Unknown stream type"),
    /// and leaves the stream as it was; then HelperException for an unknown bitrate mode ("Unknown bitrate mode") and
    /// for video in the VBR mode without a quality ("Quality is required for VBR bitrate mode"), and
    /// Core::PropertyException for what is missing or of the wrong type, and the stream keeps what was written before.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Merges the encoder options: the preset's own win, and the defaults fill what it left out. Throws
    /// Core::PropertyException for a helper whose defaults have no options: the stream then has the preset's alone, or
    /// where the preset has none keeps its own.
    void ApplyPresetEncodeOptions(const Core::Property& preset, Core::Property& stream) const;

    /// Corrects the flat node of one stream: of video CorrectBitrate, and the defaults of key frames and B frames; of
    /// audio CorrectAudioResamplerSettings and then CorrectBitrate. Throws what they throw, and HelperException for a
    /// helper that is neither video nor audio ("Unknown stream type"), which changes nothing.
    void CorrectFormatCodec(Core::Property& tree) const override;
    /// Mode, bitrate and quality: what cannot be made legal, or has no constraint, is replaced by the default, if
    /// there is one, and else stays. So is what a range cannot judge, such as a text. A value of a type that a list
    /// does not know is replaced too, but then ConstraintIsNotApplicableForTypeException is thrown, as is what a
    /// constraint of the host's throws: what was corrected before stays so, and what comes behind is not looked at.
    void CorrectBitrate(Core::Property& tree) const;
    /// Sample rate, sample format and layout, in this order, each by the first rule about it. An unknown layout becomes
    /// the last of the rule's list. Throws std::logic_error, with the call stack behind its message, for a value that
    /// cannot be made legal, Core::PropertyException where one of the three is missing,
    /// ConstraintIsNotApplicableForTypeException for a value of the wrong type, and FormatException for an unknown
    /// sample format. What was corrected before stays so.
    void CorrectAudioResamplerSettings(Core::Property& tree) const;

    /// Asks the encoder again, and forgets the answers that were kept. The constructor is the only caller. Throws as it
    /// does; the lists that were read before are the new ones.
    void Load();

protected:
    const std::string m_codecId;
    const MediaType m_mediaType;
    /// The section of a preset under which this codec's settings stand.
    const std::string m_presetKey;
    std::vector<SampleFormats> m_sampleFormats;
    std::vector<std::pair<std::string, long long>> m_sampleRates;  ///< Hz, from 11025 on
    std::vector<std::pair<std::string, std::string>> m_channelLayouts;
    std::vector<std::pair<std::string, Core::Ratio>> m_frameRates;  ///< frames per second
};

}  // namespace Norvex::Conf
