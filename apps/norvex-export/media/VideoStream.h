/// Pictures that are decoded, filtered and encoded.
#pragma once

#include <memory>

#include "Encoding.h"
#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

std::unique_ptr<OutputStream> MakeVideoStream(const Input& input, const AVStream& stream, const VideoJob& job,
                                              bool globalHeader, const Pass& pass, Muxer& muxer);

}  // namespace NorvexExport::Media
