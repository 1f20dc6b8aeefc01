/// What the user of the program asks for.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// A value that the user chose, where the rule book has it: a tag in a codec's section, or below one.
struct Choice {
    std::string path;
    Norvex::Core::Property value;
    std::string option;  ///< the command line option it came from, for messages
};

struct Request {
    std::string input;
    std::string output;
    std::string format;      ///< container id; empty: by the extension of `output`
    std::string videoCodec;  ///< codec id; empty: the container's default
    std::string audioCodec;
    bool noVideo = false;
    bool noAudio = false;

    std::vector<Choice> video;  ///< of the video codec's section
    std::vector<Choice> audio;  ///< of the audio codec's section

    std::optional<std::pair<int, int>> size;       ///< pixels
    std::string resizeMode;                        ///< a value of Proc::IResize::MODE; empty: the resizer's own
    std::optional<Norvex::Core::Ratio> frameRate;  ///< frames per second
    std::optional<int> sampleRate;                 ///< Hz
    std::string layout;                            ///< a channel layout's name
    std::string sampleFormat;                      ///< a sample format's name

    bool dryRun = false;
    bool json = false;
    bool quiet = false;
};

/// What came of reading a command line: a request, or an exit status with everything already said.
struct Parsed {
    Request request;
    std::optional<int> exitStatus;
};

/// Reads the command line. Prints help and complaints itself.
Parsed ParseCommandLine(int argc, const char* const* argv);

}  // namespace NorvexExport
