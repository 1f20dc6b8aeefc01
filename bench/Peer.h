#pragma once

#include "Row.h"

namespace NorvexBench {

/// GStreamer: the caps of AAC's encoder intersected with those of a source, and the nearest format chosen of what is
/// left. Built only where GStreamer is found.
Side IntersectAndFixate();

}  // namespace NorvexBench
