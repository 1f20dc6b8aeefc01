#include "norvex/interfaces/Proc/FFmpegCodecFactory.h"

#include <unordered_map>

#include "norvex/interfaces/Proc/FFmpegLayer.h"

namespace Norvex::Proc {

struct FFmpegCodecFactory::Encoders {
    struct Encoder {
        std::string name;
        bool stable;
        bool software;
    };
    std::unordered_map<std::string, std::vector<Encoder>> byCodec;
};

namespace {

constexpr int hardwareCapabilities = AV_CODEC_CAP_HARDWARE | AV_CODEC_CAP_HYBRID;

}  // namespace

SP<ICodecFactory> FFmpegCodecFactory::Create() {
    return SP<ICodecFactory>(new FFmpegCodecFactory);
}

FFmpegCodecFactory::FFmpegCodecFactory()
    : m_encoders([] {
          auto encoders = std::make_unique<Encoders>();
          void* position = nullptr;
          while (const AVCodec* codec = av_codec_iterate(&position)) {
              const AVCodecDescriptor* const described = avcodec_descriptor_get(codec->id);
              if (!av_codec_is_encoder(codec) || described == nullptr) continue;
              encoders->byCodec[described->name].push_back({codec->name,
                                                            (codec->capabilities & AV_CODEC_CAP_EXPERIMENTAL) == 0,
                                                            (codec->capabilities & hardwareCapabilities) == 0});
          }
          return encoders;
      }()) {}

FFmpegCodecFactory::~FFmpegCodecFactory() = default;

std::vector<std::string> FFmpegCodecFactory::ListEncoders(const std::string& codecId, bool onlyStable,
                                                          bool onlySoftware) const {
    std::vector<std::string> names;
    const auto encoders = m_encoders->byCodec.find(codecId);
    if (encoders == m_encoders->byCodec.end()) return names;
    for (const Encoders::Encoder& encoder : encoders->second) {
        if ((onlyStable && !encoder.stable) || (onlySoftware && !encoder.software)) continue;
        names.push_back(encoder.name);
    }
    return names;
}

}  // namespace Norvex::Proc
