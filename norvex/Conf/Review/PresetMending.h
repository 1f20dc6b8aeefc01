#pragma once

#include <optional>
#include <string>
#include <vector>

#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"

/// Whole presets, as a document has them: judged, and mended until they are legal. Both look the helpers up in the
/// catalogue, let automatic values pass, and never throw for what a preset holds.

namespace Norvex::Conf {

/// What a preset breaks, each fault once: what CheckPreset finds, parameters that the section's helper does not have,
/// and frame sizes that are none of those that the codec offers.
///
/// The resampler's own lists of rates and layouts are what a dialog offers. They count only where no codec is named
/// whose rules say what may be.
NORVEX_API std::vector<Finding> JudgePreset(const Core::Property& preset);

/// What became of one value, section or stream of a preset that was mended.
struct MendedValue {
    enum class Outcome {
        Kept,       ///< of a section that was made anew: it means the same there, and is legal
        Corrected,  ///< a legal value took its place, the nearest where values have a distance
        Defaulted,  ///< the helper's default took its place, or stands where there was nothing
        Dropped,    ///< nothing took its place
    };

    Outcome outcome = Outcome::Kept;
    std::string path;                      ///< in the document
    std::optional<Core::Property> before;  ///< empty where there was none
    std::optional<Core::Property> after;   ///< empty where it was dropped
    std::string message;                   ///< one sentence, translated
};

struct MendedPreset {
    Core::Property preset;
    std::vector<Finding> broken;  ///< of the former preset, without missing values
    std::vector<MendedValue> values;
    std::vector<Finding> left;  ///< what the mended preset still breaks: nothing, as far as known
    std::vector<Finding> open;  ///< rules about values that the mended preset leaves to the source
};

/// Makes a preset legal. One that breaks nothing stays as it is.
///
/// What the container does not hold is dropped. A codec that it may not have becomes its default codec. A codec's
/// section in which the codec changed, or that still has parameters of another codec, starts from the codec's own
/// defaults: mode, bitrate, quality, threads and frame rate are kept where the codec may have them, everything else is
/// dropped. Every other value becomes the nearest legal one, or else the default, and is dropped if there is none.
NORVEX_API MendedPreset MendPreset(const Core::Property& preset);

}  // namespace Norvex::Conf
