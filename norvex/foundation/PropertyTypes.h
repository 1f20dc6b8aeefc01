#pragma once

#include <cstdint>

namespace Norvex {

/// What a node of the settings tree holds. Constraints store these numbers and exceptions carry them.
enum PropertyTypes : std::uint32_t {
    PT_NONE = 0,  ///< no value yet
    PT_BOOL = 1,
    PT_DOUBLE = 2,
    PT_INT64 = 3,
    PT_STRING = 4,
    PT_RATIO = 5,  ///< boost::rational<long long>, such as a frame rate
    PT_NODE = 6,   ///< children and no scalar
};

}  // namespace Norvex
