#include "norvex/Conf/DataHelpers/Queries/CodecIsSupported.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/pixfmt.h>
}

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/Queries/Muxers.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

// The lists are knowledge of players and of what really came out of muxers. They follow no table of FFmpeg, and their
// gaps are meant: the transport stream, for one, takes H.264 only where it is the muxer's own default.

namespace Norvex::Conf {

namespace {

using C = IFormatCodec;
using F = IFormatFile;

bool ContainsOneOf(const std::string& text, const std::vector<std::string>& needles) {
    return std::any_of(needles.begin(), needles.end(),
                       [&text](const std::string& needle) { return text.find(needle) != std::string::npos; });
}

template <class List, class T>
bool IsIn(const List& list, const T& value) {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

/// What a stream says of itself, and what judging it needs.
struct AskedStream {
    const IFormatCodec& codec;
    bool isLossless;
    AVCodecID id;
    long long tag;  ///< FFmpeg's MKTAG of the four characters, 0 for none
    MediaType type;
};

constexpr long long tag_AC3 = MKTAG('A', 'C', '-', '3');
constexpr long long tag_XVID = MKTAG('X', 'V', 'I', 'D');
constexpr long long tag_mp4v = MKTAG('m', 'p', '4', 'v');
constexpr long long tag_FlvMpeg4 = 9;  // FLV_CODECID_MPEG4 of FFmpeg's libavformat/flv.h

// ------------------------------------------------------------------------------------ muxers without a tag table

enum class Match { Contains, Equals };

struct UntaggedMuxers {
    Match match;
    std::vector<std::string> names;
    std::vector<AVCodecID> codecs;
};

// clang-format off
/// The first row that has the muxer's name decides. In the first, AAC counts only with codec data: the muxers make the
/// frame headers from it.
const std::vector<UntaggedMuxers>& UntaggedTable() {
    static const auto& table = Lasting(std::vector<UntaggedMuxers>{
        {Match::Contains, {"mpegts", "mpegps"},
            {AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MPEG4, AV_CODEC_ID_CAVS, AV_CODEC_ID_DIRAC,
             AV_CODEC_ID_PCM_BLURAY, AV_CODEC_ID_MP2, AV_CODEC_ID_MP3, AV_CODEC_ID_AC3, AV_CODEC_ID_AAC_LATM,
             AV_CODEC_ID_AAC}},
        {Match::Contains, {"mpeg", "wtv"},
            {AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MP2, AV_CODEC_ID_MP3}},
        {Match::Contains, {"vob", "dvd"},
            {AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MP2, AV_CODEC_ID_AC3}},
        {Match::Contains, {"webm"},
            {AV_CODEC_ID_VP8, AV_CODEC_ID_VP9, AV_CODEC_ID_VORBIS, AV_CODEC_ID_OPUS, AV_CODEC_ID_WEBVTT}},
        {Match::Contains, {"swf"},
            {AV_CODEC_ID_MJPEG, AV_CODEC_ID_FLV1, AV_CODEC_ID_VP6F, AV_CODEC_ID_MP3}},
        {Match::Contains, {"mxf"},  {AV_CODEC_ID_DVVIDEO}},
        {Match::Equals,   {"flac"}, {AV_CODEC_ID_FLAC}},
        {Match::Equals,   {"adts"}, {AV_CODEC_ID_AAC}},
        {Match::Equals,   {"ac3"},  {AV_CODEC_ID_AC3}},
        {Match::Equals,   {"mp3"},  {AV_CODEC_ID_MP3}},
        {Match::Contains, {"ogv", "ogg"},
            {AV_CODEC_ID_THEORA, AV_CODEC_ID_VP8, AV_CODEC_ID_VP9, AV_CODEC_ID_VORBIS, AV_CODEC_ID_FLAC}},
    });
    return table;
}
// clang-format on

bool IsSupportedWithoutTags(const std::string& muxer, const AskedStream& stream) {
    const auto& table = UntaggedTable();
    const auto row = std::find_if(table.begin(), table.end(), [&muxer](const UntaggedMuxers& r) {
        return r.match == Match::Equals ? IsIn(r.names, muxer) : ContainsOneOf(muxer, r.names);
    });
    if (row == table.end()) return false;
    if (row == table.begin()) {
        const SP<const ICodecData> data = stream.codec.GetCodecData();
        if (stream.id == AV_CODEC_ID_AAC) return data && data->GetDataSize() != 0;
    }
    return IsIn(row->codecs, stream.id);
}

// --------------------------------------------------------------------------------------- muxers with a tag table

/// What the muxer's table of tags says. It is asked only for streams that are carried over unchanged.
bool TagIsSupported(const AVOutputFormat& muxer, const AskedStream& stream) {
    if (!stream.isLossless) return false;
    if (stream.tag == 0) {
        unsigned tag = 0;
        return av_codec_get_tag2(muxer.codec_tag, stream.id, &tag) != 0;
    }
    const bool isMatroska = ContainsOneOf(muxer.name, {"matroska"});
    const AVCodecID mapped = av_codec_get_id(muxer.codec_tag, static_cast<unsigned>(stream.tag));
    if (mapped != AV_CODEC_ID_NONE && mapped == stream.id) {
        return stream.tag != tag_XVID || !isMatroska;
    }
    if (isMatroska) {
        if (stream.tag == tag_AC3) return true;
        // DTS and DTS-HD Master Audio as transport streams of Blu-ray number them (HDMV_types in FFmpeg's mpegts.c).
        if (stream.id == AV_CODEC_ID_DTS && (stream.tag & ~4LL) == 0x82) return true;
        return stream.id == AV_CODEC_ID_AAC || stream.id == AV_CODEC_ID_ALAC;
    }
    return stream.tag == tag_mp4v && ContainsOneOf(muxer.name, {"mp4"});
}

bool IsFlvCodec(const AskedStream& stream) {
    static constexpr AVCodecID codecs[] = {
        AV_CODEC_ID_H263, AV_CODEC_ID_FLV1, AV_CODEC_ID_H264, AV_CODEC_ID_AAC,      AV_CODEC_ID_FLASHSV,
        AV_CODEC_ID_VP6,  AV_CODEC_ID_VP6F, AV_CODEC_ID_VP6A, AV_CODEC_ID_FLASHSV2,
    };
    return IsIn(codecs, stream.id) || (stream.id == AV_CODEC_ID_MPEG4 && stream.tag == tag_FlvMpeg4);
}

/// The pixel formats of lossless H.264 that players of AVI know.
bool IsAviPixelFormat(int format) {
    static constexpr int formats[] = {
        AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUYV422,  AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUV410P,
        AV_PIX_FMT_YUV411P, AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_NV12,    AV_PIX_FMT_NV21,    AV_PIX_FMT_YUV440P,
    };
    return IsIn(formats, format);
}

/// What MOV takes beyond its table of tags.
bool IsMovCodec(AVCodecID id) {
    static constexpr AVCodecID codecs[] = {
        AV_CODEC_ID_PCM_S16LE,     AV_CODEC_ID_PCM_S16BE, AV_CODEC_ID_PCM_S8,    AV_CODEC_ID_PCM_U8,
        AV_CODEC_ID_PCM_S32LE,     AV_CODEC_ID_PCM_S32BE, AV_CODEC_ID_PCM_S24LE, AV_CODEC_ID_PCM_S24BE,
        AV_CODEC_ID_PCM_F32BE,     AV_CODEC_ID_PCM_F32LE, AV_CODEC_ID_PCM_F64BE, AV_CODEC_ID_PCM_F64LE,
        AV_CODEC_ID_ADPCM_IMA_WAV, AV_CODEC_ID_ADPCM_MS,  AV_CODEC_ID_ADPCM_4XM, AV_CODEC_ID_AMR_NB,
        AV_CODEC_ID_MP3,           AV_CODEC_ID_ALAC,      AV_CODEC_ID_QDM2,      AV_CODEC_ID_WMAPRO,
    };
    return IsIn(codecs, id);
}

/// What MP4 takes beyond its table of tags.
bool IsMp4Codec(AVCodecID id) {
    return id == AV_CODEC_ID_MP3 || id == AV_CODEC_ID_AC3 || id == AV_CODEC_ID_DTS;
}

/// The adjustments are by substrings of the muxer's name and do not exclude each other: each is tried on each muxer.
bool IsSupportedByTags(const AVOutputFormat& muxer, const AskedStream& stream) {
    bool supported = TagIsSupported(muxer, stream);
    if (ContainsOneOf(muxer.name, {"flv"})) supported = IsFlvCodec(stream);
    if (ContainsOneOf(muxer.name, {"avi"})) {
        if (stream.type == MediaType::Audio) {
            const auto& audio = dynamic_cast<const IFormatCodecAudio&>(stream.codec);
            const int channels = LayoutRecord::Find(audio.GetChannelLayout()).channels;
            if (stream.id == AV_CODEC_ID_AC3) return false;
            if (stream.id == AV_CODEC_ID_MP3 || stream.id == AV_CODEC_ID_AAC) return true;
            if (stream.id == AV_CODEC_ID_VORBIS || channels >= 3) supported = false;
        } else if (stream.type == MediaType::Video && stream.id == AV_CODEC_ID_H264 && stream.isLossless) {
            return IsAviPixelFormat(dynamic_cast<const IFormatCodecVideo&>(stream.codec).GetPixelFormat());
        }
    }
    if (ContainsOneOf(muxer.name, {"mov"}) && !supported) supported = IsMovCodec(stream.id);
    if (ContainsOneOf(muxer.name, {"mp4"}) && !supported) return IsMp4Codec(stream.id);
    return supported;
}

}  // namespace

bool CodecIsSupported(const SP<const IFormatFile>& format, const SP<const IFormatCodec>& codec) {
    const std::string name = JudgedMuxerName(format->GetProperty()[F::TAG_CONTAINER].GetString());
    const AVOutputFormat* const muxer = FindMuxer(name);
    if (muxer == nullptr) return false;

    const Core::Property& settings = codec->GetProperty();
    if (!settings.ChildExists(C::TAG_CODEC_ID) || !settings.ChildExists(C::TAG_FOURCC)) return false;
    const bool isLossless = settings.ChildExists(C::TAG_LOSSLESS) && settings[C::TAG_LOSSLESS].GetBool();
    const AVCodecID id = CodecIDFromTextID(settings[C::TAG_CODEC_ID].GetString());
    const long long tag = settings[C::TAG_FOURCC].GetInt64();
    const AskedStream stream = {*codec, isLossless, id, tag, codec->GetMediaType()};

    if (stream.type == MediaType::Video && isLossless && !settings[C::TAG_MAIN_STREAM].GetBool()) return false;
    if (id != AV_CODEC_ID_NONE &&
        (id == muxer->video_codec || id == muxer->audio_codec || id == muxer->subtitle_codec)) {
        return true;
    }
    return muxer->codec_tag == nullptr ? IsSupportedWithoutTags(muxer->name, stream)
                                       : IsSupportedByTags(*muxer, stream);
}

}  // namespace Norvex::Conf
