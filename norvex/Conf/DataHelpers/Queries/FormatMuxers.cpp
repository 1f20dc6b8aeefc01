#include "norvex/Conf/DataHelpers/Queries/FormatMuxers.h"

#include <algorithm>
#include <iterator>

#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

namespace Norvex::Conf {

namespace {

using F = IFormatFile;
using MF = ModernFormats;

struct Muxer {
    const std::string* id;
    const char* name;
};

struct Extras {
    const char* muxer;
    const char* covers;  ///< FFmpeg's codecs, between spaces
    bool attachments;
};

// clang-format off
/// Only containers whose id is not the name of the muxer that writes them. The muxers that FFmpeg calls m4v,
/// mpeg1video and mpeg2video write a bare stream of pictures; what players know by these names is MP4 for Apple's
/// players, like the audio kinds, and MPEG program streams.
constexpr Muxer g_muxers[] = {
    {&F::FORMAT_M4V,        "ipod"},
    {&F::FORMAT_M4A,        "ipod"},
    {&F::FORMAT_M4B,        "ipod"},
    {&F::FORMAT_M4R,        "ipod"},
    {&F::FORMAT_F4A,        "f4v"},
    {&F::FORMAT_MKA,        "matroska"},
    {&F::FORMAT_MPEG1VIDEO, "mpeg"},
    {&F::FORMAT_MPEG2VIDEO, "vob"},
    {&F::FORMAT_MPEG2TS,    "mpegts"},
    {&F::FORMAT_WMV,        "asf"},
    {&F::FORMAT_WMA,        "asf"},
    {&F::FORMAT_SSA,        "ass"},
    {&MF::FORMAT_WEBP_ANIM, "webp"},
};

/// Still pictures. All but AVIF and WebP are written by the muxer of picture files, whatever their codec.
constexpr Muxer g_stills[] = {
    {&F::FORMAT_JPEG,     "image2"}, {&F::FORMAT_BMP,    "image2"}, {&F::FORMAT_PNG,  "image2"},
    {&F::FORMAT_TIFF,     "image2"}, {&F::FORMAT_DPX,    "image2"}, {&F::FORMAT_PBM,  "image2"},
    {&F::FORMAT_JPEG2000, "image2"}, {&F::FORMAT_JPEGLS, "image2"}, {&F::FORMAT_PCX,  "image2"},
    {&F::FORMAT_PGM,      "image2"}, {&F::FORMAT_PPM,    "image2"}, {&F::FORMAT_XBM,  "image2"},
    {&F::FORMAT_TARGA,    "image2"}, {&F::FORMAT_PAM,    "image2"}, {&F::FORMAT_SGI,  "image2"},
    {&F::FORMAT_PGMYUV,   "image2"}, {&F::FORMAT_XWD,    "image2"}, {&F::FORMAT_AVIF, "avif"},
    {&F::FORMAT_HEIC,     "heic"},   {&F::FORMAT_HEIF,   "heif"},  // FFmpeg writes neither yet
    {&MF::FORMAT_JPEGXL,  "image2"}, {&MF::FORMAT_EXR,   "image2"}, {&MF::FORMAT_QOI,  "image2"},
    {&MF::FORMAT_WEBP,    "webp"},
};

/// The pictures of FFmpeg's movenc.c, matroskadec.c and id3v2.c; its muxer of FLAC refuses GIF. A muxer that is not here
/// writes none of it.
constexpr Extras g_extras[] = {
    // muxer      covers                     attachments
    {"mp4",      " mjpeg png bmp ",          false},
    {"ipod",     " mjpeg png bmp ",          false},
    {"f4v",      " mjpeg png bmp ",          false},
    {"matroska", " mjpeg png gif tiff ",     true},
    {"mp3",      " mjpeg png bmp gif tiff ", false},
    {"flac",     " mjpeg png bmp tiff ",     false},
};
// clang-format on

template <class Row, std::size_t N, class Predicate>
const Row* FindRow(const Row (&rows)[N], const Predicate& predicate) {
    const Row* const row = std::find_if(std::begin(rows), std::end(rows), predicate);
    return row != std::end(rows) ? row : nullptr;
}

const Extras& ExtrasOf(const std::string& formatId) {
    static constexpr Extras none = {"", "", false};
    const std::string muxer = MuxerOf(formatId);
    const Extras* const extras = FindRow(g_extras, [&muxer](const Extras& row) { return muxer == row.muxer; });
    return extras != nullptr ? *extras : none;
}

}  // namespace

std::string MuxerOf(const std::string& formatId) {
    const auto isFormat = [&formatId](const Muxer& row) { return *row.id == formatId; };
    if (const Muxer* const muxer = FindRow(g_muxers, isFormat)) return muxer->name;
    if (const Muxer* const muxer = FindRow(g_stills, isFormat)) return muxer->name;
    return formatId;
}

bool HoldsOnePicture(const std::string& formatId) {
    return FindRow(g_stills, [&formatId](const Muxer& row) { return *row.id == formatId; }) != nullptr;
}

bool KeepsCover(const std::string& formatId, const std::string& codecId) {
    return std::string(ExtrasOf(formatId).covers).find(" " + codecId + " ") != std::string::npos;
}

bool KeepsAttachments(const std::string& formatId) {
    return ExtrasOf(formatId).attachments;
}

}  // namespace Norvex::Conf
