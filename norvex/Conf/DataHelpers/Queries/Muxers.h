#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

#include <string>

#include "norvex/interfaces/Conf/IFormatFile.h"

/// How queries find a muxer. Not for hosts.

namespace Norvex::Conf {

/// FFmpeg's muxer of that short name, or null: what av_guess_format() gives, and sooner.
const AVOutputFormat* FindMuxer(const std::string& name);

/// The muxer by which CodecIsSupported judges a container. It is not the one that writes it for every id: see MuxerOf.
std::string JudgedMuxerName(std::string name);

}  // namespace Norvex::Conf
