/// A stream that goes over as it is.
#pragma once

#include <memory>

#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

std::unique_ptr<OutputStream> MakeCopiedStream(const Input& input, const AVStream& stream, Muxer& muxer);

}  // namespace NorvexExport::Media
