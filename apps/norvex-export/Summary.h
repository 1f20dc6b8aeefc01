/// What an export comes to, as a person would write it.
#pragma once

#include <string>

#include "Plan.h"

namespace NorvexExport {

/// One line for the file: "MP4, H.264 High 1920x1080 at 25 fps, quality 20; AAC stereo 48 kHz 192 kbit/s". Then a line
/// for each value that is another than the one that was asked for, with the reason, and for what the source has
/// otherwise though nobody asked.
std::string SummaryText(const Plan& plan);

}  // namespace NorvexExport
