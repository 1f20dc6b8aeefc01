/// Which pairs of container and codec of the book do not go, though the book has them.
#pragma once

#include <optional>
#include <string>

namespace NorvexApps {

struct PairFault {
    const char* failure;  ///< what an export says, in part
    const char* whose;    ///< "FFmpeg" or "system"
    const char* why;
};

/// What is known of the pair in the running build. What has no encoder there is no fault of the pair.
std::optional<PairFault> FaultOf(const std::string& formatId, const std::string& codecId);

}  // namespace NorvexApps
