#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "norvex/document/DocumentException.h"
#include "norvex/document/TreeForm.h"
#include "norvex/foundation/Property.h"

/// Presets as JSON documents, without loss of type. docs/preset-document.md tells the form, preset.schema.json has its
/// schema.

namespace Norvex::Document {

/// The version of the form. Older documents are brought up as they are read, newer ones are refused.
constexpr int g_presetVersion = 2;

/// In bytes. A text that is larger is refused before anything is made of it: no preset has a hundredth of it.
constexpr std::size_t g_largestPreset = 1000000;

/// What a preset is to people. Each text may be empty, and has no meaning to the rule book.
struct PresetAbout {
    std::string name;         ///< a few words for a list
    std::string description;  ///< a sentence
    std::string purpose;      ///< what lists put together, such as "web"

    bool operator==(const PresetAbout& other) const {
        return name == other.name && description == other.description && purpose == other.purpose;
    }
};

struct NORVEX_API PresetDocument {
    Core::Property preset;  ///< a section a child; see IPreset
    Lines lines;            ///< of values and sections by their paths; empty where there was no text
    PresetAbout about = {};

    /// Of the path, or else of the nearest section around it; 0 where there was no text.
    int LineOf(std::string path) const;
};

/// The text of a document; ParsePreset gives the same tree again. Throws DocumentException for a tree so deep that it
/// would refuse it.
NORVEX_API std::string WritePreset(const Core::Property& preset, const PresetAbout& about = {});

/// The tree that a text holds, whatever its names are. Throws DocumentException for a text that is damaged, too large
/// or of a later version.
NORVEX_API PresetDocument ParsePreset(std::string_view text);

/// What of a section's parameters belongs to another container or codec than the section names.
enum class Foreign {
    Refused,
    Left,  ///< for MendPreset, which drops it: somebody changed the container or the codec
};

/// Holds a preset against the rule book, and gives its values the meaning that they have there: numbers and ratios that
/// are written as texts, decimals for the frame rates of NTSC, "Auto" and display names; see Conf::Interpret. A frame
/// size mode such as "720 x 480" becomes the custom mode of that size. Throws DocumentException where the preset names
/// a section, parameter, container or codec that the rule book does not have.
///
/// Fill the encoder census of FormatValidator before.
NORVEX_API void InterpretPreset(PresetDocument& document, Foreign foreign = Foreign::Refused);

/// ParsePreset and InterpretPreset: how a host reads a preset that somebody else wrote.
NORVEX_API PresetDocument ReadPreset(std::string_view text, Foreign foreign = Foreign::Refused);

}  // namespace Norvex::Document
