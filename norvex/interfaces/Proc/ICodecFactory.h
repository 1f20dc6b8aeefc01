#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/RefCount.h"

namespace Norvex::Proc {

/// Knows which encoders can be made. A host implements it, or uses FFmpegCodecFactory.
class NORVEX_API ICodecFactory : public IRefCountable {
public:
    /// The names of the encoders of a codec, by FFmpeg's name of the codec; empty when there are none. Each flag
    /// that is true narrows the answer.
    virtual std::vector<std::string> ListEncoders(const std::string& codecId, bool onlyStable,
                                                  bool onlySoftware) const = 0;
};

}  // namespace Norvex::Proc
