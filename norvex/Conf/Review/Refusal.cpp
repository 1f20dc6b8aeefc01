#include "norvex/Conf/Review/Refusal.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include <array>

#include "norvex/Conf/DataHelpers/Queries/Muxers.h"
#include "norvex/Conf/Review/Sentences.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

namespace Norvex::Conf {

namespace {

using C = IFormatCodec;

// gettext messages. The marks stand for: %1 the codec, %2 the container, %3 the stream's tag.
const char* const unreadableMessage = "the description of the stream cannot be judged";
const char* const noMuxerMessage = "FFmpeg has no muxer of the name %2";
const char* const notListedMessage = "the list of what %2 takes unchanged does not have it";
const char* const noCodecDataMessage = "AAC goes into %2 unchanged only with its codec data";
const char* const noTagMessage = "FFmpeg's table of tags for %2 has none for it";
const char* const unknownTagMessage = "FFmpeg's table of tags for %2 does not have its tag %3";
const char* const otherTagMessage = "FFmpeg's table of tags for %2 gives its tag %3 to another codec";
const char* const barredTagMessage = "its tag %3 is not wanted in %2";
const char* const aviSoundMessage =
    "%2 takes no AC-3 and no Vorbis unchanged, and of other sound than MP3 and AAC no more than two channels";
const char* const aviPixelFormatMessage = "players of %2 do not know its pixel format";

bool Contains(const char* text, const char* word) {
    return std::string(text).find(word) != std::string::npos;
}

Refusal OfTags(const AVOutputFormat& muxer, AVCodecID id, long long tag) {
    if (tag == 0) {
        unsigned known = 0;
        return av_codec_get_tag2(muxer.codec_tag, id, &known) != 0 ? Refusal::BarredTag : Refusal::NoTag;
    }
    const AVCodecID mapped = av_codec_get_id(muxer.codec_tag, static_cast<unsigned>(tag));
    if (mapped == AV_CODEC_ID_NONE) return Refusal::UnknownTag;
    return mapped == id ? Refusal::BarredTag : Refusal::OtherTag;
}

std::string TextOfTag(long long tag) {
    std::array<char, AV_FOURCC_MAX_STRING_SIZE> text{};
    return av_fourcc_make_string(text.data(), static_cast<unsigned>(tag));
}

const char* MessageFor(Refusal refusal) {
    switch (refusal) {
        case Refusal::None:
            return "";
        case Refusal::Unreadable:
            return unreadableMessage;
        case Refusal::NoMuxer:
            return noMuxerMessage;
        case Refusal::NotListed:
            return notListedMessage;
        case Refusal::NoCodecData:
            return noCodecDataMessage;
        case Refusal::NoTag:
            return noTagMessage;
        case Refusal::UnknownTag:
            return unknownTagMessage;
        case Refusal::OtherTag:
            return otherTagMessage;
        case Refusal::BarredTag:
            return barredTagMessage;
        case Refusal::AviSound:
            return aviSoundMessage;
        case Refusal::AviPixelFormat:
            break;
    }
    return aviPixelFormatMessage;
}

}  // namespace

Refusal WhyRefused(const std::string& formatId, const IFormatCodec& codec) {
    const AVOutputFormat* const muxer = FindMuxer(JudgedMuxerName(formatId));
    if (muxer == nullptr) return Refusal::NoMuxer;
    const Core::Property& settings = codec.GetProperty();
    if (!settings.ChildExists(C::TAG_CODEC_ID)) return Refusal::Unreadable;
    const AVCodecID id = CodecIDFromTextID(settings[C::TAG_CODEC_ID].GetString());

    if (muxer->codec_tag == nullptr) {
        const bool wantsData = Contains(muxer->name, "mpegts") || Contains(muxer->name, "mpegps");
        return wantsData && id == AV_CODEC_ID_AAC ? Refusal::NoCodecData : Refusal::NotListed;
    }
    if (Contains(muxer->name, "flv")) return Refusal::NotListed;
    const Refusal ofTags = OfTags(*muxer, id, settings[C::TAG_FOURCC].GetInt64());
    if (Contains(muxer->name, "avi")) {
        if (codec.GetMediaType() == MediaType::Video && id == AV_CODEC_ID_H264) return Refusal::AviPixelFormat;
        // A tag that the table takes was refused for the sound alone.
        const bool isAvi = id == AV_CODEC_ID_AC3 || id == AV_CODEC_ID_VORBIS || ofTags == Refusal::BarredTag;
        if (codec.GetMediaType() == MediaType::Audio && isAvi) return Refusal::AviSound;
    }
    return ofTags;
}

std::string WordsFor(Refusal refusal, const std::string& formatId, const std::string& codecId, long long tag) {
    return refusal == Refusal::None ? std::string() : Say(MessageFor(refusal), {codecId, formatId, TextOfTag(tag)});
}

}  // namespace Norvex::Conf
