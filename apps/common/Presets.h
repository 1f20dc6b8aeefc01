/// The presets that have names: the user's own, and those that come with the programs.
#pragma once

#include <string>
#include <vector>

#include "norvex/document/PresetDocument.h"

namespace NorvexApps {

struct NamedPreset {
    std::string name;
    std::string path;
    Norvex::Document::PresetAbout about;
};

/// Those of $XDG_CONFIG_HOME/norvex/presets (~/.config where that is not set), and then those of share/norvex/presets
/// beside the program, each name once, by name. Of a file that is no preset, the description says what is wrong.
std::vector<NamedPreset> ListPresets();

std::vector<std::string> PresetNames();

/// The same for people, by purpose. Without the end of the last line.
std::string PresetsText();

/// The file that is meant: that of a preset of this name, or else the one of this path. Throws std::runtime_error where
/// there is neither.
std::string FindPreset(const std::string& nameOrPath);

}  // namespace NorvexApps
