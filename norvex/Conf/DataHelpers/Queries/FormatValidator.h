#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/RefCount.h"
#include "norvex/interfaces/Proc/ICodecFactory.h"

namespace Norvex::Conf {

/// Knows which encoders the build has (the census), and answers which codecs a container offers with them.
///
/// The census is empty until FillEncoders has run. FillEncoders must not overlap with a query or with the first
/// request for a format helper; queries alone may run side by side. A format helper asks once, when it is built: one
/// that was built before the census was filled keeps its hand-written lists for good.
class NORVEX_API FormatValidator {
public:
    static FormatValidator& Instance();

    /// Replaces the census by the codecs for which the host's factory, which must not be null, lists an encoder. An
    /// exception of the factory passes, and what was found before it stays.
    void FillEncoders(const SP<Proc::ICodecFactory>& factory);

    /// The codecs that FFmpeg's muxer of the short name `format` carries, that have an encoder in the census and, for
    /// video and audio, a helper in the catalogue, without the exclusions, sorted; and behind them what else is in
    /// `fallback`, in its order. Where FFmpeg has no answer, a copy of `fallback`.
    std::vector<std::string> GetSupportedVideoCodecs(const std::string& format,
                                                     const std::vector<std::string>& fallback,
                                                     const std::vector<std::string>& exclusions);
    std::vector<std::string> GetSupportedAudioCodecs(const std::string& format,
                                                     const std::vector<std::string>& fallback,
                                                     const std::vector<std::string>& exclusions);
    std::vector<std::string> GetSupportedSubtitleCodecs(const std::string& format,
                                                        const std::vector<std::string>& fallback,
                                                        const std::vector<std::string>& exclusions);

private:
    FormatValidator() = default;
};

}  // namespace Norvex::Conf
