/// What the user of the program asks for.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// Joins tags into a path.
std::string Path(std::initializer_list<std::string> tags);

/// What a stream is to the program.
enum class StreamKind { Video, Audio, Subtitle, Cover, Attachment, Data };

/// A value that the user chose, at its path in a preset.
struct Choice {
    std::string path;
    Norvex::Core::Property value;
    std::string option;              ///< the command line option, or the line of the preset's file, it came from
    bool isOpen = false;             ///< the value is left to the system, whatever was chosen before
    std::optional<int> stream = {};  ///< the one stream of the input that it is about, or all of its kind
    std::string codecId = {};        ///< the only codec that it means anything to; empty for any
    bool isFromPreset = false;
};

/// What becomes of interlaced pictures.
enum class Deinterlacing {
    Auto,  ///< they stay so where the codec can, and are made whole elsewhere
    On,    ///< all pictures are made whole, whatever the input says of them
    Off,
};

/// Streams that the user wants: those that fit all of what is given.
struct StreamChoice {
    std::string text;  ///< as the user wrote it
    std::optional<int> stream = {};
    std::optional<StreamKind> kind = {};
    std::string language = {};
};

struct Request {
    std::string input;
    std::string output;
    std::string presetFile;      ///< a preset to start from
    std::string savePresetFile;  ///< where to write what was settled on

    std::vector<Choice> choices;        ///< of two for one path the last counts
    std::vector<StreamChoice> streams;  ///< what is wanted of the input; all where it is empty
    std::vector<std::string> notes;     ///< how the choices were understood, a sentence each
    std::optional<long long> start;     ///< what is wanted of the input begins there, in microseconds
    std::optional<long long> duration;  ///< and lasts that long
    bool noVideo = false;
    bool noAudio = false;
    bool noSubtitles = false;
    Deinterlacing deinterlacing = Deinterlacing::Auto;
    bool noFaststart = false;  ///< leave the index of MP4 and its kin behind the media
    bool copy = false;         ///< carry streams over unchanged where the container takes them
    bool copyAll = false;      ///< and where FFmpeg alone does, against the rule book

    bool classic = false;  ///< leave out the second set of helpers
    bool dryRun = false;
    bool verbose = false;
    bool explain = false;
    bool json = false;
    bool quiet = false;

    /// The choice for a path, or null.
    const Choice* Find(const std::string& path) const;
    /// The text chosen for a path, or none.
    std::string TextAt(const std::string& path) const;
    /// Whether anything was chosen in a section of the preset, its codec id aside.
    bool Asks(const std::string& section) const;
    /// The request as it is for one stream of the input, whose codec has its section there: without what was chosen for
    /// another stream or another codec.
    Request For(int stream, const std::string& codecSection) const;
};

/// What came of reading a command line: a request, or an exit status with everything already said.
struct Parsed {
    Request request;
    std::optional<int> exitStatus;
};

/// Reads the command line. Prints help and complaints itself.
Parsed ParseCommandLine(int argc, const char* const* argv);

}  // namespace NorvexExport
