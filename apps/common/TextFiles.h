/// Whole files as texts.
#pragma once

#include <string>

namespace NorvexApps {

/// Both throw std::runtime_error with one sentence that names the file.
std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& text);

}  // namespace NorvexApps
