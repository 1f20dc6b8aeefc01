/// What becomes of the pictures.
#pragma once

#include "norvex-export/Plan.h"
#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexExport {

void PlanVideo(Plan& plan, const Norvex::Conf::NamedHelper& format, const Norvex::Core::Property& formatTree);

}  // namespace NorvexExport
