/// The streams of a file, as the rule book judges them.
#pragma once

#include <string>
#include <vector>

#include "norvex/interfaces/Conf/IFormatCodec.h"

namespace NorvexRules {

struct FileStream {
    std::string codecId;  ///< FFmpeg's name of the codec
    std::string words;    ///< such as "h264, 1280x720, 25 fps"
    Norvex::SP<const Norvex::Conf::IFormatCodec> description;
};

struct FileStreams {
    std::string path;
    std::string container;            ///< FFmpeg's name of the demuxer
    std::vector<FileStream> streams;  ///< by their numbers in the file
};

/// Throws std::runtime_error, in one sentence, for a file that is missing, unreadable or no media.
FileStreams ReadStreams(const std::string& path);

}  // namespace NorvexRules
