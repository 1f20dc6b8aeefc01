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
    /// How many streams of each kind the format may hold.
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
class NORVEX_API DataHelperFormatM4a final : public FormatHelper {
public:
    explicit DataHelperFormatM4a(const std::string& id);
    static SP<IDataHelper> Create(const std::string& id);

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;

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

}  // namespace Norvex::Conf
