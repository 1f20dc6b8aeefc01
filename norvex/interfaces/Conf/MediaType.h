#pragma once

#include <cstdint>

namespace Norvex {

/// What a codec helper or a stream serves.
enum class MediaType : std::int32_t {
    None = 0,  ///< neither picture nor sound
    Video = 1,
    Audio = 2,
};

}  // namespace Norvex
