#include "OtherNames.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <cctype>
#include <numeric>
#include <sstream>
#include <utility>

#include "norvex/Norvex.h"

namespace NorvexApps {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;
using F = IFormatFile;
using MF = ModernFormats;
using P = IPreset;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

struct OtherNames {
    const char* names;  ///< in small letters and digits alone, with spaces between them
    const std::string* id;
};

// clang-format off
// What people type -> id. Ids themselves need no row, nor does the name of an encoder that the running FFmpeg has.

/// Extensions among them.
constexpr OtherNames g_formats[] = {
    {"3gpp",            &F::FORMAT_3GP},
    {"3gpp2",           &F::FORMAT_3G2},
    {"ec3",             &MF::FORMAT_EAC3},
    {"jxl",             &MF::FORMAT_JPEGXL},
    {"thd",             &MF::FORMAT_TRUEHD},
    {"aac",             &F::FORMAT_AAC},
    {"aif",             &F::FORMAT_AIFF},
    {"snd",             &F::FORMAT_AU},
    {"flash",           &F::FORMAT_FLV},
    {"jfif jpe jpg",    &F::FORMAT_JPEG},
    {"j2k jp2",         &F::FORMAT_JPEG2000},
    {"jls",             &F::FORMAT_JPEGLS},
    {"mkv",             &F::FORMAT_MATROSKA},
    {"qt quicktime",    &F::FORMAT_MOV},
    {"m1v mpg",         &F::FORMAT_MPEG},
    {"m2v",             &F::FORMAT_MPEG2VIDEO},
    {"avchd bluray m2ts mts", &F::FORMAT_MPEG2TS},
    {"m2t ts",          &F::FORMAT_MPEGTS},
    {"oga",             &F::FORMAT_OGG},
    {"subrip",          &F::FORMAT_SRT},
    {"tga",             &F::FORMAT_TARGA},
    {"tif",             &F::FORMAT_TIFF},
    {"wave",            &F::FORMAT_WAV},
};

constexpr OtherNames g_videoCodecs[] = {
    {"av01",                           &V::CODEC_ID_AV1},
    {"dv",                             &V::CODEC_ID_DVVIDEO},
    {"flv sorenson",                   &V::CODEC_ID_FLV1},
    {"avc avc1 libx264 mpeg4avc x264", &V::CODEC_ID_H264},
    {"h265 hev1 hvc1 libx265 x265",    &V::CODEC_ID_H265},
    {"j2k jp2",                        &V::CODEC_ID_JPEG2000},
    {"jls",                            &V::CODEC_ID_JPEGLS},
    {"jpeg jpg mjpg motionjpeg",       &V::CODEC_ID_MJPEG},
    {"mpeg1",                          &V::CODEC_ID_MPEG1VIDEO},
    {"mpeg2",                          &V::CODEC_ID_MPEG2VIDEO},
    {"divx mp4v xvid",                 &V::CODEC_ID_MPEG4},
    {"animation rle",                  &V::CODEC_ID_QTRLE},
    {"tga",                            &V::CODEC_ID_TARGA},
    {"tif",                            &V::CODEC_ID_TIFF},
    {"vp80",                           &V::CODEC_ID_VP8},
    {"vp09 vp90",                      &V::CODEC_ID_VP9},
    {"wmv wmv8",                       &V::CODEC_ID_WMV2},
};

constexpr OtherNames g_audioCodecs[] = {
    {"aaclc m4a mp4a",         &A::CODEC_ID_AAC},
    {"a52 dolby dolbydigital", &A::CODEC_ID_AC3},
    {"applelossless",          &A::CODEC_ID_ALAC},
    {"amr",                    &A::CODEC_ID_AMR_NB},
    {"dca",                    &A::CODEC_ID_DTS},
    {"mpa",                    &A::CODEC_ID_MP2},
    {"lame libmp3lame",        &A::CODEC_ID_MP3},
    {"lpcm pcm wav wave",      &A::CODEC_ID_PCM_S16LE},
    {"ogg oggvorbis",          &A::CODEC_ID_VORBIS},
    {"wma wma2",               &A::CODEC_ID_WMAV2},
};

constexpr OtherNames g_subtitleCodecs[] = {
    {"teletext",          &S::CODEC_ID_DVB_TELETEXT},
    {"dvb dvbsub",        &S::CODEC_ID_DVB_SUBTITLE},
    {"dvd dvdsub vobsub", &S::CODEC_ID_DVD_SUBTITLE},
    {"pgs sup",           &S::CODEC_ID_HDMV_PGS_SUBTITLE},
    {"timedtext tx3g",    &S::CODEC_ID_MOV_TEXT},
    {"txt",               &S::CODEC_ID_TEXT},
};

constexpr OtherNames g_filters[] = {
    {"formatter",               &Proc::IFilterAudioFormatter::CLASS_ID},
    {"gain volume",             &Proc::IFilterAudioVolume::CLASS_ID},
    {"fps framerate rate",      &Proc::IFilterFrameRate::CLASS_ID},
    {"resample resampler",      &Proc::IFilterResample::CLASS_ID},
    {"resize resizer scale size", &Proc::IFilterResize::CLASS_ID},
};

/// Counts of channels, as FFmpeg takes them where nothing else is said.
constexpr OtherNames g_layouts[] = {
    {"1 1.0", &A::TAG_CH_LAYOUT_MONO},
    {"2 2.0", &A::TAG_CH_LAYOUT_STEREO},
    {"6",     &A::TAG_CH_LAYOUT_5POINT1_BACK},
    {"8",     &A::TAG_CH_LAYOUT_7POINT1},
};
// clang-format on

/// Calls `take` with each other name of the kind and its id, of the ids that there are.
template <class Take>
void ForOtherNames(Named kind, const Take& take) {
    const auto takeAll = [&take, ids = IdsOf(kind)](const auto& rows) {
        for (const OtherNames& row : rows) {
            if (std::find(ids.begin(), ids.end(), *row.id) == ids.end()) continue;
            std::istringstream names(row.names);
            for (std::string name; names >> name;) take(name, *row.id);
        }
    };
    switch (kind) {
        case Named::Format:
            return takeAll(g_formats);
        case Named::VideoCodec:
            return takeAll(g_videoCodecs);
        case Named::AudioCodec:
            return takeAll(g_audioCodecs);
        case Named::SubtitleCodec:
            return takeAll(g_subtitleCodecs);
        case Named::Filter:
            return takeAll(g_filters);
        case Named::Layout:
            return takeAll(g_layouts);
        case Named::SampleFormat:
            break;
    }
}

const char* WordsFor(Named kind) {
    switch (kind) {
        case Named::Format:
            return "format";
        case Named::VideoCodec:
            return "video codec";
        case Named::AudioCodec:
            return "audio codec";
        case Named::SubtitleCodec:
            return "subtitle codec";
        case Named::Filter:
            return "filter";
        case Named::Layout:
            return "channel layout";
        case Named::SampleFormat:
            break;
    }
    return "sample format";
}

const char* WhereListed(Named kind) {
    switch (kind) {
        case Named::SubtitleCodec:
            return "norvex-rules show format FORMAT shows those of a format";
        case Named::Layout:
        case Named::SampleFormat:
            return "norvex-rules show audio CODEC shows those of a codec";
        default:
            return "norvex-rules list shows them";
    }
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Small letters and digits alone, but for the point in a number: "H.264", "h264" and "H-264" are one name.
std::string Plain(const std::string& name) {
    std::string plain;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isInNumber = i > 0 && i + 1 < name.size() && IsDigit(name[i - 1]) && IsDigit(name[i + 1]);
        const bool isKept = std::isalnum(static_cast<unsigned char>(name[i])) != 0 || (name[i] == '.' && isInNumber);
        if (isKept) plain += name[i];
    }
    return boost::algorithm::to_lower_copy(plain);
}

std::vector<std::string> KeysOf(const std::string& kind) {
    std::vector<std::string> ids;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) ids.push_back(id);
    return ids;
}

std::optional<AVMediaType> MediaTypeOf(Named kind) {
    if (kind == Named::VideoCodec) return AVMEDIA_TYPE_VIDEO;
    if (kind == Named::AudioCodec) return AVMEDIA_TYPE_AUDIO;
    if (kind == Named::SubtitleCodec) return AVMEDIA_TYPE_SUBTITLE;
    return std::nullopt;
}

/// What FFmpeg calls a codec of the kind, by the name of one of its encoders or the codec's own.
std::optional<std::string> FindInFFmpeg(Named kind, const std::string& name) {
    const auto type = MediaTypeOf(kind);
    if (!type) return std::nullopt;
    const AVCodec* const encoder = avcodec_find_encoder_by_name(name.c_str());
    if (encoder != nullptr && encoder->type == *type) return avcodec_get_name(encoder->id);
    const AVCodecDescriptor* const codec = avcodec_descriptor_get_by_name(name.c_str());
    if (codec != nullptr && codec->type == *type) return codec->name;
    return std::nullopt;
}

/// How many letters must be put in, left out, changed, or changed with their neighbour to make one word of the other.
std::size_t Distance(const std::string& one, const std::string& two) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> last(two.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= one.size(); ++i) {
        std::vector<std::size_t> row = {i};
        for (std::size_t j = 1; j <= two.size(); ++j) {
            const bool isSame = one[i - 1] == two[j - 1];
            std::size_t least = std::min({row[j - 1] + 1, last[j] + 1, last[j - 1] + (isSame ? 0 : 1)});
            const bool isSwapped = i > 1 && j > 1 && one[i - 1] == two[j - 2] && one[i - 2] == two[j - 1];
            if (isSwapped) least = std::min(least, before[j - 2] + 1);
            row.push_back(least);
        }
        before = std::exchange(last, std::move(row));
    }
    return last.back();
}

/// A word that may be suggested, and what is compared with the one that was typed.
struct Candidate {
    std::string plain;
    std::string words;
    std::string id;
};

std::string Suggestions(const std::string& typed, const std::vector<Candidate>& candidates) {
    const std::string plain = Plain(typed);
    constexpr std::size_t most = 3;  // "the few that fit"
    std::size_t nearest = plain.size() < 4 ? 1 : plain.size() < 8 ? 2 : 3;
    std::vector<const Candidate*> near;
    for (const Candidate& candidate : candidates) {
        const bool isBegun = plain.size() > 2 && candidate.plain.compare(0, plain.size(), plain) == 0;
        const std::size_t distance = isBegun ? 1 : Distance(plain, candidate.plain);
        if (distance > nearest || distance >= candidate.plain.size()) continue;
        if (distance < nearest) near.clear();
        nearest = distance;
        const bool isKnown = std::any_of(near.begin(), near.end(),
                                         [&candidate](const Candidate* known) { return known->id == candidate.id; });
        if (!isKnown) near.push_back(&candidate);
    }
    near.resize(std::min(near.size(), most));
    std::string text;
    for (const Candidate* const candidate : near) {
        const char* const joint = text.empty() ? "; did you mean " : candidate == near.back() ? " or " : ", ";
        text += joint + candidate->words;
    }
    return text.empty() ? text : text + '?';
}

std::string Quoted(const std::string& word) {
    return "'" + word + "'";
}

}  // namespace

std::vector<std::string> IdsOf(Named kind) {
    std::vector<std::string> ids;
    switch (kind) {
        case Named::Format:
            return KeysOf(P::KEY_FORMAT);
        case Named::VideoCodec:
            return KeysOf(P::KEY_FILTER_VIDEO_CODEC);
        case Named::AudioCodec:
            return KeysOf(P::KEY_FILTER_AUDIO_CODEC);
        case Named::SubtitleCodec:
            return GetAllSubtitleCodecs();
        case Named::Filter:
            return {Proc::IFilterAudioFormatter::CLASS_ID, Proc::IFilterAudioVolume::CLASS_ID,
                    Proc::IFilterFrameRate::CLASS_ID, Proc::IFilterResample::CLASS_ID, Proc::IFilterResize::CLASS_ID};
        case Named::Layout:
            for (auto i = static_cast<int>(ChannelLayout::Mono); i <= static_cast<int>(ChannelLayout::Binaural); ++i) {
                ids.push_back(*LayoutRecord::Find(static_cast<ChannelLayout>(i)).name);
            }
            break;
        case Named::SampleFormat:
            for (auto i = static_cast<int>(SampleFormats::U8); i <= static_cast<int>(SampleFormats::S64P); ++i) {
                ids.push_back(SampleFmtRecord::Find(static_cast<SampleFormats>(i)).name);
            }
            break;
    }
    return ids;
}

std::optional<std::string> FindId(Named kind, const std::string& name) {
    const std::vector<std::string> ids = IdsOf(kind);
    const std::string plain = Plain(name);
    if (plain.empty()) return std::nullopt;
    const auto id = std::find_if(ids.begin(), ids.end(), [&plain](const std::string& i) { return Plain(i) == plain; });
    if (id != ids.end()) return *id;
    std::optional<std::string> meant;
    ForOtherNames(kind, [&](const std::string& other, const std::string& otherId) {
        if (other == plain) meant = otherId;
    });
    return meant ? meant : FindInFFmpeg(kind, boost::algorithm::to_lower_copy(name));
}

std::map<std::string, std::vector<std::string>> OtherNamesOf(Named kind) {
    std::map<std::string, std::vector<std::string>> names;
    ForOtherNames(kind, [&names](const std::string& name, const std::string& id) { names[id].push_back(name); });
    return names;
}

std::string WhyUnknown(Named kind, const std::string& name) {
    const std::string text = std::string("there is no ") + WordsFor(kind) + " " + Quoted(name);
    for (const Named other : {Named::VideoCodec, Named::AudioCodec, Named::SubtitleCodec}) {
        if (MediaTypeOf(kind) && other != kind && FindId(other, name)) {
            return text + "; it is " + (other == Named::AudioCodec ? "an " : "a ") + WordsFor(other);
        }
    }
    std::vector<Candidate> candidates;
    for (const std::string& id : IdsOf(kind)) candidates.push_back({Plain(id), Quoted(id), id});
    ForOtherNames(kind, [&candidates](const std::string& other, const std::string& id) {
        candidates.push_back({other, Quoted(other) + " (" + id + ")", id});
    });
    const std::string suggestions = Suggestions(name, candidates);
    return text + (suggestions.empty() ? "; " + std::string(WhereListed(kind)) : suggestions);
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& words) {
    std::vector<Candidate> candidates;
    candidates.reserve(words.size());
    for (const std::string& w : words) candidates.push_back({Plain(w), Quoted(w), w});
    return Suggestions(word, candidates);
}

}  // namespace NorvexApps
