#pragma once

#include <cstdint>
#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex {

/// Audio sample formats. The numbers are those of FFmpeg's AVSampleFormat.
enum class SampleFormats : std::int32_t { None = -1, U8, S16, S32, Flt, Dbl, U8P, S16P, S32P, FltP, DblP, S64, S64P };

namespace Conf {

/// What is known of a sample format, after FFmpeg's libavutil/samplefmt.
struct NORVEX_API SampleFmtRecord {
    SampleFormats format;
    std::int32_t bits;   ///< per sample
    std::string name;    ///< FFmpeg's name, the value of IFormatCodecAudio::TAG_SAMPLE_FORMAT
    bool planar;         ///< one plane per channel instead of interleaved samples
    SampleFormats twin;  ///< the same samples in the other arrangement

    /// Throw FormatException for what is not in the table, SampleFormats::None included.
    static const SampleFmtRecord& Find(SampleFormats format);
    static const SampleFmtRecord& Find(const std::string& name);
};

}  // namespace Conf
}  // namespace Norvex
