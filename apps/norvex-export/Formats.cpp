#include "Formats.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>

#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using F = Norvex::Conf::IFormatFile;

struct Format {
    const std::string* id;
    const char* muxer;
};

// clang-format off
/// Only containers whose id is not the name of the muxer that writes them. The muxer that FFmpeg calls m4v writes a
/// bare stream of MPEG-4 pictures; what players know as M4V is MP4 for Apple's players, like the audio kinds.
constexpr Format g_formats[] = {
    // id              muxer
    {&F::FORMAT_M4V,  "ipod"},
    {&F::FORMAT_M4A,  "ipod"},
    {&F::FORMAT_M4B,  "ipod"},
    {&F::FORMAT_M4R,  "ipod"},
    {&F::FORMAT_F4A,  "f4v"},
};
// clang-format on

}  // namespace

std::string MuxerOf(const std::string& formatId) {
    const auto* const format = std::find_if(std::begin(g_formats), std::end(g_formats),
                                            [&formatId](const Format& row) { return *row.id == formatId; });
    return format != std::end(g_formats) ? format->muxer : formatId;
}

std::string FormatOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

}  // namespace NorvexExport
