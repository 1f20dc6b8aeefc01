#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

#include <string>

/// How queries find a muxer. Not for hosts.

namespace Norvex::Conf {

/// FFmpeg's muxer of that short name, or null. FFmpeg would read a name with a NUL in it up to there.
inline const AVOutputFormat* FindMuxer(const std::string& name) {
    if (name.find('\0') != std::string::npos) return nullptr;
    return av_guess_format(name.c_str(), nullptr, nullptr);
}

}  // namespace Norvex::Conf
