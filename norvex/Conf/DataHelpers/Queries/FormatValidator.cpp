#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/Census.h"
#include "norvex/Conf/DataHelpers/Queries/Muxers.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IPreset.h"

namespace Norvex::Conf {

namespace {

/// The census: an id for every entry of FFmpeg's list of codecs that the factory can encode, repeats included.
std::vector<AVCodecID>& Census() {
    static std::vector<AVCodecID>& encoders = Lasting(std::vector<AVCodecID>());
    return encoders;
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Asked of FFmpeg, and not of GetFFCodecsMap, which would be made for this alone.
std::string TextId(AVCodecID id) {
    const AVCodecDescriptor* const codec = avcodec_descriptor_get(id);
    return codec != nullptr ? codec->name : std::string();
}

template <class Predicate>
void RemoveIf(std::vector<std::string>& names, Predicate predicate) {
    names.erase(std::remove_if(names.begin(), names.end(), predicate), names.end());
}

/// What FFmpeg offers for the muxer out of the census, sorted and without repeats.
std::vector<std::string> AskFFmpeg(const AVOutputFormat* muxer, AVMediaType type) {
    std::vector<AVCodecID> ids = Census();
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());

    std::vector<std::string> names;
    for (const AVCodecID id : ids) {
        // A negative answer says that the muxer does not know, which is no yes.
        if (avcodec_get_type(id) != type || avformat_query_codec(muxer, id, 0) != 1) continue;
        if (std::string name = TextId(id); !name.empty()) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

/// A codec without a rule book cannot be offered. Subtitle codecs need none.
void RemoveWithoutHelper(std::vector<std::string>& names, AVMediaType type) {
    if (type != AVMEDIA_TYPE_VIDEO && type != AVMEDIA_TYPE_AUDIO) return;
    const auto& helpers = GetAvailableDataHelpers(type == AVMEDIA_TYPE_VIDEO ? IPreset::KEY_FILTER_VIDEO_CODEC
                                                                             : IPreset::KEY_FILTER_AUDIO_CODEC);
    RemoveIf(names, [&helpers](const std::string& name) { return helpers.count(name) == 0; });
}

std::vector<std::string> GetSupportedCodecs(AVMediaType type, const std::string& format,
                                            const std::vector<std::string>& fallback,
                                            const std::vector<std::string>& exclusions) {
    if (CensusIsEmpty()) return fallback;
    const AVOutputFormat* const muxer = FindMuxer(format);
    if (muxer == nullptr) return fallback;

    std::vector<std::string> names = AskFFmpeg(muxer, type);
    RemoveIf(names, [&exclusions](const std::string& name) { return Contains(exclusions, name); });
    RemoveWithoutHelper(names, type);
    if (names.empty()) return fallback;
    for (const std::string& name : fallback) {
        if (!Contains(names, name)) names.push_back(name);
    }
    return names;
}

}  // namespace

bool CensusIsEmpty() {
    return Census().empty();
}

bool CensusHas(AVCodecID codec) {
    return std::find(Census().begin(), Census().end(), codec) != Census().end();
}

bool HasDecoder(AVCodecID codec) {
    // avcodec_find_decoder() goes through every codec, encoders too.
    static const std::vector<AVCodecID>& decoders = Lasting([] {
        std::vector<AVCodecID> ids;
        void* position = nullptr;
        while (const AVCodec* entry = av_codec_iterate(&position)) {
            if (av_codec_is_decoder(entry) != 0) ids.push_back(entry->id);
        }
        std::sort(ids.begin(), ids.end());
        return ids;
    }());
    return std::binary_search(decoders.begin(), decoders.end(), codec);
}

FormatValidator& FormatValidator::Instance() {
    static FormatValidator validator;
    return validator;
}

void FormatValidator::FillEncoders(const SP<Proc::ICodecFactory>& factory) {
    std::vector<AVCodecID>& encoders = Census();
    encoders.clear();
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position)) {
        if (!factory->ListEncoders(TextId(codec->id), true, true).empty()) encoders.push_back(codec->id);
    }
}

std::vector<std::string> FormatValidator::GetSupportedVideoCodecs(const std::string& format,
                                                                  const std::vector<std::string>& fallback,
                                                                  const std::vector<std::string>& exclusions) {
    return GetSupportedCodecs(AVMEDIA_TYPE_VIDEO, format, fallback, exclusions);
}

std::vector<std::string> FormatValidator::GetSupportedAudioCodecs(const std::string& format,
                                                                  const std::vector<std::string>& fallback,
                                                                  const std::vector<std::string>& exclusions) {
    return GetSupportedCodecs(AVMEDIA_TYPE_AUDIO, format, fallback, exclusions);
}

std::vector<std::string> FormatValidator::GetSupportedSubtitleCodecs(const std::string& format,
                                                                     const std::vector<std::string>& fallback,
                                                                     const std::vector<std::string>& exclusions) {
    return GetSupportedCodecs(AVMEDIA_TYPE_SUBTITLE, format, fallback, exclusions);
}

}  // namespace Norvex::Conf
