/// What becomes of the subtitles.
#pragma once

#include "norvex-export/Plan.h"
#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexExport {

void PlanSubtitles(Plan& plan, const Norvex::Conf::NamedHelper& format, const Norvex::Core::Property& formatTree);

}  // namespace NorvexExport
