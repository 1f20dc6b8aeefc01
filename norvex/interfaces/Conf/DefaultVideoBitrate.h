#pragma once

#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex::Conf {

/// The bitrate in bits per second that suits a picture of this size (pixels) and rate (frames per second) in this
/// codec. `quality` is a quantiser from 1, the best, to IFormatCodec::MAX_QUALITY, values outside going to the
/// nearer end; -1 asks for no particular quality. Never falls when the picture, the rate or the quality gets
/// better, and always lies within the default video bitrate range.
NORVEX_API long long GetDefaultVideoBitrate(const std::string& codecId, long long width, long long height, double fps,
                                            int quality);

}  // namespace Norvex::Conf
