#pragma once

#include <string>

#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"
#include "norvex/Conf/DataHelpers/PlainHelper.h"

/// The audio codec helpers. Each is told in a source of its own. The bitrates and qualities that they start with are
/// the book's own choice.

namespace Norvex::Conf {

class NORVEX_API DataHelperAudioCodecAac final : public AudioCodecHelper {
public:
    DataHelperAudioCodecAac();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperAudioCodecMp3 final : public AudioCodecHelper {
public:
    DataHelperAudioCodecMp3();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// Caps the bitrate by the sample rate, after the common correction. Throws what that throws.
    void CorrectFormatCodec(Core::Property& tree) const override;
};

class NORVEX_API DataHelperAudioCodecMp2 final : public AudioCodecHelper {
public:
    DataHelperAudioCodecMp2();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    /// The hand-written sample rates take the place of the encoder's.
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperAudioCodecAc3 final : public AudioCodecHelper {
public:
    DataHelperAudioCodecAc3();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperAudioCodecDTS final : public AudioCodecHelper {
public:
    DataHelperAudioCodecDTS();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    /// Nothing, not even the encoder's rules.
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperAudioCodecVorbis final : public AudioCodecHelper {
public:
    DataHelperAudioCodecVorbis();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// Moves layout, sample rate and bitrate together to the nearest legal combination, after the common correction.
    /// Throws what that throws; all three are read before one is written.
    void CorrectFormatCodec(Core::Property& tree) const override;
};

/// Base of the lossless codecs: their bitrate is a result and no setting.
class NORVEX_API LosslessAudioCodecHelper : public AudioCodecHelper {
public:
    Core::Property GetDefaults() const override;
    /// Sets the codec id. The preset is not read.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Corrects the audio format, and sets the VBR mode and an estimate of the bitrate. Throws as
    /// CorrectAudioResamplerSettings does, and FormatException for a layout or sample format without a record that no
    /// rule has corrected: the mode is set then, and the bitrate as it was.
    void CorrectFormatCodec(Core::Property& tree) const override;

protected:
    using AudioCodecHelper::AudioCodecHelper;
};

class NORVEX_API DataHelperAudioCodecFlac final : public LosslessAudioCodecHelper {
public:
    DataHelperAudioCodecFlac();
    static SP<IDataHelper> Create();

    /// An estimate of a lossless stream's bitrate in bits per second, from its sample rate, layout and sample format.
    /// Throws Core::PropertyException where one of them is missing or of the wrong type, and only then FormatException
    /// for an unknown name, first of the layout.
    static long long CalculateBitrate(const Core::Property& tree);

    void GetValidationRules(RuleList& rules) const override;
};

class NORVEX_API DataHelperAudioCodecAlac final : public LosslessAudioCodecHelper {
public:
    DataHelperAudioCodecAlac();
    static SP<IDataHelper> Create();
};

/// One helper for each uncompressed codec.
class NORVEX_API DataHelperAudioCodecPCM final : public AudioCodecHelper {
public:
    explicit DataHelperAudioCodecPCM(const std::string& codecId);
    static SP<IDataHelper> Create(const std::string& codecId);

    /// The bits that a sample of this codec has in a file, 0 for a codec that has no fixed number. FFmpeg has no sample
    /// format of 24 bits: the encoders of the 24-bit codecs take 32, which is what a stream's tree and its bitrate
    /// count, and store 24.
    static int GetStoredBitsPerSample(const std::string& codecId);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    /// Sets the codec id, and merges the encoder options. Nothing else of the preset is read. Throws nothing for what
    /// the preset holds.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Corrects the audio format, and sets the CBR mode and the exact bitrate. Throws as CorrectAudioResamplerSettings
    /// does, and FormatException for a sample format without a record that no rule has corrected: mode and bitrate are
    /// as they were then.
    void CorrectFormatCodec(Core::Property& tree) const override;

private:
    const std::string m_pcmCodecId;
};

/// An audio stream whose codec the system picks. Its rules pin rate and layout to the values that keep the source's.
class NORVEX_API DataHelperAudioCodecEmpty final : public PlainHelper {
public:
    explicit DataHelperAudioCodecEmpty(const std::string& codecId);
    static SP<IDataHelper> Create(const std::string& codecId);

    Core::Property GetDefaults() const override;
    void GetRequiredObjects(ObjectList& objects) const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;

private:
    const std::string m_emptyCodecId;
};

class NORVEX_API DataHelperAudioCodecAmrNB final : public AudioCodecHelper {
public:
    DataHelperAudioCodecAmrNB();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperAudioCodecWmav2 final : public AudioCodecHelper {
public:
    DataHelperAudioCodecWmav2();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

}  // namespace Norvex::Conf
