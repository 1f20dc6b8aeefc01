#pragma once

#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/KeepingHelper.h"

namespace Norvex::Conf {

/// Base of the format helpers: which codecs the container may carry for each kind of stream, with a default of each,
/// and the format's correction. What a concrete format adds are its codec lists, its default tree and its rules.
class NORVEX_API DataHelperFormatBase : public KeepingHelper {
public:
    /// A constraint that allows these codec ids. Throws HelperException for an empty list and for a default that is
    /// not in it.
    static SP<IPropertyConstraint> SetCodecConstraint(const std::vector<std::string>& codecs,
                                                      const std::string& defaultCodec);

    /// The helper's own objects, shared. Throw HelperException where the format has no stream of that kind.
    SP<IPropertyConstraint> VideoCodecsConstraint() const;
    SP<IPropertyConstraint> AudioCodecsConstraint() const;
    SP<IPropertyConstraint> SubtitleTextCodecsConstraint() const;

    /// Throw HelperException where the format has no stream of that kind.
    std::string DefaultVideoCodec() const;
    std::string DefaultAudioCodec() const;
    std::string DefaultSubtitleTextCodec() const;

    /// Does nothing: no format applies preset settings.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Mends what the format's rules forbid for the codec of one stream's flat node: the frame rate, cover flag and
    /// profile of video, the sample rate and layout of audio. A node of another name stays as it is, and so does the
    /// codec. Throws Core::PropertyException for a node without a codec id, and
    /// ConstraintIsNotApplicableForTypeException for a value of the wrong type; what was corrected before stays so.
    void CorrectFormatCodec(Core::Property& formatCodec) const override;

protected:
    /// Throw as SetCodecConstraint does, and leave the former list in place then. The answers that were kept are
    /// forgotten.
    void SetVideoCodecs(const std::vector<std::string>& codecs, const std::string& defaultCodec);
    void SetAudioCodecs(const std::vector<std::string>& codecs, const std::string& defaultCodec);
    void SetSubtitleTextCodecs(const std::vector<std::string>& codecs, const std::string& defaultCodec);

    // Null where the format has no stream of that kind.
    SP<IPropertyConstraint> m_videoCodecsConstraint;
    SP<IPropertyConstraint> m_audioCodecsConstraint;
    SP<IPropertyConstraint> m_subtitleTextCodecsConstraint;
};

}  // namespace Norvex::Conf
