#include "common/PairFaults.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include "norvex/Norvex.h"

namespace NorvexApps {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using P = IPreset;

struct Row {
    const char* format;
    const char* codec;
    PairFault fault;
};

// clang-format off
/// As `scripts/norvex sweep` found with FFmpeg 5.1, 7.1 and 9.
constexpr Row g_rows[] = {
    {"avi",       "flac",      {"Invalid argument", "FFmpeg", "its muxer says that it carries FLAC, and does not write it"}},
    {"f4a",       "alac",      {"does not hold", "system", "F4A offers what M4A carries"}},
    {"flv",       "opus",      {"sample_rate is", "system", "FLV's rates and those of Opus have none in common"}},
    {"flv",       "pcm_s16be", {"pcm_s16le", "FFmpeg", "its demuxer knows one byte order"}},
    {"mp4",       "mp2",       {"mp3", "FFmpeg", "MP4 has one number for both, and its demuxer takes it for MP3"}},
    {"mpeg2ts",   "truehd",    {"ac3+", "FFmpeg", "its demuxer looks for an AC-3 core beside TrueHD"}},
};
// clang-format on

bool HasRules(const std::string& codecId) {
    return GetAvailableDataHelpers(P::KEY_FILTER_VIDEO_CODEC).count(codecId) > 0 ||
           GetAvailableDataHelpers(P::KEY_FILTER_AUDIO_CODEC).count(codecId) > 0;
}

}  // namespace

std::optional<PairFault> FaultOf(const std::string& formatId, const std::string& codecId) {
    const AVOutputFormat* const muxer = av_guess_format(MuxerOf(formatId).c_str(), nullptr, nullptr);
    if (muxer == nullptr) return PairFault{"has no muxer", "FFmpeg", "it writes no such container"};
    if (!HasRules(codecId))
        return PairFault{"there are no rules", "system", "the container lists a codec that has no helper"};
    for (const Row& row : g_rows) {
        if (row.format == formatId && row.codec == codecId) return row.fault;
    }
    return std::nullopt;
}

}  // namespace NorvexApps
