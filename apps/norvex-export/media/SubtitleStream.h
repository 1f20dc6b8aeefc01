/// Subtitles that are decoded and encoded, event by event.
#pragma once

#include <memory>

#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

std::unique_ptr<OutputStream> MakeSubtitleStream(const Input& input, const AVStream& stream, const SubtitleJob& job,
                                                 bool globalHeader, Muxer& muxer);

}  // namespace NorvexExport::Media
