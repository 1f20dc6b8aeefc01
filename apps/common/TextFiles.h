/// Whole files as texts.
#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace NorvexApps {

/// Both throw std::runtime_error with one sentence that names the file.
/// Reads no more than `most` bytes: a device may have no end.
std::string ReadText(const std::string& path, std::size_t most = std::numeric_limits<std::size_t>::max());
void WriteText(const std::string& path, const std::string& text);

}  // namespace NorvexApps
