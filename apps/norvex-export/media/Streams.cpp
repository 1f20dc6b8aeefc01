#include "Streams.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "AudioStream.h"
#include "CopiedStream.h"
#include "Filtering.h"
#include "SubtitleStream.h"
#include "VideoStream.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace NorvexExport::Media {

namespace {

/// The stream of a subtitle job, which must be text.
const AVStream& SelectText(Input& input, const SubtitleJob& job) {
    const AVStream& stream = input.Select(job.streamIndex, AVMEDIA_TYPE_SUBTITLE);
    if (IsText(stream.codecpar->codec_id)) return stream;
    throw MediaError("the subtitle stream " + std::to_string(stream.index) + " of " + input.QuotedName() +
                     " is no text but " + Quoted(avcodec_get_name(stream.codecpar->codec_id)));
}

/// A stream to be made, once all are known.
struct Order {
    const AVStream* source;
    std::function<std::unique_ptr<OutputStream>()> make;
};

/// What the film must be late for the first picture of a stream to stand at a whole number of pictures.
std::int64_t DelayForGrid(const Input& input, const AVStream& stream, AVRational rate) {
    if (stream.start_time == AV_NOPTS_VALUE) return 0;
    const std::int64_t first = input.FilmTime(stream.start_time, stream);
    if (first <= 0) return 0;
    const AVRational unit = av_get_time_base_q();
    constexpr std::int64_t rounding = 100;
    const std::int64_t number = av_rescale_q_rnd(first - rounding, unit, av_inv_q(rate), AV_ROUND_UP);
    return std::max<std::int64_t>(0, av_rescale_q(number, av_inv_q(rate), unit) - first);
}

}  // namespace

OutputStreams MakeStreams(Input& input, const ExportJob& job, int pass, PassRecords& records, Muxer& muxer) {
    // All are selected before the first is made: together they tell when the output begins.
    const bool globalHeader = job.globalHeader || muxer.WantsGlobalHeader();
    std::vector<Order> orders;
    for (const VideoJob& video : job.video) {
        const AVStream& stream = input.Select(video.streamIndex, AVMEDIA_TYPE_VIDEO);
        const auto record = records.find(video.streamIndex);
        const Pass own = record != records.end() ? Pass{pass, 2, &record->second} : Pass();
        // The first of two passes hears the whole job, as the second does, for the same beginning; it makes only what
        // is encoded twice.
        if (!records.empty() && pass == 1 && !own.IsRecording()) continue;
        orders.push_back(
            {&stream, [&, own] { return MakeVideoStream(input, stream, video, globalHeader, own, muxer); }});
    }
    const bool isWhole = records.empty() || pass == 2;
    for (const AudioJob& audio : job.audio) {
        const AVStream& stream = input.Select(audio.streamIndex, AVMEDIA_TYPE_AUDIO);
        if (isWhole) {
            orders.push_back({&stream, [&] { return MakeAudioStream(input, stream, audio, globalHeader, muxer); }});
        }
    }
    for (const SubtitleJob& subtitle : job.subtitles) {
        const AVStream& stream = SelectText(input, subtitle);
        if (isWhole) {
            orders.push_back(
                {&stream, [&] { return MakeSubtitleStream(input, stream, subtitle, globalHeader, muxer); }});
        }
    }
    for (const int index : job.copies) {
        const AVStream& stream = input.Select(index);
        if (isWhole) orders.push_back({&stream, [&] { return MakeCopiedStream(input, stream, muxer); }});
    }
    const auto place = [&muxer](const Order& order) {
        const bool isPicture = order.source->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        return std::pair(muxer.WantsPictureFirst() && !isPicture, order.source->index);
    };
    std::sort(orders.begin(), orders.end(),
              [&place](const Order& one, const Order& two) { return place(one) < place(two); });
    OutputStreams streams;
    for (const Order& order : orders) streams.push_back(order.make());
    return streams;
}

void BeginFilm(Input& input, const ExportJob& job, Muxer& muxer) {
    const auto isPicture = [&input](int index) {
        const AVStream& stream = input.Stream(index);
        return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !IsAttachedPicture(stream);
    };
    const auto copied = std::find_if(job.copies.begin(), job.copies.end(), isPicture);
    input.Begin(job.span, copied != job.copies.end() ? *copied : -1);
    if (!Muxer::PlacesStreams(job.muxer)) {
        std::int64_t delay = 0;
        for (auto video = job.video.rbegin(); video != job.video.rend(); ++video) {
            if (IsSingle(*video)) continue;
            delay = DelayForGrid(input, input.Stream(video->streamIndex), ToRational(video->frameRate));
        }
        input.Delay(delay);
    }
    muxer.TakeTags(input.Context(), input.FilmStart());
}

}  // namespace NorvexExport::Media
