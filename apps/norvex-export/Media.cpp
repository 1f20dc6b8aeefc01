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
    if (job.video.empty() && job.audio.empty() && job.subtitles.empty() && job.copies.empty())
        throw MediaError("there is no stream to export");
    for (const VideoJob& video : job.video) {
        if (video.width <= 0 || video.height <= 0) throw MediaError("the size of the picture must be above 0");
        if (!IsSingle(video) && !IsPositive(ToRational(video.frameRate)))
            throw MediaError("the frame rate must be above 0");
    }
    if (job.span.begin < 0 || job.span.end <= job.span.begin) throw MediaError("the film must end after its beginning");
    for (const AudioJob& audio : job.audio) {
        if (audio.sampleRate <= 0) throw MediaError("the sample rate must be above 0");
    }
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
ExportResult RunPass(Input& input, const ExportJob& job, int pass, PassRecords& records, Muxer& muxer,
                     ProgressMeter& progress) {
    const OutputStreams streams = MakeStreams(input, job, pass, records, muxer);
    progress.BeginPass(pass);
    BeginFilm(input, job, muxer);
    muxer.Begin();
    const Owned<AVPacket> packet = Own(av_packet_alloc());
    while (WantMore(streams) && !input.IsFilmOver() && input.Read(*packet)) {
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
    result.jumps = input.Times().Jumps();
    result.damagedStamps = input.Times().DamagedStamps();
    return result;
}

void RunFirstPass(const ExportJob& job, PassRecords& records, ProgressMeter& progress) {
    Input input(job.inputPath);
    Muxer muxer = Muxer::Discarding();
    RunPass(input, job, 1, records, muxer, progress);
}

/// Why the output cannot begin; empty where it can.
std::string WhyNotWritable(Input& input, const ExportJob& job) {
    try {
        PassRecords none;
        Muxer muxer = Muxer::OnTrial(job.muxer, job.muxerOptions);
        const OutputStreams streams = MakeStreams(input, job, 1, none, muxer);
        muxer.TakeTags(input.Context(), input.StartTime());
        muxer.Begin();
        return {};
    } catch (const MediaError& error) {
        return error.what();
    }
}

ExportResult RunPasses(const ExportJob& job, const PendingFile& file, const ProgressMeter::Callback& onProgress) {
    Input input(job.inputPath);
    PassRecords records;
    for (const VideoJob& video : job.video) {
        if (MakesTwoPasses(video)) records[video.streamIndex];
    }
    const int passes = records.empty() ? 1 : 2;
    // Pictures alone are done long before the input ends.
    const bool isPicture = std::all_of(job.video.begin(), job.video.end(), IsSingle) && job.audio.empty() &&
                           job.subtitles.empty() && job.copies.empty();
    ProgressMeter progress(onProgress, file, isPicture ? 0 : job.span.LengthOf(input.Duration()), passes);
    if (passes == 2) RunFirstPass(job, records, progress);
    ExportResult result;
    {
        Muxer muxer(job.muxer, job.muxerOptions, file);
        result = RunPass(input, job, passes, records, muxer, progress);
    }
    result.bytes = file.Size();
    progress.Finish();
    return result;
}

/// Takes a stream of the input out of the job.
void Drop(ExportJob& job, int streamIndex) {
    const auto drop = [streamIndex](auto& streams, const auto& indexOf) {
        streams.erase(std::remove_if(streams.begin(), streams.end(),
                                     [&](const auto& stream) { return indexOf(stream) == streamIndex; }),
                      streams.end());
    };
    const auto indexOf = [](const auto& stream) { return stream.streamIndex; };
    drop(job.video, indexOf);
    drop(job.audio, indexOf);
    drop(job.subtitles, indexOf);
    drop(job.copies, [](int index) { return index; });
}

/// Whether the job makes more than covers and attachments.
bool HasContent(const ExportJob& job) {
    const Input input(job.inputPath);
    const auto isContent = [&input](int index) {
        const AVStream& stream = input.Stream(index);
        const AVMediaType type = stream.codecpar->codec_type;
        return !IsAttachedPicture(stream) &&
               (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE);
    };
    return !job.video.empty() || !job.audio.empty() || !job.subtitles.empty() ||
           std::any_of(job.copies.begin(), job.copies.end(), isContent);
}

}  // namespace

double Span::LengthOf(double duration) const {
    const double whole = duration * AV_TIME_BASE;
    const auto from = static_cast<double>(begin);
    if (end == endless) return std::max(0.0, whole - from) / AV_TIME_BASE;
    const auto until = static_cast<double>(end);
    return std::max(0.0, (whole > 0 ? std::min(whole, until) : until) - from) / AV_TIME_BASE;
}

InputInfo Probe(const std::string& path) {
    const Input input(path);
    InputInfo info;
    info.path = path;
    info.container = input.Container();
    info.duration = input.Duration();
    info.isDurationGuessed = !input.StatesDuration();
    DescribeStreams(input, info);
    const auto isDecodable = [](const StreamSource& stream) { return stream.isDecodable; };
    const auto hasAny = [&](const auto& list) { return std::any_of(list.begin(), list.end(), isDecodable); };
    if (!hasAny(info.video) && !hasAny(info.audio) && !hasAny(info.subtitles)) {
        throw MediaError("cannot open " + input.QuotedName() + ": it holds neither pictures nor sound nor subtitles");
    }
    return info;
}

std::vector<StreamFailure> FindUnwritableCopies(const ExportJob& job) {
    if (job.copies.empty()) return {};
    Input input(job.inputPath);
    if (WhyNotWritable(input, job).empty()) return {};
    ExportJob part = job;
    part.copies.clear();
    const bool hasOthers = !part.video.empty() || !part.audio.empty() || !part.subtitles.empty();
    if (hasOthers && !WhyNotWritable(input, part).empty()) return {};
    std::vector<StreamFailure> unwritable;
    for (const int index : job.copies) {
        part.copies.push_back(index);
        std::string reason = WhyNotWritable(input, part);
        if (reason.empty()) continue;
        unwritable.push_back({index, std::move(reason)});
        part.copies.pop_back();
    }
    return unwritable;
}

ExportResult RunExport(const ExportJob& job, const std::function<void(const Progress&)>& onProgress) {
    const auto begin = std::chrono::steady_clock::now();
    RequireComplete(job);
    RequireWritable(job.outputPath, {{job.inputPath, "the input"}});
    ExportJob possible = job;
    std::vector<StreamFailure> leftOut;
    for (;;) {
        try {
            PendingFile file(job.outputPath);
            ExportResult result = RunPasses(possible, file, onProgress);
            file.Commit();
            result.leftOut = std::move(leftOut);
            result.elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
            return result;
        } catch (const StreamError& error) {
            Drop(possible, error.StreamIndex());
            if (!HasContent(possible)) throw;
            leftOut.push_back({error.StreamIndex(), error.what()});
        }
    }
}

}  // namespace NorvexExport
