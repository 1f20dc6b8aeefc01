#pragma once

#include <cstdint>
#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex {

/// Audio channel layouts: those that FFmpeg names, in the order of FFmpeg's own list.
enum class ChannelLayout : std::int32_t {
    Unknown,  ///< none is chosen
    Mono,
    Stereo,
    L2Point1,
    Surround,
    L2_1,
    L4Point0,
    Quad,
    L2_2,
    L3Point1,
    L5Point0Back,
    L5Point0,
    L4Point1,
    L5Point1Back,
    L5Point1,
    L6Point0,
    L6Point0Front,
    Hexagonal,
    L6Point1,
    L6Point1Back,
    L6Point1Front,
    L7Point0,
    L7Point0Front,
    L7Point1,
    L7Point1WideBack,
    L7Point1Wide,
    Octagonal,
    Hexadecagonal,
    StereoDownmix,
    L22Point2,
    L3Point1Point2,
    L5Point1Point2,
    L5Point1Point2Back,
    Cube,
    L5Point1Point4,
    L5Point1Point4Back,
    L7Point1Point2,
    L7Point1Point4,
    L7Point2Point3,
    L9Point1Point4,
    L9Point1Point6,
    Binaural,
};

namespace Conf {

/// What is known of a channel layout, after FFmpeg's libavutil/channel_layout.
struct NORVEX_API LayoutRecord {
    ChannelLayout layout;
    std::int32_t channels;    ///< 0 for ChannelLayout::Unknown
    const std::string* name;  ///< one of the TAG_CH_LAYOUT_ constants of IFormatCodecAudio, never null

    /// Throw FormatException for what is not in the table.
    static const LayoutRecord& Find(ChannelLayout layout);
    static const LayoutRecord& Find(const std::string& name);
    /// The layout that FFmpeg takes for a count of channels when nothing else is said.
    static const LayoutRecord& Find(int channels);
    /// The same, or null for a count that has none.
    static const LayoutRecord* FindDefault(int channels);
};

}  // namespace Conf
}  // namespace Norvex
