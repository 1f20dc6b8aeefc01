#include "FileStreams.h"

#include <fmt/format.h>

extern "C" {
#include <libavutil/log.h>
}

#include "norvex-export/media/Input.h"
#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using NorvexExport::Media::Input;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

SP<const ICodecData> DataOf(const AVCodecParameters& parameters) {
    if (parameters.extradata_size <= 0) return nullptr;
    return CodecData::Create({parameters.extradata, parameters.extradata + parameters.extradata_size});
}

FileStream Describe(const Input& input, const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    FileStream described;
    described.codecId = avcodec_get_name(parameters.codec_id);
    described.words = described.codecId;
    Core::Property settings(std::string("stream"));
    settings.SetChildT(C::TAG_CODEC_ID, described.codecId);
    settings.SetChildT(C::TAG_FOURCC, parameters.codec_tag);
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO) {
        const AVRational rate = input.FrameRate(stream);
        const bool isCover = NorvexExport::Media::IsAttachedPicture(stream);
        settings.SetChildT(V::TAG_WIDTH, parameters.width);
        settings.SetChildT(V::TAG_HEIGHT, parameters.height);
        settings.SetChildT(V::TAG_FPS, Core::Ratio(rate.num, rate.den));
        settings.SetChildT(V::TAG_COVER_FLAG, isCover);
        described.words += fmt::format(", {}x{}", parameters.width, parameters.height);
        described.words += isCover ? ", a cover" : fmt::format(", {:.5g} fps", av_q2d(rate));
        described.description = FormatCodecVideo::Create(settings, parameters.format, DataOf(parameters));
    } else if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
        const std::string layout = NorvexExport::Media::ChannelLayout(parameters.ch_layout).Name();
        const char* const format = av_get_sample_fmt_name(static_cast<AVSampleFormat>(parameters.format));
        settings.SetChildT(A::TAG_SAMPLE_RATE, parameters.sample_rate);
        settings.SetChildT(A::TAG_LAYOUT, layout);
        if (format != nullptr) settings.SetChildT(A::TAG_SAMPLE_FORMAT, format);
        described.words += fmt::format(", {} Hz, {}", parameters.sample_rate, layout);
        described.description = FormatCodecAudio::Create(settings, DataOf(parameters));
    } else {
        described.description = FormatCodecSubtitle::Create(settings);
    }
    const AVDictionaryEntry* const language = av_dict_get(stream.metadata, "language", nullptr, 0);
    const bool isKnown = language != nullptr && std::string(language->value) != "und";
    if (isKnown) described.words += std::string(", ") + language->value;
    return described;
}

}  // namespace

FileStreams ReadStreams(const std::string& path) {
    av_log_set_level(AV_LOG_QUIET);  // what fails is told in one line
    const Input input(path);
    FileStreams file;
    file.path = path;
    file.container = input.Container();
    for (int i = 0; i < input.StreamCount(); ++i) file.streams.push_back(Describe(input, input.Stream(i)));
    return file;
}

}  // namespace NorvexRules
