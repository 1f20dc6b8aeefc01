#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/Formats/DataHelperFormatBase.h"

/// The format helpers. Each family is told in a source of its own.

namespace Norvex::Conf {

class Branch;

/// What every format helper has: counting, the shape of the default tree, a codec constraint for each kind of
/// stream, no required objects, and no rules unless the format adds some.
class NORVEX_API FormatHelper : public RefCounted<DataHelperFormatBase> {
public:
    void GetRequiredObjects(ObjectList& objects) const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;

protected:
    /// A default stream. A cover is a video stream with its cover flag on.
    enum class Stream { Video, Audio, Subtitle, Cover };
    /// How many streams of each kind the format may hold: the book's own numbers, where its source says nothing else.
    struct Limits {
        int video;
        int audio;
        int subtitle;
        int other;
    };

    /// The default tree: the container id, the format's tags, the limits, and the streams with their default codecs.
    Core::Property FormatTree(const std::string& formatId, std::initializer_list<Branch> tags, const Limits& limits,
                              std::initializer_list<Stream> streams) const;
};

/// Base of the formats of sound in which any picture is a cover: MJPEG, PNG or BMP.
class NORVEX_API SoundWithCoverHelper : public FormatHelper {
public:
    void GetValidationRules(RuleList& rules) const override;

protected:
    /// Throws as SetCodecConstraint does.
    SoundWithCoverHelper(const std::vector<std::string>& audioCodecs, const std::string& defaultAudioCodec);
};

/// MP4, and its narrower kin for Apple's players and for raw M4V.
class NORVEX_API DataHelperFormatMp4 final : public FormatHelper {
public:
    DataHelperFormatMp4(const std::string& id, bool ipodMode, bool m4vMode);
    static SP<IDataHelper> Create(const std::string& id, bool ipodMode, bool m4vMode);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;

private:
    const std::string m_formatId;
    const bool m_ipodMode;
    const bool m_m4vMode;
};

/// MP4 with sound and a cover picture.
class NORVEX_API DataHelperFormatM4a final : public SoundWithCoverHelper {
public:
    explicit DataHelperFormatM4a(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

/// MP4 with sound alone. It has no row in the catalogue, where DataHelperFormatM4a serves its id.
class NORVEX_API DataHelperFormatF4a final : public FormatHelper {
public:
    DataHelperFormatF4a();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

/// MP4 for mobile phones (3GPP TS 26.244).
class NORVEX_API DataHelperFormat3gp final : public FormatHelper {
public:
    explicit DataHelperFormat3gp(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

/// QuickTime.
class NORVEX_API DataHelperFormatMov final : public FormatHelper {
public:
    DataHelperFormatMov();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// Matroska.
class NORVEX_API DataHelperFormatMkv final : public FormatHelper {
public:
    DataHelperFormatMkv();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// Matroska with sound alone.
class NORVEX_API DataHelperFormatMka final : public FormatHelper {
public:
    DataHelperFormatMka();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatWebm final : public FormatHelper {
public:
    DataHelperFormatWebm();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatAvi final : public FormatHelper {
public:
    DataHelperFormatAvi();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

/// Flash video.
class NORVEX_API DataHelperFormatFlv final : public FormatHelper {
public:
    DataHelperFormatFlv();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

/// Flash.
class NORVEX_API DataHelperFormatSwf final : public FormatHelper {
public:
    DataHelperFormatSwf();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

/// Ogg with pictures.
class NORVEX_API DataHelperFormatOgv final : public FormatHelper {
public:
    DataHelperFormatOgv();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// Ogg with sound alone.
class NORVEX_API DataHelperFormatOgg final : public FormatHelper {
public:
    DataHelperFormatOgg();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// Windows Media, under either of its names.
class NORVEX_API DataHelperFormatWmv final : public FormatHelper {
public:
    explicit DataHelperFormatWmv(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

/// Windows Media with sound alone.
class NORVEX_API DataHelperFormatWma final : public FormatHelper {
public:
    DataHelperFormatWma();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// DVD, video CD and super video CD. They share all but the list of audio codecs.
class NORVEX_API DataHelperFormatDVD final : public FormatHelper {
public:
    explicit DataHelperFormatDVD(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    /// With the disc tags, and mode and bitrate of the first default stream.
    void GetConstraints(ConstraintMap& constraints) const override;

private:
    const std::string m_formatId;
};

/// MPEG-2 program stream.
class NORVEX_API DataHelperFormatVOB final : public FormatHelper {
public:
    explicit DataHelperFormatVOB(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;

private:
    const std::string m_formatId;
};

/// MPEG-1 system stream.
class NORVEX_API DataHelperFormatMpeg1 final : public FormatHelper {
public:
    explicit DataHelperFormatMpeg1(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;

private:
    const std::string m_formatId;
};

/// MPEG transport stream as it is broadcast, with DVB subtitles.
class NORVEX_API DataHelperFormatMpegTS final : public FormatHelper {
public:
    DataHelperFormatMpegTS();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// MPEG transport stream as it is on discs, with HDMV subtitles and lossless sound.
class NORVEX_API DataHelperFormatMpeg2TS final : public FormatHelper {
public:
    DataHelperFormatMpeg2TS();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatMxf final : public FormatHelper {
public:
    DataHelperFormatMxf();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

class NORVEX_API DataHelperFormatMp3 final : public SoundWithCoverHelper {
public:
    DataHelperFormatMp3();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatFlac final : public SoundWithCoverHelper {
public:
    DataHelperFormatFlac();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// AAC frames with ADTS headers.
class NORVEX_API DataHelperFormatAAC final : public FormatHelper {
public:
    DataHelperFormatAAC();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatAC3 final : public FormatHelper {
public:
    DataHelperFormatAC3();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatAu final : public FormatHelper {
public:
    DataHelperFormatAu();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

/// WAV and AIFF.
class NORVEX_API DataHelperFormatWav final : public FormatHelper {
public:
    explicit DataHelperFormatWav(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

/// A still picture. The id is kept by reference and must outlive the helper.
class NORVEX_API DataHelperFormatImage final : public FormatHelper {
public:
    DataHelperFormatImage(const std::string& id, const std::string& codec);
    static SP<IDataHelper> Create(const std::string& id, const std::string& codec);

    Core::Property GetDefaults() const override;

private:
    const std::string& m_formatId;
};

/// Animated GIF.
class NORVEX_API DataHelperFormatGif final : public FormatHelper {
public:
    DataHelperFormatGif();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
};

class NORVEX_API DataHelperFormatHeic final : public FormatHelper {
public:
    DataHelperFormatHeic();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatHeif final : public FormatHelper {
public:
    DataHelperFormatHeif();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperFormatAvif final : public FormatHelper {
public:
    DataHelperFormatAvif();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// A subtitle file of one codec.
class NORVEX_API DataHelperFormatSubtitleText final : public FormatHelper {
public:
    DataHelperFormatSubtitleText(const std::string& id, const std::string& codec);
    static SP<IDataHelper> Create(const std::string& id, const std::string& codec);

    Core::Property GetDefaults() const override;

private:
    const std::string m_formatId;
};

class NORVEX_API DataHelperFormatSrt final : public FormatHelper {
public:
    DataHelperFormatSrt();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

/// The format that allows every codec that the system has a name for.
class NORVEX_API DataHelperFormatQFX final : public FormatHelper {
public:
    DataHelperFormatQFX();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    /// With one that accepts anything for IFormatFile::TAG_DISABLE_FOR_LOSSLESS.
    void GetConstraints(ConstraintMap& constraints) const override;
};

}  // namespace Norvex::Conf
