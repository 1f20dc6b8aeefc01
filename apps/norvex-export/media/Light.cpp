#include "Light.h"

#include <cstring>
#include <new>
#include <string>

#include "Decoding.h"

namespace NorvexExport::Media {

namespace {

/// Takes a copy of what the bytes are, if there are as many as that.
template <class T>
void TakeFrom(const void* data, std::size_t size, std::optional<T>& value) {
    if (data == nullptr || size < sizeof(T)) return;
    std::memcpy(&value.emplace(), data, sizeof(T));
}

void TakeFromStream(const AVStream& stream, Light& light) {
    const auto take = [&light](AVPacketSideDataType type, const void* data, std::size_t size) {
        if (type == AV_PKT_DATA_MASTERING_DISPLAY_METADATA) TakeFrom(data, size, light.display);
        if (type == AV_PKT_DATA_CONTENT_LIGHT_LEVEL) TakeFrom(data, size, light.content);
    };
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
    for (int i = 0; i < stream.nb_side_data; ++i) {
        take(stream.side_data[i].type, stream.side_data[i].data, stream.side_data[i].size);
    }
#else
    for (int i = 0; i < stream.codecpar->nb_coded_side_data; ++i) {
        const AVPacketSideData& data = stream.codecpar->coded_side_data[i];
        take(data.type, data.data, data.size);
    }
#endif
}

void TakeFromFirstPicture(const Input& known, int index, Light& light) {
    Input input(known.Path());
    Decoder decoder(input.Select(index));
    const Owned<AVPacket> packet = Own(av_packet_alloc());
    // Pictures that stand in another order come later by some packets.
    constexpr int patience = 100;
    for (int i = 0; i < patience && !decoder.HasDecoded() && input.Read(*packet); ++i) {
        decoder.Decode(packet.get(), [&light](AVFrame& frame) {
            const auto take = [&frame](AVFrameSideDataType type, auto& value) {
                const AVFrameSideData* const data = av_frame_get_side_data(&frame, type);
                if (data != nullptr) TakeFrom(data->data, data->size, value);
            };
            take(AV_FRAME_DATA_MASTERING_DISPLAY_METADATA, light.display);
            take(AV_FRAME_DATA_CONTENT_LIGHT_LEVEL, light.content);
        });
    }
}

void AddSideData(AVCodecContext& encoder, AVPacketSideDataType type, const void* data, std::size_t size) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 29, 100)
    AVPacketSideData* const added =
        av_packet_side_data_new(&encoder.coded_side_data, &encoder.nb_coded_side_data, type, size, 0);
    if (added == nullptr) throw std::bad_alloc();
#else
    const auto count = static_cast<std::size_t>(encoder.nb_coded_side_data) + 1;
    void* const list = av_realloc_array(encoder.coded_side_data, count, sizeof *encoder.coded_side_data);
    if (list == nullptr) throw std::bad_alloc();
    encoder.coded_side_data = static_cast<AVPacketSideData*>(list);
    AVPacketSideData* const added = &encoder.coded_side_data[count - 1];
    *added = {static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE)), size, type};
    if (added->data == nullptr) throw std::bad_alloc();
    encoder.nb_coded_side_data = static_cast<int>(count);
#endif
    std::memcpy(added->data, data, size);
}

}  // namespace

Light LightOf(const Input& input, const AVStream& stream) {
    Light light;
    if (stream.codecpar->color_trc != AVCOL_TRC_SMPTE2084) return light;
    TakeFromStream(stream, light);
    if (!light.display && !light.content) TakeFromFirstPicture(input, stream.index, light);
    return light;
}

std::string X265ParametersOf(const Light& light) {
    std::string parameters;
    const auto steps = [](AVRational value, int perUnit) {
        return std::to_string(av_rescale(value.num, perUnit, value.den));
    };
    if (light.display && light.display->has_primaries != 0 && light.display->has_luminance != 0) {
        const auto point = [&steps](const AVRational(&xy)[2]) {
            return "(" + steps(xy[0], 50000) + "," + steps(xy[1], 50000) + ")";
        };
        const AVMasteringDisplayMetadata& display = *light.display;
        parameters += ":master-display=G" + point(display.display_primaries[1]) + "B" +
                      point(display.display_primaries[2]) + "R" + point(display.display_primaries[0]) + "WP" +
                      point(display.white_point) + "L(" + steps(display.max_luminance, 10000) + "," +
                      steps(display.min_luminance, 10000) + ")";
    }
    if (light.content) {
        parameters +=
            ":max-cll=" + std::to_string(light.content->MaxCLL) + "," + std::to_string(light.content->MaxFALL);
    }
    return parameters;
}

void TellLight(const Light& light, AVCodecContext& encoder) {
    if (light.display) {
        AddSideData(encoder, AV_PKT_DATA_MASTERING_DISPLAY_METADATA, &*light.display, sizeof *light.display);
    }
    if (light.content) {
        AddSideData(encoder, AV_PKT_DATA_CONTENT_LIGHT_LEVEL, &*light.content, sizeof *light.content);
    }
}

}  // namespace NorvexExport::Media
