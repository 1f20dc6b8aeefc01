#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"

/// What the sections of a preset may hold, and what somebody meant who wrote a value down.

namespace Norvex::Conf {

/// What a section may hold at one path.
struct Parameter {
    PropertyTypes type = PT_NONE;  ///< of the value; PT_NODE for a section, PT_NONE where any will do
    /// On the value, as the helper has it; null where there is none.
    SP<const IPropertyConstraint> constraint;
    /// The value that leaves the choice to the system or keeps the source's own, where there is one. The constraint may
    /// refuse it.
    std::optional<Core::Property> automatic;
};

/// By the path within the section.
using ParameterMap = std::map<std::string, Parameter>;

/// The parameters of the section of that kind (as CreateDataHelper takes it, or IPreset::KEY_FILTER_SUBTITLE_CODEC) for
/// the container or codec of that id: those of the helper's defaults and constraints, and those that every codec of the
/// kind may have. The streams of a container are left out. Where the catalogue does not have the id, what every codec
/// of the kind may have; nothing for a kind that is none.
NORVEX_API ParameterMap ParametersOf(const std::string& kind, const std::string& id);

/// Reads a frame rate as people and programs write it: "25", "30000/1001", and decimals. "29.97", "23.976" and "23.98"
/// are cut or rounded forms of the rates of NTSC, n * 1000/1001; every other decimal is what it says. Gives nothing for
/// texts of another form, for 0 and for less.
NORVEX_API std::optional<Core::Ratio> ParseFrameRate(std::string_view text);

/// Makes of a value that somebody wrote down the one that the parameter means: "Auto" or "auto" its automatic value, a
/// display name of its constraint's list the value that it stands for, a text or number of another type the same in
/// the parameter's type. What means nothing stays as it is.
NORVEX_API void Interpret(Core::Property& value, const Parameter& parameter);

}  // namespace Norvex::Conf
