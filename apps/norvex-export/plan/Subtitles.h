/// What becomes of subtitles.
#pragma once

#include <vector>

#include "Draft.h"

namespace NorvexExport {

/// Text becomes text of the container's own codec; pictures go over as they are, where the container takes them.
void PlanSubtitles(Draft& draft, const std::vector<const SubtitleSource*>& sources);

}  // namespace NorvexExport
