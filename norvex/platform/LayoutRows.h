#pragma once

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <cstdint>

#include "norvex/interfaces/Conf/LayoutRecord.h"

namespace Norvex::Conf {

/// A layout and its AV_CH_ bits, 0 for ChannelLayout::Unknown.
struct LayoutRow {
    LayoutRecord record;
    std::uint64_t mask;
};

/// The row of a mask, or null.
const LayoutRow* FindLayoutRow(std::uint64_t mask);

}  // namespace Norvex::Conf
