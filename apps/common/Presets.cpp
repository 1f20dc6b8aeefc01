#include "Presets.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>

#include "OtherNames.h"
#include "TextFiles.h"

namespace NorvexApps {

namespace {

namespace fs = std::filesystem;
namespace Document = Norvex::Document;

constexpr const char* g_extension = ".json";

/// The first that has a preset of a name is the one that counts.
std::vector<fs::path> Folders() {
    std::vector<fs::path> folders;
    const auto addOwn = [&folders](const char* variable, const char* below) {
        const char* const folder = std::getenv(variable);
        const bool isSet = folder != nullptr && fs::path(folder).is_absolute();
        if (isSet) folders.push_back(fs::path(folder) / below / "norvex/presets");
        return isSet;
    };
    if (!addOwn("XDG_CONFIG_HOME", "")) addOwn("HOME", ".config");
    // Installed in bin, or a step deeper in the folder that it was built in.
    std::error_code none;
    const fs::path program = fs::read_symlink("/proc/self/exe", none).parent_path();
    for (const char* const up : {"..", "../.."}) folders.push_back(program / up / "share/norvex/presets");
    return folders;
}

Document::PresetAbout AboutOf(const std::string& path) {
    try {
        return Document::ParsePreset(ReadText(path, Document::g_largestPreset + 1)).about;
    } catch (const Document::DocumentException& error) {
        return {{}, std::string("damaged: ") + error.what(), {}};
    } catch (const std::runtime_error& error) {
        return {{}, error.what(), {}};
    }
}

/// The words in lines of no more than 80 characters, each behind so many blanks.
std::string Wrap(const std::string& words, std::size_t indent) {
    constexpr std::size_t width = 80;
    std::istringstream stream(words);
    std::string text;
    std::size_t length = width;
    for (std::string word; stream >> word; length += word.size()) {
        const bool isNew = length + 1 + word.size() > width;
        if (isNew) text += (text.empty() ? "" : "\n" + std::string(indent, ' ')), length = indent;
        if (!isNew) text += ' ', ++length;
        text += word;
    }
    return text;
}

}  // namespace

std::vector<NamedPreset> ListPresets() {
    std::map<std::string, NamedPreset> presets;
    for (const fs::path& folder : Folders()) {
        std::error_code none;
        for (const fs::directory_entry& file : fs::directory_iterator(folder, none)) {
            const fs::path& path = file.path();
            if (path.extension() != g_extension || presets.count(path.stem()) > 0) continue;
            presets.emplace(path.stem(), NamedPreset{path.stem(), path, AboutOf(path)});
        }
    }
    std::vector<NamedPreset> list;
    for (auto& [name, preset] : presets) list.push_back(std::move(preset));
    return list;
}

std::vector<std::string> PresetNames() {
    std::vector<std::string> names;
    for (const NamedPreset& preset : ListPresets()) names.push_back(preset.name);
    return names;
}

std::string PresetsText() {
    const std::vector<NamedPreset> presets = ListPresets();
    std::size_t width = 0;
    for (const NamedPreset& preset : presets) width = std::max(width, preset.name.size());
    std::map<std::string, std::string> groups;
    for (const auto& [name, path, about] : presets) {
        groups[about.purpose.empty() ? "others" : about.purpose] +=
            "  " + name + std::string(width - name.size() + 2, ' ') +
            Wrap(about.name + (about.name.empty() || about.description.empty() ? "" : ": ") + about.description,
                 width + 4) +
            '\n';
    }
    std::string text;
    for (const auto& [purpose, lines] : groups) text += (text.empty() ? "" : "\n") + purpose + '\n' + lines;
    if (text.empty()) return "There are no presets.";
    text.pop_back();
    return text;
}

std::string FindPreset(const std::string& nameOrPath) {
    const bool isName = nameOrPath.find('/') == std::string::npos;
    for (const fs::path& folder : Folders()) {
        const fs::path path = folder / (nameOrPath + g_extension);
        if (isName && fs::exists(path)) return path;
    }
    if (!isName || fs::exists(nameOrPath)) return nameOrPath;
    throw std::runtime_error("there is no preset and no file '" + nameOrPath + "'" +
                             DidYouMean(nameOrPath, PresetNames()));
}

}  // namespace NorvexApps
