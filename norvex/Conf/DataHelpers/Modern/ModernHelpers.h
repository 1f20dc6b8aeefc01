#pragma once

#include <optional>
#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"
#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/EncoderOptions.h"
#include "norvex/Conf/DataHelpers/Words.h"

/// The helpers of the second set. Each is told in a source of its own, or with its family. Not for hosts: they find
/// them by lookup.

namespace Norvex::Conf {

// ------------------------------------------------------------------------------------------------------ audio codecs

class DataHelperAudioCodecOpus final : public AudioCodecHelper {
public:
    DataHelperAudioCodecOpus();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperAudioCodecOpus); }

    /// Without a bitrate: correction gives each count of channels its own.
    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// With the constrained mode, and with a bitrate in each mode, or in none.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Bounds the bitrate by the channels, after the common correction.
    void CorrectFormatCodec(Core::Property& tree) const override;

private:
    const PairList<long long> m_rates;  ///< Hz
    EncoderOptions m_options;
};

class DataHelperAudioCodecEac3 final : public AudioCodecHelper {
public:
    DataHelperAudioCodecEac3();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperAudioCodecEac3); }

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// In the place of the classic one, which is left open and starts with a bitrate that the encoder refuses.
class DataHelperAudioCodecDca final : public AudioCodecHelper {
public:
    DataHelperAudioCodecDca();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperAudioCodecDca); }

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
    /// Raises the bitrate to what the channels need, after the common correction.
    void CorrectFormatCodec(Core::Property& tree) const override;

private:
    const PairList<long long> m_rates;  ///< Hz
};

class DataHelperAudioCodecTrueHD final : public LosslessAudioCodecHelper {
public:
    DataHelperAudioCodecTrueHD();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperAudioCodecTrueHD); }

    void GetValidationRules(RuleList& rules) const override;
};

class DataHelperAudioCodecWavPack final : public LosslessAudioCodecHelper {
public:
    DataHelperAudioCodecWavPack();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperAudioCodecWavPack); }

    void GetValidationRules(RuleList& rules) const override;
};

/// G.711, and PCM of floating point numbers. The bitrate is exact, and counts the bits that are stored.
class DataHelperAudioCodecStoredPCM final : public AudioCodecHelper {
public:
    enum class Kind { G711, Float };
    DataHelperAudioCodecStoredPCM(const std::string& codecId, Kind kind);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    /// Sets the codec id, and merges the encoder options. Nothing else of the preset is read.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// Corrects the audio format, and sets the CBR mode and the exact bitrate.
    void CorrectFormatCodec(Core::Property& tree) const override;

private:
    const Kind m_kind;
};

// ------------------------------------------------------------------------------------------------------ video codecs

/// Base of the video codecs whose bitrate follows from the picture: preset application and correction set the mode, the
/// only one, and the bitrate.
class PictureRateCodecHelper : public VideoCodecHelper {
public:
    /// Codec id, mode, what Standards adds, and the options.
    Core::Property GetDefaults() const override;
    /// The mode and the options.
    void GetConstraints(ConstraintMap& constraints) const override;
    /// As the common one, but a preset's bitrate is a wish, which may be missing.
    void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const override;
    /// The common one, and the bitrate again where the stream tells its size and rate.
    void CorrectFormatCodec(Core::Property& tree) const override;

protected:
    struct Picture {
        long long width;         ///< pixels
        long long height;        ///< pixels
        double framesPerSecond;  ///< more than 0
    };

    PictureRateCodecHelper(const std::string& codecId, const std::string& mode);

    /// Bits per second, in what the stream says; `wish` is a bitrate that was asked for.
    virtual double BitrateOf(const Picture& picture, const Core::Property& stream,
                             std::optional<long long> wish) const = 0;
    /// The value of an encoder option, by the defaults where the stream does not have it.
    std::string OptionOf(const Core::Property& stream, const std::string& tag) const;

    EncoderOptions m_options;

private:
    void SetBitrate(Core::Property& stream, std::optional<long long> wish) const;

    const std::string m_mode;
};

/// A codec that takes the bits that it needs: the bitrate is an estimate.
class EstimatedCodecHelper : public PictureRateCodecHelper {
public:
    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;

protected:
    /// The bits per pixel are the book's own. A codec of quality has a scale of its own from 1, the best, to
    /// `worstQuality`; a lossless one has none, and 0 there.
    EstimatedCodecHelper(const std::string& codecId, double bitsPerPixel, long long worstQuality = 0,
                         long long standardQuality = 0);

    double BitrateOf(const Picture& picture, const Core::Property& stream,
                     std::optional<long long> wish) const override;

private:
    const double m_bitsPerPixel;
    const long long m_worstQuality;
    const long long m_standardQuality;
};

class DataHelperVideoCodecFfv1 final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecFfv1();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecFfv1); }

    Core::Property GetDefaults() const override;
};

/// HuffYUV and FFmpeg's variant of it.
class DataHelperVideoCodecHuffYuv final : public EstimatedCodecHelper {
public:
    explicit DataHelperVideoCodecHuffYuv(const std::string& codecId);
};

class DataHelperVideoCodecCineForm final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecCineForm();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecCineForm); }

    void GetValidationRules(RuleList& rules) const override;
};

class DataHelperVideoCodecWebp final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecWebp();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecWebp); }
};

class DataHelperVideoCodecJpegXl final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecJpegXl();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecJpegXl); }
};

class DataHelperVideoCodecOpenExr final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecOpenExr();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecOpenExr); }
};

class DataHelperVideoCodecQoi final : public EstimatedCodecHelper {
public:
    DataHelperVideoCodecQoi();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecQoi); }
};

class DataHelperVideoCodecDnxhd final : public PictureRateCodecHelper {
public:
    DataHelperVideoCodecDnxhd();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecDnxhd); }

    void GetValidationRules(RuleList& rules) const override;

protected:
    double BitrateOf(const Picture& picture, const Core::Property& stream,
                     std::optional<long long> wish) const override;
};

class DataHelperVideoCodecVc2 final : public PictureRateCodecHelper {
public:
    DataHelperVideoCodecVc2();
    static SP<const IDataHelper> Create() { return Keeping(new DataHelperVideoCodecVc2); }

    void GetConstraints(ConstraintMap& constraints) const override;

protected:
    double BitrateOf(const Picture& picture, const Core::Property& stream,
                     std::optional<long long> wish) const override;
};

// -------------------------------------------------------------------------------------------------------- containers

/// A container of sound alone.
class DataHelperFormatSound final : public FormatHelper {
public:
    struct Row {
        std::string id;
        std::string muxer;                ///< that FFmpeg is asked about; empty where the list is all
        std::vector<std::string> codecs;  ///< what is carried in any case, the default first
        std::vector<std::string> never;   ///< what the muxer says that it carries, and does not
        bool globalHeader;
    };
    explicit DataHelperFormatSound(Row row);

    Core::Property GetDefaults() const override;

private:
    const Row m_row;
};

/// A container of pictures alone.
class DataHelperFormatPicture final : public FormatHelper {
public:
    DataHelperFormatPicture(const std::string& id, const std::string& codec);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

/// A classic container that carries more, or less. Its rules about all of its codecs hold for those that came.
class DataHelperFormatExtended final : public FormatHelper {
public:
    struct Row {
        std::string id;
        SP<IDataHelper> (*make)();  ///< the classic helper
        std::vector<std::string> video;
        std::vector<std::string> audio;
        std::vector<std::string> never;
    };
    /// Throws std::bad_cast for a helper of another base.
    explicit DataHelperFormatExtended(const Row& row);

    Core::Property GetDefaults() const override;
    void GetRequiredObjects(ObjectList& objects) const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;

private:
    const SP<const IDataHelper> m_classic;
    const DataHelperFormatBase& m_classicFormat;
};

}  // namespace Norvex::Conf
