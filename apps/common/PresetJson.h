/// Presets as JSON documents, without loss of type, and settings trees as JSON for programs.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

#include "norvex/foundation/Property.h"

namespace NorvexApps {

/// A preset that cannot be read; what() is one sentence that begins with the place in the text.
class PresetError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct PresetDocument {
    Norvex::Core::Property preset;
    std::map<std::string, std::string> places;  ///< "line 3" by the path of a value or section

    /// The place of a path, or of the document where the path is not in it.
    std::string PlaceOf(const std::string& path) const;
};

/// The document's version. A document of another version is refused.
constexpr int g_presetVersion = 1;

/// A ratio is the text "30000/1001", always with its denominator. What JSON has no form for is an object with a single
/// member whose name begins with "$":
///   {"$text": "1/2"} for a text that looks like a ratio, {"$bytes": "ff00"} for one that is not UTF-8,
///   {"$double": "nan"} (also "inf" and "-inf"), {"$none": true} for a node without a value, and
///   {"$children": [["name", value], ...]} for a node whose names repeat or begin with "$".
/// Throws PresetError for a preset so deep that ReadPreset would refuse it.
std::string WritePreset(const Norvex::Core::Property& preset);

/// Throws PresetError for a text that is damaged or of another version.
PresetDocument ReadPreset(std::string_view text);

/// Throws PresetError where the document names a section, parameter, container or codec that the rule book does not
/// have.
void RequireKnownNames(const PresetDocument& document);

/// A settings tree for programs that read and do not write back: ratios are texts.
nlohmann::ordered_json ToJson(const Norvex::Core::Property& node);

}  // namespace NorvexApps
