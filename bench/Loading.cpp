// What a process pays once: loading the library, and the first lookup. Each figure is of a process of its own.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "Row.h"
#include "norvex/Norvex.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;

namespace {

struct Load {
    double ffmpeg, empty, library, lookup;  ///< seconds
    double bytes;
};

Load LoadOnce() {
    static const std::string command = std::string(NORVEX_LOAD_PROBE) + ' ' + NORVEX_LIBAVCODEC + ' ' +
                                       NORVEX_LIBAVFORMAT + ' ' + NORVEX_EMPTY_LIBRARY + ' ' + NORVEX_LIBRARY;
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) throw std::runtime_error("the libraries did not load");
    Load load{};
    const int read =
        std::fscanf(pipe, "%lf %lf %lf %lf %lf", &load.ffmpeg, &load.empty, &load.library, &load.lookup, &load.bytes);
    if (pclose(pipe) != 0 || read != 5) throw std::runtime_error("the libraries did not load");
    return load;
}

/// The least of three processes: what caches lost to other programs is no cost of the library.
Measurement Of(double Load::*part) {
    return [part] { return std::min({LoadOnce().*part, LoadOnce().*part, LoadOnce().*part}); };
}

/// The heap that the whole book takes, all that its helpers keep included. Nothing may have looked one up before.
double BytesOfBook() {
    const auto inUse = [] { return static_cast<double>(mallinfo2().uordblks); };
    Core::Property stream(IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT(IFormatCodecAudio::TAG_CODEC_ID, "aac");
    stream.SetChildT(IFormatCodecAudio::TAG_SAMPLE_RATE, 44100);
    stream.SetChildT(IFormatCodecAudio::TAG_SAMPLE_FORMAT, "s16");
    stream.SetChildT(IFormatCodecAudio::TAG_LAYOUT, "stereo");
    const double before = inUse();
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    for (const std::string& kind :
         {IPreset::KEY_FORMAT, IPreset::KEY_FILTER_VIDEO_CODEC, IPreset::KEY_FILTER_AUDIO_CODEC}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            // Both keep all that they read. The stream lacks what codecs have defaults of.
            CheckPreset(Core::Property("preset"), {{kind, id, helper}});
            Core::Property corrected = stream;
            helper->CorrectFormatCodec(corrected);
        }
    }
    return inUse() - before;
}

}  // namespace

std::vector<Row> LoadingRows() {
    const double book = BytesOfBook();
    // Pages come in batches, of which the system has its own mind: the most of three.
    const Measurement mostBytes = [] { return std::max({LoadOnce().bytes, LoadOnce().bytes, LoadOnce().bytes}); };
    return {
        {"load.library", "loading the library", "loading FFmpeg's", 0.025, Of(&Load::library), Of(&Load::ffmpeg)},
        // The dynamic linker walks through all that FFmpeg needs for whatever stands on it.
        {"load.empty", "loading the library", "an empty one on FFmpeg's", 2.0, Of(&Load::library), Of(&Load::empty)},
        {"load.lookup", "the first lookup of a codec", "loading FFmpeg's", 0.05, Of(&Load::lookup), Of(&Load::ffmpeg)},
        {"load.resident", "memory of the library", "2 MB", 1.0, Of(&Load::bytes), Measurement([] { return 2e6; }),
         true},
        {"load.kept", "memory of the library, the whole book kept", "1.2 MB", 1.0,
         Measurement([mostBytes, book] { return mostBytes() + book; }), Measurement([] { return 1.2e6; }), true},
    };
}

}  // namespace NorvexBench
