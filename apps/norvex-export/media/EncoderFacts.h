/// What encoders are known to take and to be able to.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
}

namespace NorvexExport::Media {

/// What an encoder declares that it takes; an empty list says nothing.
std::vector<AVPixelFormat> DeclaredPixelFormats(const AVCodec& codec);
std::vector<AVSampleFormat> DeclaredSampleFormats(const AVCodec& codec);
std::vector<int> DeclaredSampleRates(const AVCodec& codec);
/// The layouts stay the encoder's.
std::vector<AVChannelLayout> DeclaredLayouts(const AVCodec& codec);

template <class T>
bool Takes(const std::vector<T>& declared, const T& value) {
    return declared.empty() || std::find(declared.begin(), declared.end(), value) != declared.end();
}

const AVCodec& FindEncoder(const std::string& codecId, AVMediaType type);
bool IsX26x(const AVCodec& codec);

/// Whether the encoder codes a profile that it takes, and does not only write its number into the stream.
bool CodesProfile(const AVCodec& codec, std::string_view profile);

/// How an encoder can be told to hold a quality.
enum class QualityControl { None, RateFactor, Quantiser };

QualityControl QualityControlOf(const AVCodec& codec);

/// How an encoder carries what its first pass found to its second.
enum class PassLog {
    None,      ///< it cannot make two passes
    Text,      ///< by way of AVCodecContext
    File,      ///< in a file that its option "stats" names
    X265File,  ///< in a file that x265's own parameters name
};

PassLog PassLogOf(const AVCodec& codec);

}  // namespace NorvexExport::Media
