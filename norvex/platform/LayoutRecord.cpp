#include "norvex/interfaces/Conf/LayoutRecord.h"

#include <algorithm>
#include <iterator>

#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/platform/LayoutRows.h"

namespace Norvex::Conf {

namespace {

using L = ChannelLayout;
using A = IFormatCodecAudio;

// clang-format off
/// Names and masks of FFmpeg's libavutil/channel_layout, in the order of the enumeration, so that a layout's number
/// is the index of its row. Only addresses of the names are taken here: they are filled later.
constexpr LayoutRow g_rows[] = {
    // layout            channels  name                                mask
    {{L::Unknown,             0, &A::TAG_CH_LAYOUT_UNKNOWN},           0},
    {{L::Mono,                1, &A::TAG_CH_LAYOUT_MONO},              AV_CH_LAYOUT_MONO},
    {{L::Stereo,              2, &A::TAG_CH_LAYOUT_STEREO},            AV_CH_LAYOUT_STEREO},
    {{L::L2Point1,            3, &A::TAG_CH_LAYOUT_2POINT1},           AV_CH_LAYOUT_2POINT1},
    {{L::Surround,            3, &A::TAG_CH_LAYOUT_SURROUND},          AV_CH_LAYOUT_SURROUND},
    {{L::L2_1,                3, &A::TAG_CH_LAYOUT_2_1},               AV_CH_LAYOUT_2_1},
    {{L::L4Point0,            4, &A::TAG_CH_LAYOUT_4POINT0},           AV_CH_LAYOUT_4POINT0},
    {{L::Quad,                4, &A::TAG_CH_LAYOUT_QUAD},              AV_CH_LAYOUT_QUAD},
    {{L::L2_2,                4, &A::TAG_CH_LAYOUT_2_2},               AV_CH_LAYOUT_2_2},
    {{L::L3Point1,            4, &A::TAG_CH_LAYOUT_3POINT1},           AV_CH_LAYOUT_3POINT1},
    {{L::L5Point0Back,        5, &A::TAG_CH_LAYOUT_5POINT0_BACK},      AV_CH_LAYOUT_5POINT0_BACK},
    {{L::L5Point0,            5, &A::TAG_CH_LAYOUT_5POINT0},           AV_CH_LAYOUT_5POINT0},
    {{L::L4Point1,            5, &A::TAG_CH_LAYOUT_4POINT1},           AV_CH_LAYOUT_4POINT1},
    {{L::L5Point1Back,        6, &A::TAG_CH_LAYOUT_5POINT1_BACK},      AV_CH_LAYOUT_5POINT1_BACK},
    {{L::L5Point1,            6, &A::TAG_CH_LAYOUT_5POINT1},           AV_CH_LAYOUT_5POINT1},
    {{L::L6Point0,            6, &A::TAG_CH_LAYOUT_6POINT0},           AV_CH_LAYOUT_6POINT0},
    {{L::L6Point0Front,       6, &A::TAG_CH_LAYOUT_6POINT0_FRONT},     AV_CH_LAYOUT_6POINT0_FRONT},
    {{L::Hexagonal,           6, &A::TAG_CH_LAYOUT_HEXAGONAL},         AV_CH_LAYOUT_HEXAGONAL},
    {{L::L6Point1,            7, &A::TAG_CH_LAYOUT_6POINT1},           AV_CH_LAYOUT_6POINT1},
    {{L::L6Point1Back,        7, &A::TAG_CH_LAYOUT_6POINT1_BACK},      AV_CH_LAYOUT_6POINT1_BACK},
    {{L::L6Point1Front,       7, &A::TAG_CH_LAYOUT_6POINT1_FRONT},     AV_CH_LAYOUT_6POINT1_FRONT},
    {{L::L7Point0,            7, &A::TAG_CH_LAYOUT_7POINT0},           AV_CH_LAYOUT_7POINT0},
    {{L::L7Point0Front,       7, &A::TAG_CH_LAYOUT_7POINT0_FRONT},     AV_CH_LAYOUT_7POINT0_FRONT},
    {{L::L7Point1,            8, &A::TAG_CH_LAYOUT_7POINT1},           AV_CH_LAYOUT_7POINT1},
    {{L::L7Point1WideBack,    8, &A::TAG_CH_LAYOUT_7POINT1_WIDE_BACK}, AV_CH_LAYOUT_7POINT1_WIDE_BACK},
    {{L::L7Point1Wide,        8, &A::TAG_CH_LAYOUT_7POINT1_WIDE},      AV_CH_LAYOUT_7POINT1_WIDE},
    {{L::Octagonal,           8, &A::TAG_CH_LAYOUT_OCTAGONAL},         AV_CH_LAYOUT_OCTAGONAL},
    {{L::Hexadecagonal,      16, &A::TAG_CH_LAYOUT_HEXADECAGONAL},     AV_CH_LAYOUT_HEXADECAGONAL},
    {{L::StereoDownmix,       2, &A::TAG_CH_LAYOUT_STEREO_DOWNMIX},    AV_CH_LAYOUT_STEREO_DOWNMIX},
    {{L::L22Point2,          24, &A::TAG_CH_LAYOUT_22POINT2},          AV_CH_LAYOUT_22POINT2},
    // What later majors of FFmpeg name, by numbers: the oldest one has no words for all of their channels.
    {{L::L3Point1Point2,      6, &A::TAG_CH_LAYOUT_3POINT1POINT2},     0x500f},
    {{L::L5Point1Point2,      8, &A::TAG_CH_LAYOUT_5POINT1POINT2},     0x560f},
    {{L::L5Point1Point2Back,  8, &A::TAG_CH_LAYOUT_5POINT1POINT2_BACK}, 0x503f},
    {{L::Cube,                8, &A::TAG_CH_LAYOUT_CUBE},              0x2d033},
    {{L::L5Point1Point4,     10, &A::TAG_CH_LAYOUT_5POINT1POINT4},     0x2d60f},
    {{L::L5Point1Point4Back, 10, &A::TAG_CH_LAYOUT_5POINT1POINT4_BACK}, 0x2d03f},
    {{L::L7Point1Point2,     10, &A::TAG_CH_LAYOUT_7POINT1POINT2},     0x563f},
    {{L::L7Point1Point4,     12, &A::TAG_CH_LAYOUT_7POINT1POINT4},     0x2d63f},
    {{L::L7Point2Point3,     12, &A::TAG_CH_LAYOUT_7POINT2POINT3},     0x80001563f},
    {{L::L9Point1Point4,     14, &A::TAG_CH_LAYOUT_9POINT1POINT4},     0x2d6ff},
    {{L::L9Point1Point6,     16, &A::TAG_CH_LAYOUT_9POINT1POINT6},     0x300002d6ff},
    {{L::Binaural,            2, &A::TAG_CH_LAYOUT_BINAURAL},          0x6000000000000000},
};
// clang-format on

constexpr bool RowsAreInOrder() {
    for (std::size_t i = 0; i < std::size(g_rows); ++i) {
        if (static_cast<std::size_t>(g_rows[i].record.layout) != i) return false;
        int bits = 0;
        for (std::uint64_t mask = g_rows[i].mask; mask != 0; mask &= mask - 1) ++bits;
        if (g_rows[i].record.channels != bits) return false;
    }
    return true;
}
static_assert(RowsAreInOrder(), "a row's place is its layout's number, and its channels are the bits of its mask");

FormatException UnknownLayout(const std::string& subject) {
    FormatException exception;
    exception << TagDescription("Unknown channel layout") << TagDetails(subject);
    return exception;
}

template <class Predicate>
const LayoutRow* FindRow(Predicate predicate) {
    const auto* const row = std::find_if(std::begin(g_rows), std::end(g_rows), predicate);
    return row != std::end(g_rows) ? row : nullptr;
}

}  // namespace

const LayoutRow* FindLayoutRow(std::uint64_t mask) {
    if (mask == 0) return nullptr;
    return FindRow([mask](const LayoutRow& row) { return row.mask == mask; });
}

const LayoutRecord& LayoutRecord::Find(ChannelLayout layout) {
    const auto index = static_cast<std::size_t>(layout);
    if (index >= std::size(g_rows)) NORVEX_THROW(UnknownLayout(std::to_string(static_cast<std::int32_t>(layout))));
    return g_rows[index].record;
}

const LayoutRecord& LayoutRecord::Find(const std::string& name) {
    const LayoutRow* const row =
        FindRow([&name](const LayoutRow& candidate) { return *candidate.record.name == name; });
    if (row == nullptr) NORVEX_THROW(UnknownLayout(name));
    return row->record;
}

const LayoutRecord& LayoutRecord::Find(int channels) {
    const LayoutRecord* const record = FindDefault(channels);
    if (record == nullptr) NORVEX_THROW(UnknownLayout(std::to_string(channels) + " channels"));
    return *record;
}

const LayoutRecord* LayoutRecord::FindDefault(int channels) {
    AVChannelLayout layout{};
    if (channels > 0) av_channel_layout_default(&layout, channels);
    if (layout.order != AV_CHANNEL_ORDER_NATIVE) return nullptr;
    const LayoutRow* const row = FindLayoutRow(layout.u.mask);
    return row != nullptr ? &row->record : nullptr;
}

}  // namespace Norvex::Conf
