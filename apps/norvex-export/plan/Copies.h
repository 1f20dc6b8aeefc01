/// Streams that are carried over unchanged.
#pragma once

#include "norvex-export/Plan.h"

namespace NorvexExport {

/// Plans to carry a stream over unchanged, where that was asked and can be.
bool PlanCopy(Plan& plan, const Norvex::Core::Property& formatTree, const VideoSource& source, bool isAsked);
bool PlanCopy(Plan& plan, const Norvex::Core::Property& formatTree, const AudioSource& source, bool isAsked);

}  // namespace NorvexExport
