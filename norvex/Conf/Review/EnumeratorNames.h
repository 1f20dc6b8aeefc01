#pragma once

#include "norvex/Conf/Review/CorrectionReport.h"
#include "norvex/Conf/Review/Fit.h"
#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/Conf/Review/PresetMending.h"
#include "norvex/foundation/Export.h"

/// What programs call the enumerators of the reviews, in JSON and in Python: "as_it_is" for StreamFit::Answer::AsItIs.
/// They are never translated.

namespace Norvex::Conf {

NORVEX_API const char* NameOf(Finding::Source source) noexcept;
NORVEX_API const char* NameOf(Finding::Verdict verdict) noexcept;
NORVEX_API const char* NameOf(Finding::Problem problem) noexcept;
NORVEX_API const char* NameOf(CorrectedValue::Reason reason) noexcept;
NORVEX_API const char* NameOf(MendedValue::Outcome outcome) noexcept;
NORVEX_API const char* NameOf(StreamKind kind) noexcept;
NORVEX_API const char* NameOf(StreamFit::Answer answer) noexcept;

}  // namespace Norvex::Conf
