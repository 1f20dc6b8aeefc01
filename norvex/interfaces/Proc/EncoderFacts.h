#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

namespace Norvex::Proc {

/// One of the pixel formats that an encoder takes, after FFmpeg's description of it (libavutil/pixdesc).
struct NORVEX_API PixelFormatFacts {
    std::string name;      ///< FFmpeg's
    int bits = 0;          ///< of the deepest component, transparency included; 0 for surfaces of hardware
    std::string sampling;  ///< "4:2:0" and its like, "RGB", "grey", "palette", "XYZ", "Bayer", or "hardware"
    bool alpha = false;
    bool isFloat = false;
};

/// What an encoder of the running build declares, and what FFmpeg says of its codec. These are facts to show and no
/// rules: nothing of the rule book goes by them.
struct NORVEX_API EncoderFacts {
    std::vector<PixelFormatFacts> pixelFormats;  ///< in the encoder's order; empty for sound, and where it lists none
    bool isHardware = false;                     ///< may be backed by hardware (AV_CODEC_CAP_HARDWARE or _HYBRID)
    bool isExperimental = false;                 ///< must be asked for (AV_CODEC_CAP_EXPERIMENTAL)
    bool threadsFrames = false;                  ///< codes frames side by side (AV_CODEC_CAP_FRAME_THREADS)
    bool threadsSlices = false;                  ///< codes parts of a frame side by side (AV_CODEC_CAP_SLICE_THREADS)
    bool threadsItself = false;                  ///< by its own means (AV_CODEC_CAP_OTHER_THREADS)
    bool isLossless = false;                     ///< its codec can be lossless (AV_CODEC_PROP_LOSSLESS)
    bool isLossy = false;                        ///< its codec can be lossy (AV_CODEC_PROP_LOSSY)
    bool isIntraOnly = false;                    ///< each frame stands for itself (AV_CODEC_PROP_INTRA_ONLY)
};

/// Nothing is known of no encoder.
NORVEX_API EncoderFacts FactsOf(const SafeEncoderCodec& encoder);

}  // namespace Norvex::Proc
