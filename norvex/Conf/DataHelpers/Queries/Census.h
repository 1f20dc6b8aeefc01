#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

/// What the reviews ask of the census that FormatValidator takes. Not for hosts.

namespace Norvex::Conf {

/// Whether the census was never taken, or found no encoder at all.
bool CensusIsEmpty();

bool CensusHas(AVCodecID codec);

/// Whether this FFmpeg has a decoder, which the census does not tell.
bool HasDecoder(AVCodecID codec);

}  // namespace Norvex::Conf
