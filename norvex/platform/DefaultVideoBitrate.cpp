#include "norvex/interfaces/Conf/DefaultVideoBitrate.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

/// What a codec needs for a picture of ordinary quality.
struct Efficiency {
    const std::string* codecId;
    double bitsPerPixel;  ///< at 25 frames per second and the reference quality
    bool lossy;           ///< whether a quality changes it
};

// clang-format off
/// H.264 at 0.1 bits per pixel is the customary rule of thumb (5 Mbit/s for 1080p25). Each later generation saves
/// about a third to a half against it, and the older ones stand in the order of their age. Pictures that are coded
/// one by one take what their formats take in practice.
constexpr Efficiency g_efficiencies[] = {
    {&V::CODEC_ID_AV1,         0.05, true},
    {&V::CODEC_ID_H265,        0.06, true},
    {&V::CODEC_ID_VP9,         0.06, true},
    {&V::CODEC_ID_H264,        0.10, true},
    {&V::CODEC_ID_VP8,         0.12, true},
    {&V::CODEC_ID_VC1,         0.12, true},
    {&V::CODEC_ID_WMV3,        0.12, true},
    {&V::CODEC_ID_MPEG4,       0.15, true},
    {&V::CODEC_ID_THEORA,      0.15, true},
    {&V::CODEC_ID_WMV2,        0.18, true},
    {&V::CODEC_ID_FLV1,        0.20, true},
    {&V::CODEC_ID_H263,        0.20, true},
    {&V::CODEC_ID_MPEG2VIDEO,  0.20, true},
    {&V::CODEC_ID_MPEG1VIDEO,  0.25, true},
    {&V::CODEC_ID_MJPEG,       1.0,  true},
    {&V::CODEC_ID_JPEG2000,    1.5,  true},
    {&V::CODEC_ID_DVVIDEO,     2.4,  false},  // 25 Mbit/s (SMPTE 314M)
    {&V::CODEC_ID_PRORES,      2.4,  false},
    {&V::CODEC_ID_HAP,         4.0,  false},
    {&V::CODEC_ID_JPEGLS,      8.0,  false},
    {&V::CODEC_ID_UTVIDEO,     8.0,  false},
    {&V::CODEC_ID_QTRLE,      12.0,  false},
    {&V::CODEC_ID_GIF,         4.0,  false},
    {&V::CODEC_ID_PNG,        12.0,  false},
    {&V::CODEC_ID_APNG,       12.0,  false},
    {&V::CODEC_ID_TIFF,       16.0,  false},
    {&V::CODEC_ID_PCX,        16.0,  false},
    {&V::CODEC_ID_SGI,        16.0,  false},
    {&V::CODEC_ID_TARGA,      16.0,  false},
    {&V::CODEC_ID_BMP,        24.0,  false},
    {&V::CODEC_ID_DPX,        32.0,  false},
    {&V::CODEC_ID_PAM,        24.0,  false},
    {&V::CODEC_ID_PPM,        24.0,  false},
    {&V::CODEC_ID_XWD,        24.0,  false},
    {&V::CODEC_ID_PGMYUV,     12.0,  false},
    {&V::CODEC_ID_PGM,         8.0,  false},
    {&V::CODEC_ID_PBM,         1.0,  false},
    {&V::CODEC_ID_XBM,         5.0,  false},
};
// clang-format on

/// Where nothing is known of a codec, it counts as an older one.
constexpr Efficiency g_unknownCodec = {nullptr, 0.20, true};

/// The bottom of the default video bitrate range, bits per second.
constexpr double minBitrate = 100000;
/// The quantiser that encoders take as ordinary, x264's default.
constexpr int referenceQuality = 23;
/// H.264's quantiser step doubles every six, and bits go about inversely with it.
constexpr double qualityStepsPerDoubling = 6;
constexpr double referenceFps = 25;
/// At a higher rate neighbouring frames differ less: twice the frames take about 1.7 times the bits.
constexpr double fpsExponent = 0.75;

const Efficiency& FindEfficiency(const std::string& codecId) {
    const auto* const row = std::find_if(std::begin(g_efficiencies), std::end(g_efficiencies),
                                         [&codecId](const Efficiency& e) { return *e.codecId == codecId; });
    return row != std::end(g_efficiencies) ? *row : g_unknownCodec;
}

}  // namespace

long long GetDefaultVideoBitrate(const std::string& codecId, long long width, long long height, double fps,
                                 int quality) {
    const Efficiency& codec = FindEfficiency(codecId);
    if (width <= 0 || height <= 0 || !(fps > 0)) return static_cast<long long>(minBitrate);

    double bitsPerPixel = codec.bitsPerPixel;
    if (codec.lossy && quality != -1) {
        const int quantiser = std::clamp(quality, 1, static_cast<int>(V::MAX_QUALITY));
        bitsPerPixel *= std::exp2((referenceQuality - quantiser) / qualityStepsPerDoubling);
    }
    // Still pictures and lossless codecs gain nothing from a neighbour.
    const double exponent = codec.lossy ? fpsExponent : 1.0;
    const double framesPerSecond = referenceFps * std::pow(fps / referenceFps, exponent);
    const double bitrate = static_cast<double>(width) * static_cast<double>(height) * bitsPerPixel * framesPerSecond;
    return std::llround(std::clamp(bitrate, minBitrate, static_cast<double>(V::MAX_VIDEO_BITRATE)));
}

}  // namespace Norvex::Conf
