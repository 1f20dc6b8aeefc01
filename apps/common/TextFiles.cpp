#include "TextFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace NorvexApps {

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    file.peek();  // a folder opens too, and fails when it is read
    if (!file.is_open() || file.bad()) throw std::runtime_error("cannot read '" + path + "'");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!file.write(text.data(), static_cast<std::streamsize>(text.size())) || !file.flush()) {
        const std::filesystem::path folder = std::filesystem::path(path).parent_path();
        const bool isMissing = !folder.empty() && !std::filesystem::exists(folder);
        throw std::runtime_error("cannot write '" + path + "'" +
                                 (isMissing ? ": there is no folder '" + folder.string() + "'" : std::string()));
    }
}

}  // namespace NorvexApps
