#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

/// What the reviews ask of the census that FormatValidator takes. Not for hosts.

namespace Norvex::Conf {

/// Whether the census was never taken, or found no encoder at all.
bool CensusIsEmpty();

bool CensusHas(AVCodecID codec);

}  // namespace Norvex::Conf
