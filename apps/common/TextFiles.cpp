#include "TextFiles.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace NorvexApps {

std::string ReadText(const std::string& path, std::size_t most) {
    std::ifstream file(path, std::ios::binary);
    file.peek();  // a folder opens too, and fails when it is read
    if (!file.is_open() || file.bad()) throw std::runtime_error("cannot read '" + path + "'");
    std::string text;
    for (char character = 0; text.size() < most && file.get(character);) text += character;
    return text;
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
