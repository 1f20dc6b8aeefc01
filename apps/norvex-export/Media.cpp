#include "Media.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "media/Basics.h"
#include "media/EncoderFacts.h"
#include "media/Encoding.h"
#include "media/Files.h"
#include "media/Filtering.h"
#include "media/Input.h"
#include "media/Muxing.h"
#include "media/Streams.h"

namespace NorvexExport {

using namespace Media;

namespace {

/// How far the output has come, in seconds.
double FarthestSecond(const OutputStreams& streams) {
    double farthest = 0;
    for (const auto& stream : streams) farthest = std::max(farthest, stream->Seconds());
    return farthest;
}

class ProgressMeter {
public:
    using Callback = std::function<void(const Progress&)>;

    /// `duration` is that of one pass in seconds, 0 where unknown.
    ProgressMeter(const Callback& callback, const PendingFile& file, double duration, int passes)
        : m_callback(callback), m_file(file), m_duration(duration), m_passes(passes) {}

    void BeginPass(int pass) {
        if (pass > 1) m_before = m_duration > 0 ? m_duration * (pass - 1) : m_before + m_inPass;
        m_framesBefore += std::exchange(m_framesInPass, 0);
        m_inPass = 0;
        m_pass = pass;
    }

    /// The streams have come so far in the pass.
    void Update(const OutputStreams& streams) {
        m_inPass = std::max(m_inPass, FarthestSecond(streams));
        if (m_duration > 0) m_inPass = std::min(m_inPass, m_duration);
        constexpr std::chrono::milliseconds interval(100);
        const auto now = std::chrono::steady_clock::now();
        if (m_reported && now - *m_reported < interval) return;
        m_reported = now;
        ExportResult soFar;
        for (const auto& stream : streams) stream->Report(soFar);
        m_framesInPass = soFar.videoFrames;
        Report(m_before + m_inPass);
    }

    /// All passes are done, whatever the input claimed that they would last.
    void Finish() { Report(m_duration > 0 ? m_duration * m_passes : m_before + m_inPass); }

private:
    void Report(double seconds) const {
        if (!m_callback) return;
        m_callback({seconds, m_duration * m_passes, m_pass, m_passes, m_framesBefore + m_framesInPass, m_file.Size()});
    }

    const Callback& m_callback;
    const PendingFile& m_file;
    double m_duration;
    int m_passes;
    int m_pass = 1;
    double m_before = 0;  // seconds of the passes before this one
    double m_inPass = 0;
    long long m_framesBefore = 0;  // the same of pictures
    long long m_framesInPass = 0;
    std::optional<std::chrono::steady_clock::time_point> m_reported;
};

void RequireComplete(const ExportJob& job) {
    if (!job.video && !job.audio && !job.subtitle && job.copies.empty())
        throw MediaError("there is no stream to export");
    if (job.video) {
        const VideoJob& video = *job.video;
        if (video.width <= 0 || video.height <= 0) throw MediaError("the size of the picture must be above 0");
        if (!IsSingle(video) && !IsPositive(ToRational(video.frameRate)))
            throw MediaError("the frame rate must be above 0");
    }
    if (job.audio && job.audio->sampleRate <= 0) throw MediaError("the sample rate must be above 0");
}

/// A second pass needs an encoder that can make it, and a bitrate to share out.
bool MakesTwoPasses(const VideoJob& job) {
    if (!job.twoPass || job.bitrate <= 0 || IsSingle(job)) return false;
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_VIDEO);
    return PassLogOf(codec) != PassLog::None && !HoldsQuality(job.rateControl, codec);
}

bool WantMore(const OutputStreams& streams) {
    return std::any_of(streams.begin(), streams.end(), [](const auto& stream) { return stream->WantsMore(); });
}

/// Carries all packets of the input through the streams. All fields of what it returns are set but
/// `bytes` and `elapsed`.
ExportResult RunPass(Input& input, const ExportJob& job, const Pass& pass, Muxer& muxer, ProgressMeter& progress) {
    const OutputStreams streams = MakeStreams(input, job, pass, muxer);
    progress.BeginPass(pass.number);
    muxer.Begin();
    const Owned<AVPacket> packet = Own(av_packet_alloc());
    while (WantMore(streams) && input.Read(*packet)) {
        for (const auto& stream : streams) {
            if (stream->SourceIndex() == packet->stream_index) stream->Take(*packet);
        }
        progress.Update(streams);
    }
    for (const auto& stream : streams) {
        stream->Finish();
        progress.Update(streams);
    }
    muxer.Finish();

    ExportResult result;
    for (const auto& stream : streams) stream->Report(result);
    result.duration = FarthestSecond(streams);
    return result;
}

void RunFirstPass(const ExportJob& job, const Pass& pass, ProgressMeter& progress) {
    Input input(job.inputPath);
    Muxer muxer = Muxer::Discarding();
    RunPass(input, job, pass, muxer, progress);
}

}  // namespace

InputInfo Probe(const std::string& path) {
    const Input input(path);
    const AVStream* const video = input.BestStream(AVMEDIA_TYPE_VIDEO, -1);
    const AVStream* const audio = input.BestStream(AVMEDIA_TYPE_AUDIO, video != nullptr ? video->index : -1);
    const AVStream* const timed = video != nullptr ? video : audio;
    const AVStream* const subtitle = input.BestStream(AVMEDIA_TYPE_SUBTITLE, timed != nullptr ? timed->index : -1);
    if (timed == nullptr && subtitle == nullptr) {
        throw MediaError("cannot open " + input.QuotedName() + ": it holds neither pictures nor sound nor subtitles");
    }
    InputInfo info;
    info.path = path;
    info.container = input.Container();
    info.duration = input.Duration();
    if (video != nullptr) info.video = DescribeVideo(input, *video);
    if (audio != nullptr) info.audio = DescribeAudio(*audio);
    if (subtitle != nullptr) info.subtitle = DescribeSubtitle(*subtitle);
    return info;
}

ExportResult RunExport(const ExportJob& job, const std::function<void(const Progress&)>& onProgress) {
    const auto begin = std::chrono::steady_clock::now();
    RequireComplete(job);
    Input input(job.inputPath);
    RequireWritable(job.outputPath, {{job.inputPath, "the input"}});
    PendingFile file(job.outputPath);

    const int passes = job.video && MakesTwoPasses(*job.video) ? 2 : 1;
    // A picture alone is done long before the input ends.
    const bool isPicture = job.video && IsSingle(*job.video) && !job.audio && !job.subtitle && job.copies.empty();
    ProgressMeter progress(onProgress, file, isPicture ? 0 : input.Duration(), passes);
    std::optional<PassRecord> record;
    if (passes == 2) {
        RunFirstPass(job, Pass{1, passes, &record.emplace()}, progress);
    }
    const Pass pass = {passes, passes, record ? &*record : nullptr};
    ExportResult result;
    {
        Muxer muxer(job.muxer, job.muxerOptions, file);
        result = RunPass(input, job, pass, muxer, progress);
    }
    result.bytes = file.Size();
    progress.Finish();
    file.Commit();
    result.elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return result;
}

}  // namespace NorvexExport
