#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

#include <string>

#include "norvex/interfaces/Conf/IFormatFile.h"

/// How queries find a muxer. Not for hosts.

namespace Norvex::Conf {

/// FFmpeg's muxer of that short name, or null. FFmpeg would read a name with a NUL in it up to there.
inline const AVOutputFormat* FindMuxer(const std::string& name) {
    if (name.find('\0') != std::string::npos) return nullptr;
    return av_guess_format(name.c_str(), nullptr, nullptr);
}

/// The muxer by which CodecIsSupported judges a container. It is not the one that writes it for every id: see MuxerOf.
inline std::string JudgedMuxerName(std::string name) {
    using F = IFormatFile;
    if (name == F::FORMAT_MPEG2TS) name = F::FORMAT_MPEGTS;
    if (name == F::FORMAT_MPEG1VIDEO) name = F::FORMAT_MPEG;
    if (name == F::FORMAT_MPEG2VIDEO) name = F::FORMAT_VOB;
    if (name == F::FORMAT_WMV || name == F::FORMAT_WMA) name = F::FORMAT_ASF;
    if (name == F::FORMAT_M4A || name == F::FORMAT_M4V) name = F::FORMAT_IPOD;
    return name;
}

}  // namespace Norvex::Conf
