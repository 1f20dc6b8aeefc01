#include "Formats.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "common/OtherNames.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using C = Norvex::Conf::IFormatCodec;
using F = Norvex::Conf::IFormatFile;
using MA = Norvex::Conf::ModernAudio;
using MF = Norvex::Conf::ModernFormats;
using MV = Norvex::Conf::ModernVideo;
using S = Norvex::Conf::IFormatCodecSubtitle;
using V = Norvex::Conf::IFormatCodecVideo;

template <class Row, std::size_t N, class Predicate>
const Row* FindRow(const Row (&rows)[N], const Predicate& predicate) {
    const Row* const row = std::find_if(std::begin(rows), std::end(rows), predicate);
    return row != std::end(rows) ? row : nullptr;
}

// clang-format off
/// What a muxer writes beside the streams; one that is not here writes none of it. Tried with FFmpeg 5.1, by reading
/// back what was written.
struct Extras {
    const char* muxer;
    bool chapters;
    bool orientation;
};
constexpr Extras g_extras[] = {
    // muxer    chapters orientation
    {"mp4",      true,  true},
    {"ipod",     true,  true},
    {"f4v",      true,  true},
    {"mov",      true,  true},
    {"3gp",      true,  true},
    {"3g2",      true,  true},
    {"matroska", true,  false},
    {"webm",     true,  false},
    {"asf",      true,  false},
    {"mp3",      true,  false},
};
// clang-format on

struct Codec {
    const std::string* id;
    const char* name;
};

// clang-format off
/// Subtitle codecs under an older name of theirs.
constexpr Codec g_codecs[] = {
    {&S::CODEC_ID_SRT, "subrip"},
    {&S::CODEC_ID_SSA, "ass"},
};

struct EncoderOption {
    const std::string* codec;
    const std::string* tag;
    const std::string* value;
    const char* option;  ///< null where the encoder needs none
    const char* ffmpeg;
};

struct Tag {
    const std::string* codec;
    const std::string* tag;
    const char* option;
};

struct QualityScale {
    const std::string* codec;
    const char* option;
    long long worst;  ///< of the rule book's scale
    double atBest;
    double atWorst;
};

struct Mode {
    const std::string* codec;
    const std::string* mode;
    const char* option;
    const char* ffmpeg;
};

struct ProfileFormats {
    const std::string* codec;
    const std::string* profile;
    const char* pixelFormats;  ///< between spaces
};

struct Speed {
    const std::string* preset;
    const char* encoder;
    const char* option;
    const char* value;
};

/// Only texts that FFmpeg has under other names than the rule book.
constexpr EncoderOption g_options[] = {
    {&V::CODEC_ID_MPEG4,  &C::TAG_PROFILE, &V::TAG_MPEG4_PROFILE_SIMPLE,          "profile", "0"},
    {&V::CODEC_ID_MPEG4,  &C::TAG_PROFILE, &V::TAG_MPEG4_PROFILE_CORE_SCALABLE,   "profile", "8"},
    {&V::CODEC_ID_MPEG4,  &C::TAG_PROFILE, &V::TAG_MPEG4_PROFILE_MAIN,            "profile", "3"},
    {&V::CODEC_ID_MPEG4,  &C::TAG_PROFILE, &V::TAG_MPEG4_PROFILE_ADVANCED_SIMPLE, "profile", "15"},
    {&V::CODEC_ID_PRORES, &C::TAG_PROFILE, &V::TAG_PRORES_PROFILE_422,            "profile", "2"},
    {&V::CODEC_ID_HAP,    &C::TAG_FORMAT,  &V::TAG_FORMAT_HAP,                    "format",  "hap"},
    {&V::CODEC_ID_HAP,    &C::TAG_FORMAT,  &V::TAG_FORMAT_HAP_ALPHA,              "format",  "hap_alpha"},
    {&V::CODEC_ID_HAP,    &C::TAG_FORMAT,  &V::TAG_FORMAT_HAP_Q,                  "format",  "hap_q"},
    // The pixel format settles these profiles.
    {&V::CODEC_ID_VP9,    &C::TAG_PROFILE, &V::TAG_VP9_PROFILE_0,                 nullptr,   nullptr},
    {&V::CODEC_ID_AV1,    &C::TAG_PROFILE, &V::TAG_AV1_PROFILE_MAIN,              nullptr,   nullptr},
    {&MV::CODEC_ID_DNXHD, &C::TAG_PROFILE, &MV::TAG_DNX_PROFILE_HD_X,             "profile", "dnxhd"},
};

/// Tags that stand for an option of another name, whatever their value.
constexpr Tag g_tags[] = {
    {&MV::CODEC_ID_EXR,   &C::TAG_FORMAT,  "format"},
};

/// Encoders that are told a quality by an option of their own, and what that is at the best quality, 1, and at the worst.
constexpr QualityScale g_qualities[] = {
    {&MV::CODEC_ID_CFHD,   "quality",  13,               0,   12},  // counts its steps from 0
    {&MV::CODEC_ID_WEBP,   "quality",  V::MAX_QUALITY, 100,    0},
    {&MV::CODEC_ID_JPEGXL, "distance", V::MAX_QUALITY,   0,   15},  // 0 is lossless
};

/// Encoders that are told the bitrate mode by an option of their own.
constexpr Mode g_modes[] = {
    {&MA::CODEC_ID_OPUS, &C::TAG_BITRATE_MODE_CBR,   "vbr", "off"},
    {&MA::CODEC_ID_OPUS, &C::TAG_BITRATE_MODE_VBR,   "vbr", "on"},
    {&MA::CODEC_ID_OPUS, &MA::TAG_BITRATE_MODE_CVBR, "vbr", "constrained"},
};

/// Encoders of AV1 have scales of speed of their own; the preset is a quarter off the fast end of each.
constexpr Speed g_speeds[] = {
    {&V::TAG_AV1_PRESET_FASTER, "libaom-av1", "cpu-used", "6"},
    {&V::TAG_AV1_PRESET_FASTER, "libsvtav1",  "preset",   "10"},
    {&V::TAG_AV1_PRESET_FASTER, "librav1e",   "speed",    "8"},
};

/// Pixel formats that a profile has (ITU-T H.264 annex A, H.265 annex A; the bitstream specifications of VP9 and AV1).
constexpr ProfileFormats g_profileFormats[] = {
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_BASELINE, "yuv420p"},
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_MAIN,     "yuv420p"},
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_HIGH,     "yuv420p"},
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_HIGH10,   "yuv420p10le"},
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_HIGH422,  "yuv422p yuv422p10le"},
    {&V::CODEC_ID_H264,   &V::TAG_X264_PROFILE_HIGH444,  "yuv444p yuv444p10le"},
    {&V::CODEC_ID_H265,   &V::TAG_X265_PROFILE_MAIN,     "yuv420p"},
    {&V::CODEC_ID_H265,   &V::TAG_X265_PROFILE_MAIN10,   "yuv420p10le"},
    {&V::CODEC_ID_VP9,    &V::TAG_VP9_PROFILE_0,         "yuv420p yuva420p"},
    {&V::CODEC_ID_AV1,    &V::TAG_AV1_PROFILE_MAIN,      "yuv420p yuv420p10le"},
    {&V::CODEC_ID_PRORES, &V::TAG_PRORES_PROFILE_422,    "yuv422p10le"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HD,       "yuv422p"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HD_X,   "yuv422p10le"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HR_LB,  "yuv422p"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HR_SQ,  "yuv422p"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HR_HQ,  "yuv422p"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HR_HQX, "yuv422p10le"},
    {&MV::CODEC_ID_DNXHD, &MV::TAG_DNX_PROFILE_HR_444, "yuv444p10le"},
};

/// Still pictures without a place for the shape of pixels, tried with FFmpeg 5.1 by reading back what was written.
const std::string* const g_unshaped[] = {
    &F::FORMAT_BMP, &F::FORMAT_TARGA, &F::FORMAT_JPEG2000, &F::FORMAT_JPEGLS, &F::FORMAT_PPM,   &F::FORMAT_PGM,
    &F::FORMAT_PBM, &F::FORMAT_PAM,   &F::FORMAT_SGI,      &F::FORMAT_XBM,    &F::FORMAT_XWD,   &F::FORMAT_PGMYUV,
    &F::FORMAT_AVIF, &MF::FORMAT_WEBP, &MF::FORMAT_WEBP_ANIM, &MF::FORMAT_JPEGXL, &MF::FORMAT_QOI,
};

/// Codecs whose encoders code fields, or that lose nothing of any line.
const std::string* const g_fieldCodecs[] = {
    &V::CODEC_ID_H264, &V::CODEC_ID_MPEG2VIDEO, &MV::CODEC_ID_HUFFYUV, &V::CODEC_ID_UTVIDEO, &MV::CODEC_ID_FFV1,
};

struct SizeForm {
    const std::string* codec;
    int width;   ///< pixels
    int height;  ///< pixels
    EncoderForm form;
};
// clang-format on

template <std::size_t N>
bool Holds(const std::string* const (&list)[N], const std::string& id) {
    return std::any_of(std::begin(list), std::end(list), [&id](const std::string* known) { return *known == id; });
}

const Extras& ExtrasOf(const std::string& formatId) {
    static constexpr Extras none = {"", false, false};
    const std::string muxer = MuxerOf(formatId);
    const Extras* const extras = FindRow(g_extras, [&muxer](const Extras& row) { return muxer == row.muxer; });
    return extras != nullptr ? *extras : none;
}

std::optional<std::pair<std::string, std::string>> SpeedOf(const std::string& preset) {
    const AVCodec* const encoder = avcodec_find_encoder(AV_CODEC_ID_AV1);
    const std::string name = encoder != nullptr ? encoder->name : "";
    const Speed* const row =
        FindRow(g_speeds, [&](const Speed& r) { return *r.preset == preset && name == r.encoder; });
    if (row == nullptr) return std::nullopt;
    return std::pair<std::string, std::string>(row->option, row->value);
}

}  // namespace

bool HasMovableIndex(const std::string& formatId) {
    // The muxers of MP4 and its kin, which are also those that keep which way up a picture is.
    return HoldsOrientation(formatId);
}

bool HoldsChapters(const std::string& formatId) {
    return ExtrasOf(formatId).chapters;
}

bool HoldsOrientation(const std::string& formatId) {
    return ExtrasOf(formatId).orientation;
}

bool HoldsPixelShape(const std::string& formatId, const std::string& codecId) {
    if (formatId == F::FORMAT_FLV) return codecId == V::CODEC_ID_H264;
    return !Holds(g_unshaped, formatId);
}

bool HoldsFields(const std::string& codecId) {
    return Holds(g_fieldCodecs, codecId);
}

std::vector<std::pair<std::string, std::string>> MuxerOptionsOf(const std::string& formatId) {
    // Without it the packets have no time codes, and players do not know the sound of discs.
    if (formatId == F::FORMAT_MPEG2TS) return {{"mpegts_m2ts_mode", "1"}};
    return {};
}

std::string FormatOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    return NorvexApps::FindId(NorvexApps::Named::Format, extension).value_or(extension);
}

std::string CodecNameOf(const std::string& codecId) {
    const Codec* const row = FindRow(g_codecs, [&codecId](const Codec& r) { return *r.id == codecId; });
    return row != nullptr ? row->name : codecId;
}

std::optional<std::pair<std::string, std::string>> EncoderOptionOf(const std::string& codecId, const std::string& tag,
                                                                   const std::string& value) {
    const EncoderOption* const row = FindRow(
        g_options, [&](const EncoderOption& r) { return *r.codec == codecId && *r.tag == tag && *r.value == value; });
    if (codecId == V::CODEC_ID_AV1 && tag == C::TAG_PRESET) return SpeedOf(value);
    const Tag* const named = FindRow(g_tags, [&](const Tag& r) { return *r.codec == codecId && *r.tag == tag; });
    if (row == nullptr) return std::pair(named != nullptr ? named->option : tag, value);
    if (row->option == nullptr) return std::nullopt;
    return std::pair<std::string, std::string>(row->option, row->ffmpeg);
}

std::optional<std::pair<std::string, std::string>> QualityOptionOf(const std::string& codecId, long long quality) {
    const QualityScale* const row =
        FindRow(g_qualities, [&codecId](const QualityScale& r) { return *r.codec == codecId; });
    if (row == nullptr) return std::nullopt;
    const double part = static_cast<double>(quality - 1) / static_cast<double>(row->worst - 1);
    return std::pair<std::string, std::string>(row->option,
                                               std::to_string(row->atBest + part * (row->atWorst - row->atBest)));
}

std::optional<std::pair<std::string, std::string>> ModeOptionOf(const std::string& codecId, const std::string& mode) {
    const Mode* const row = FindRow(g_modes, [&](const Mode& r) { return *r.codec == codecId && *r.mode == mode; });
    if (row == nullptr) return std::nullopt;
    return std::pair<std::string, std::string>(row->option, row->ffmpeg);
}

std::vector<std::string> PixelFormatsOf(const std::string& codecId, const std::string& profile) {
    const ProfileFormats* const row = FindRow(
        g_profileFormats, [&](const ProfileFormats& r) { return *r.codec == codecId && *r.profile == profile; });
    std::istringstream formats(row != nullptr ? row->pixelFormats : "");
    return {std::istream_iterator<std::string>(formats), {}};
}

std::pair<long long, long long> FittingSize(const std::string& codecId, long long width, long long height) {
    const auto whole = [](long long size, long long step) { return std::max(step, size / step * step); };
    // The rule book wants even sizes, and most encoders do.
    if (codecId != MV::CODEC_ID_CFHD) return {whole(width, 2), whole(height, 2)};
    const long long fitting = whole(width, 16);
    return {fitting, whole(height, fitting % 32 == 0 ? 8 : 16)};
}

const EncoderForm* FormOf(const std::string& codecId, long long width, long long height) {
    // The two systems of DV (SMPTE 314M).
    static const SizeForm rows[] = {
        {&V::CODEC_ID_DVVIDEO, 720, 480, {{30000, 1001}, "yuv411p"}},
        {&V::CODEC_ID_DVVIDEO, 720, 576, {{25, 1}, "yuv420p"}},
    };
    const SizeForm* const row =
        FindRow(rows, [&](const SizeForm& r) { return *r.codec == codecId && r.width == width && r.height == height; });
    return row != nullptr ? &row->form : nullptr;
}

}  // namespace NorvexExport
