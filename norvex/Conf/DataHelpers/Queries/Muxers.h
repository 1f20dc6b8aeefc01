#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

#include <string>

#include "norvex/interfaces/Conf/IFormatFile.h"

/// How queries find a muxer. Not for hosts.

namespace Norvex::Conf {

/// FFmpeg's muxer of that short name, or null. Devices, which a host may register with FFmpeg, are no muxers here.
const AVOutputFormat* FindMuxer(const std::string& name);

/// The muxer by which CodecIsSupported judges a container. It is not the one that writes it for every id: see MuxerOf.
std::string JudgedMuxerName(std::string name);

}  // namespace Norvex::Conf
