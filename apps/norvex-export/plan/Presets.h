/// Presets that a plan starts from, and the one that it leaves behind.
#pragma once

#include <string>
#include <vector>

#include "norvex-export/Plan.h"

namespace NorvexExport {

/// The codec's section and, but for the resizer's, the filters' that give a settled stream again.
std::vector<Norvex::Core::Property> SectionsOf(const StreamPlan& stream);

/// The preset that gives the plan's streams again: a section for all streams of a kind, and by the index of the stream
/// what they do not share.
Norvex::Core::Property PresetOf(const Plan& plan);

/// The kind of the streams that a section of a preset is about; none for a section that is not about streams.
std::optional<StreamKind> KindOfSection(const std::string& section);

}  // namespace NorvexExport
