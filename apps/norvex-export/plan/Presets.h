/// Presets that a plan starts from, and those that it leaves behind.
#pragma once

#include "norvex-export/Plan.h"

namespace NorvexExport {

/// The codec's section and the filters' that give a settled stream again.
void AddSettled(const Norvex::Core::Property& stream, Norvex::Core::Property& preset);

}  // namespace NorvexExport
