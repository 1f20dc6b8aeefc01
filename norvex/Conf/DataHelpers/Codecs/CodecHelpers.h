#pragma once

#include <string>

#include "norvex/Conf/DataHelpers/Codecs/DataHelperCodecFFMPEG.h"

namespace Norvex::Conf {

/// Base of the audio codec helpers: they need the resampler, where rate, sample format and layout stand.
class NORVEX_API AudioCodecHelper : public RefCounted<DataHelperCodecFFMPEG> {
public:
    void GetRequiredObjects(ObjectList& objects) const override;

protected:
    explicit AudioCodecHelper(const std::string& codecId);
};

/// Base of the video codec helpers: they need the resizer and the frame rate filter.
class NORVEX_API VideoCodecHelper : public RefCounted<DataHelperCodecFFMPEG> {
public:
    void GetRequiredObjects(ObjectList& objects) const override;

protected:
    explicit VideoCodecHelper(const std::string& codecId);
};

/// Base of the video codecs that go with any frame rate in the frame rate filter, whatever their encoder declares. The
/// constraint on the codec's own frame rate stays.
class NORVEX_API AnyFrameRateVideoCodecHelper : public VideoCodecHelper {
public:
    /// Nothing, not even the encoder's rules.
    void GetValidationRules(RuleList& rules) const override;

protected:
    using VideoCodecHelper::VideoCodecHelper;
};

}  // namespace Norvex::Conf
