#include "Basics.h"

#include <algorithm>
#include <array>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/pixdesc.h>
}

namespace NorvexExport::Media {

namespace {

std::string ReasonOf(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

}  // namespace

std::string Quoted(std::string text) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return "'" + text + "'";
}

void Fail(const std::string& what, int error) {
    throw MediaError(what + ": " + ReasonOf(error));
}

void Fail(const std::string& what, const std::error_code& error) {
    throw MediaError(what + ": " + error.message());
}

StreamError::StreamError(const AVStream& stream, const std::string& what, int error)
    : MediaError(error < 0 ? what + ": " + ReasonOf(error) : what), m_streamIndex(stream.index) {}

int Check(int result, const char* what) {
    if (result < 0) Fail(what, result);
    return result;
}

std::string WithOptions(const Options& options) {
    std::string text;
    for (const auto& [name, value] : options) text += (text.empty() ? " with " : ", ") + name + "=" + value;
    return text;
}

AVRational ToRational(const Fraction& fraction) {
    return {fraction.numerator, fraction.denominator};
}

Fraction ToFraction(AVRational rational) {
    return {rational.num, rational.den};
}

bool IsPositive(AVRational rational) {
    return rational.num > 0 && rational.den > 0;
}

AVRational KnownAspect(AVRational aspect) {
    return IsPositive(aspect) ? aspect : AVRational{1, 1};
}

const std::int32_t* DisplayMatrix(const AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
    std::size_t size = 0;
    const std::uint8_t* const data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
#else
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVPacketSideData* const side =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    const std::size_t size = side != nullptr ? side->size : 0;
    const std::uint8_t* const data = side != nullptr ? side->data : nullptr;
#endif
    return size >= 9 * sizeof(std::int32_t) ? reinterpret_cast<const std::int32_t*>(data) : nullptr;
}

bool HasFlag(AVPixelFormat format, unsigned flag) {
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor != nullptr && (descriptor->flags & flag) != 0;
}

bool IsYuv(AVPixelFormat format) {
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor != nullptr && (descriptor->flags & AV_PIX_FMT_FLAG_RGB) == 0 && descriptor->nb_components >= 3;
}

ChannelLayout::ChannelLayout(const AVChannelLayout& layout) {
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&m_layout, layout.nb_channels);
    } else {
        Check(av_channel_layout_copy(&m_layout, &layout), "cannot copy a channel layout");
    }
}

std::string ChannelLayout::Name() const {
    std::array<char, 256> text{};
    Check(av_channel_layout_describe(&m_layout, text.data(), text.size()), "cannot name a channel layout");
    return text.data();
}

}  // namespace NorvexExport::Media
