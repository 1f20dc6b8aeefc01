#pragma once

#include <cstdint>

namespace Norvex::Conf {

/// The size of a frame and the shape of its pixels.
struct FrameInfo {
    std::int32_t width = 0;    ///< pixels
    std::int32_t height = 0;   ///< pixels
    std::int32_t aspectX = 0;  ///< width of one pixel, in relation to aspectY
    std::int32_t aspectY = 0;  ///< height of one pixel
};

}  // namespace Norvex::Conf
