#pragma once

#include <memory>

#include "norvex/interfaces/Proc/ICodecFactory.h"

namespace Norvex::Proc {

/// The encoders of the FFmpeg build that is running. It looks them up once, when it is made.
class NORVEX_API FFmpegCodecFactory final : public RefCounted<ICodecFactory> {
public:
    static SP<ICodecFactory> Create();

    /// `onlyStable` leaves out what FFmpeg calls experimental, `onlySoftware` what needs hardware.
    std::vector<std::string> ListEncoders(const std::string& codecId, bool onlyStable,
                                          bool onlySoftware) const override;

private:
    struct Encoders;

    FFmpegCodecFactory();
    ~FFmpegCodecFactory() override;

    const std::unique_ptr<const Encoders> m_encoders;
};

}  // namespace Norvex::Proc
