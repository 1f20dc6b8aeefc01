/// What becomes of a picture.
#pragma once

#include "Draft.h"

namespace NorvexExport {

void PlanPicture(Draft& draft, const VideoSource& source);

/// A cover is encoded where the container has it by the rule book, as sound files do, and goes over as it is beside a
/// film.
void PlanCover(Draft& draft, const VideoSource& source);

}  // namespace NorvexExport
