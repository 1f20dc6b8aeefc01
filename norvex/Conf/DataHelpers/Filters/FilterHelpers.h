#pragma once

#include "norvex/Conf/DataHelpers/PlainHelper.h"

/// The filter helpers. Keys of their constraints are relative to the filter's node.

namespace Norvex::Conf {

/// The filter that cuts sound into packets.
class NORVEX_API DataHelperAudioFormatter final : public PlainHelper {
public:
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// The resampler, where sample rate, layout and sample format of an audio stream stand. The rate -1 and the unknown
/// layout keep what the source has.
class NORVEX_API DataHelperAudioResample final : public PlainHelper {
public:
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// Rate and layout, which the preset must have, go to the stream's own children, which must exist. A sample
    /// format is optional, and brings the bits per sample with it. Throws Core::PropertyException for what is missing
    /// or of the wrong type, and FormatException for a sample format without a record; what was written before, the
    /// sample format included, stays.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
};

class NORVEX_API DataHelperAudioVolume final : public PlainHelper {
public:
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// The frame rate filter.
class NORVEX_API DataHelperVideoResample final : public PlainHelper {
public:
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// The rate goes to the stream's own child, which must exist, unless it is the mark that keeps the source's. Throws
    /// Core::PropertyException for what is missing or no rate; nothing is written then.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
};

/// The resizer.
class NORVEX_API DataHelperVideoResize final : public PlainHelper {
public:
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    /// Two rules without a condition: width and height are even.
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// Replaces width, height and aspect of the stream, which must exist, by what the resizer makes of them. Throws
    /// Core::PropertyException for what is missing or of the wrong type, and Proc::SettingsException for a text that
    /// names no mode or method; nothing is written then.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
};

}  // namespace Norvex::Conf
