/// What becomes of a sound.
#pragma once

#include "Draft.h"

namespace NorvexExport {

void PlanSound(Draft& draft, const AudioSource& source);

}  // namespace NorvexExport
