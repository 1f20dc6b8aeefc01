// Telling what becomes of a film's streams in a container against beginning a file with them.

extern "C" {
#include <libavformat/avformat.h>
}

#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "Row.h"
#include "norvex/Norvex.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

namespace {

/// MPEG-2 and AC-3 go into Matroska as they are, and SubRip is refused by the book and encoded.
std::vector<SP<const IFormatCodec>> Film() {
    Core::Property video(std::string("stream"));
    video.SetChildT(C::TAG_CODEC_ID, V::CODEC_ID_MPEG2VIDEO);
    video.SetChildT(C::TAG_FOURCC, 0);
    video.SetChildT(V::TAG_WIDTH, 1920);
    video.SetChildT(V::TAG_HEIGHT, 1080);
    video.SetChildT(V::TAG_FPS, Core::Ratio(24000, 1001));
    Core::Property audio(std::string("stream"));
    audio.SetChildT(C::TAG_CODEC_ID, A::CODEC_ID_AC3);
    audio.SetChildT(C::TAG_FOURCC, 0);
    audio.SetChildT(A::TAG_SAMPLE_RATE, 48000);
    audio.SetChildT(A::TAG_LAYOUT, A::TAG_CH_LAYOUT_5POINT1);
    Core::Property subtitles(std::string("stream"));
    subtitles.SetChildT(C::TAG_CODEC_ID, IFormatCodecSubtitle::CODEC_ID_SUBRIP);
    return {FormatCodecVideo::Create(video, 0, nullptr), FormatCodecAudio::Create(audio, nullptr),
            FormatCodecSubtitle::Create(subtitles)};
}

void BeginFile() {
    AVFormatContext* file = nullptr;
    avformat_alloc_output_context2(&file, nullptr, "matroska", nullptr);
    for (const AVCodecID id : {AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_AC3, AV_CODEC_ID_SUBRIP}) {
        AVCodecParameters& parameters = *avformat_new_stream(file, nullptr)->codecpar;
        parameters.codec_id = id;
        parameters.codec_type = avcodec_get_type(id);
        parameters.width = 1920;
        parameters.height = 1080;
        parameters.sample_rate = 48000;
        av_channel_layout_default(&parameters.ch_layout, 6);
    }
    avio_open_dyn_buf(&file->pb);
    const int result = avformat_write_header(file, nullptr);
    std::uint8_t* bytes = nullptr;
    avio_close_dyn_buf(file->pb, &bytes);
    av_free(bytes);
    avformat_free_context(file);
    if (result < 0) throw std::runtime_error("Matroska takes no film");
}

}  // namespace

std::vector<Row> FittingRows() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    const auto film = Film();
    const auto inOne = [film] { FitInto(IFormatFile::FORMAT_MATROSKA, film); };
    return {{"fit.one", "a film's three streams in one container", "beginning a file with them", 1.0, inOne, BeginFile},
            {"fit.all", "a film's three streams in all 64 containers", "in one, 64 times", 1.0,
             [film] { FitIntoAll(film); },
             [inOne] {
                 for (int i = 0; i < 64; ++i) inOne();
             }}};
}

}  // namespace NorvexBench
