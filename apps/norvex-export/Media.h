/// The part of the example host that touches media: it reads what an input holds, and decodes, filters,
/// encodes and muxes with FFmpeg. It knows nothing of the rule book: it is given settings that are legal
/// already, and says plainly what failed where they turn out not to work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace NorvexExport {

/// A failure that the user of the program can act on; what() is one plain sentence without a line feed.
class MediaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A fraction as FFmpeg counts frame rates and aspects.
struct Fraction {
    int numerator = 0;
    int denominator = 1;
};

/// A stream of the input, whatever its kind.
struct StreamSource {
    int streamIndex = -1;
    std::string codecId;                    ///< FFmpeg's name of the codec, such as "h264"; "none" where it knows none
    std::string language;                   ///< mostly a code of ISO 639-2, such as "eng"; empty where unknown
    std::string title;                      ///< empty where the stream has none
    std::vector<std::string> dispositions;  ///< what it is there for, by FFmpeg's names, such as "default", "forced"
    bool isMain = false;                    ///< the one of its kind that a player would take
    bool isInMainProgramme = true;          ///< of a transport stream; all are, where there are no programmes
    bool isDecodable = false;               ///< this FFmpeg has a decoder, and the stream says enough of itself for it
    unsigned codecTag = 0;                  ///< what the container calls the codec, 0 where it does not
    std::size_t codecDataSize = 0;          ///< bytes of the codec's header that are kept out of the packets
};

/// How a picture must be turned to stand upright: mirrored left to right where that is said, then clockwise.
struct Orientation {
    int degrees = 0;  ///< 0, 90, 180 or 270
    bool isMirrored = false;

    bool IsUpright() const { return degrees == 0 && !isMirrored; }
    bool SwapsSides() const { return degrees % 180 != 0; }
};

struct VideoSource : StreamSource {
    int width = 0;                   ///< pixels, of the picture as it is stored
    int height = 0;                  ///< pixels
    Fraction sampleAspect;           ///< shape of one pixel, 1/1 where the input does not say
    Orientation orientation;         ///< of the stored picture
    bool isInterlaced = false;       ///< its lines are of two moments
    Fraction frameRate;              ///< frames per second, 25/1 where the input does not say
    std::string pixelFormat;         ///< FFmpeg's name, empty where unknown
    bool isAttachedPicture = false;  ///< a cover picture: one frame
};

struct AudioSource : StreamSource {
    int sampleRate = 0;  ///< Hz
    int channels = 0;
    /// FFmpeg's name of the layout, such as "5.1(side)"; the default one of the count where the input only counts.
    std::string layout;
    std::string sampleFormat;  ///< FFmpeg's name, such as "fltp"; empty where unknown
};

struct SubtitleSource : StreamSource {
    bool isText = false;  ///< as against pictures, which no text can be made of
};

/// A file inside the file, such as a font of subtitles.
struct AttachmentSource : StreamSource {
    std::string fileName;
};

/// What an input holds; the streams of a kind in its order.
struct InputInfo {
    std::string path;
    std::string container;  ///< FFmpeg's name of the demuxer
    double duration = 0;    ///< seconds, 0 where unknown
    /// FFmpeg has it from the first and the last stamps, or from the size: where parts were joined, another comes out.
    bool isDurationGuessed = false;
    std::vector<VideoSource> video;
    std::vector<AudioSource> audio;
    std::vector<SubtitleSource> subtitles;
    std::vector<AttachmentSource> attachments;
    std::vector<StreamSource> data;  ///< streams of any other kind, such as the telemetry of a camera
    int chapters = 0;
};

/// How a picture is brought to a size of another shape.
enum class Fit { Stretch, Letterbox, Crop };

/// What becomes of pictures whose lines are of two moments.
enum class Fields {
    Ignore,       ///< as if they were of one
    Keep,         ///< they are coded as such, which takes an encoder that can, and the source's size
    Deinterlace,  ///< whole pictures are made of them
};

/// How the encoder is told to spend bits.
enum class RateControl {
    Bitrate,  ///< hold `bitrate`
    Quality,  ///< hold `quality` where the encoder can, and heed no bitrate; else as Bitrate
};

struct VideoJob {
    int streamIndex = -1;
    std::string codecId;    ///< FFmpeg's name; FFmpeg's own choice of an encoder for it is taken
    int width = 0;          ///< pixels
    int height = 0;         ///< pixels
    Fraction sampleAspect;  ///< shape of one pixel, taken for 1/1 where it is not positive
    /// FFmpeg's names of the pixel formats that will do, of which that nearest to the source's is taken; any that the
    /// encoder takes where there are none.
    std::vector<std::string> pixelFormats;
    bool keepsAlpha = true;  ///< where the source has any and the encoder can
    /// Frames per second; frames are repeated or left out to meet it. A cover and a still picture need none.
    Fraction frameRate;
    Orientation orientation;  ///< how the source's picture is turned before anything else is done to it
    Fields fields = Fields::Ignore;
    Fit fit = Fit::Stretch;
    std::string scaler;  ///< "neighbor", "fast_bilinear", "bilinear" or "bicubic", which is taken where it is empty
    RateControl rateControl = RateControl::Bitrate;
    long long bitrate = 0;  ///< bits per second, 0 leaves it to the encoder
    int quality = 0;        ///< quantiser, 1 best to 51; what lies past the encoder's own range goes to its end
    bool twoPass = false;   ///< done where the encoder can, and where it is a bitrate of a film that it holds
    std::optional<int> maxBFrames;
    std::optional<int> keyFrameInterval;  ///< frames
    int threads = 0;                      ///< 0 leaves it to the encoder
    bool isCover = false;                 ///< a cover picture of a sound file: one frame, marked as attached
    bool isStill = false;                 ///< the first frame alone
    /// Encoder options by FFmpeg's names ("preset", "profile", "tune").
    std::vector<std::pair<std::string, std::string>> options;
};

struct AudioJob {
    int streamIndex = -1;
    std::string codecId;       ///< FFmpeg's name; FFmpeg's own choice of an encoder for it is taken
    int sampleRate = 0;        ///< Hz
    std::string layout;        ///< FFmpeg's name
    std::string sampleFormat;  ///< FFmpeg's name; one the encoder takes is chosen where it is empty
    RateControl rateControl = RateControl::Bitrate;
    long long bitrate = 0;  ///< bits per second, 0 leaves it to the encoder
    int quality = 0;        ///< quantiser, 1 is best; what lies past the encoder's own range goes to its end
    std::vector<std::pair<std::string, std::string>> options;  ///< encoder options by FFmpeg's names ("profile")
};

/// Text that becomes text. Events that say nothing are left out.
struct SubtitleJob {
    int streamIndex = -1;
    std::string codecId;  ///< FFmpeg's name; FFmpeg's own choice of an encoder for it is taken
};

/// What of the input is exported; in microseconds after its beginning.
struct Span {
    static constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

    std::int64_t begin = 0;
    std::int64_t end = endless;

    /// Seconds of an input that lasts so many, 0 where unknown.
    double LengthOf(double duration) const;
};

struct ExportJob {
    std::string inputPath;
    std::string outputPath;
    std::string muxer;  ///< FFmpeg's short name of the muxer; "image2" holds one picture alone
    std::vector<std::pair<std::string, std::string>> muxerOptions;  ///< by FFmpeg's names
    bool globalHeader = false;  ///< the container keeps codec headers out of the packets
    /// No two jobs are about one stream of the input, in whose order the streams of the output are.
    std::vector<VideoJob> video;
    std::vector<AudioJob> audio;
    std::vector<SubtitleJob> subtitles;
    std::vector<int> copies;  ///< streams of the input that go over as they are, by index
    Span span;
};

struct Progress {
    double secondsDone = 0;   ///< of the output's own time line, over all passes
    double secondsTotal = 0;  ///< over all passes, 0 where unknown
    int pass = 1;
    int passes = 1;
    long long videoFrames = 0;  ///< encoded over all passes
    std::uintmax_t bytes = 0;   ///< of the output so far
};

/// A stream of the input that could not be done, and why.
struct StreamFailure {
    int streamIndex = -1;
    std::string reason;
};

/// Counts are of all streams of a kind.
struct ExportResult {
    long long videoFrames = 0;
    long long audioSamples = 0;   ///< of one channel
    long long subtitles = 0;      ///< events of encoded subtitles
    long long copiedPackets = 0;  ///< of all streams that went over as they are
    /// Bits per second of each video job that was done, in the input's order, as its opened encoder has it; 0 for none.
    std::vector<long long> videoBitrates;
    std::vector<long long> audioBitrates;  ///< the same of each audio job
    double duration = 0;                   ///< seconds, of the longest stream
    std::uintmax_t bytes = 0;              ///< size of the output
    long long jumps = 0;                   ///< of the input's time, that were closed
    long long damagedStamps = 0;           ///< of packets of the input, that were made up for
    double elapsed = 0;                    ///< seconds that it took
    /// What the output lacks of the job, as nothing could be made of it.
    std::vector<StreamFailure> leftOut;
};

/// Reads what `path` holds. Throws MediaError for a file that is missing, unreadable or no media.
InputInfo Probe(const std::string& path);

/// Tries to begin the output, without writing anything, and tells which of the job's copies stand in the way. A job
/// that cannot begin without its copies gives none: to export it tells why.
std::vector<StreamFailure> FindUnwritableCopies(const ExportJob& job);

/// What an encoder gets of a source's pictures.
struct PixelFormat {
    std::string name;                 ///< FFmpeg's
    std::vector<std::string> losses;  ///< what it has no place for, in words such as "2 of its 10 bits"
};

/// The pixel format in which pictures of a source in the given one are encoded. Throws MediaError.
PixelFormat ChoosePixelFormat(const VideoJob& job, const std::string& source);

/// A file that is in use already.
struct TakenFile {
    std::string path;  ///< empty where there is none
    const char* what;  ///< for the message, such as "the input"
};

/// Throws MediaError for a path that no file can be written to: one of the taken files, by whatever name, what is no
/// regular file, or what lies in no folder that may be written to.
void RequireWritable(const std::string& path, const std::vector<TakenFile>& taken);

/// Carries the job out, from the beginning of the input to its end. The output begins at 0, whenever the input
/// does, and its streams stay in step. Damaged packets of the input are passed over.
///
/// The output appears under its own name only when it is complete: until then it is written beside it under
/// another name, which is removed on every failure, and a file that the output replaces is kept. The input cannot
/// be its own output.
///
/// `onProgress` may be empty. It is called from the calling thread, some ten times per second and once more when
/// all is done but for the output's name. What it throws ends the export as a failure does, and is passed on.
///
/// A stream that cannot be decoded, or that holds nothing to copy, is left out, and the export begins anew without it.
///
/// Throws MediaError, also where an encoder does not know an option, where nothing of any stream can be decoded, or
/// where a stream that is to go over as it is does not say when its pictures are shown.
ExportResult RunExport(const ExportJob& job, const std::function<void(const Progress&)>& onProgress);

}  // namespace NorvexExport
