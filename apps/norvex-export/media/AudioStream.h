/// Sound that is decoded, filtered and encoded.
#pragma once

#include <memory>

#include "Encoding.h"
#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

std::unique_ptr<OutputStream> MakeAudioStream(const Input& input, const AVStream& stream, const AudioJob& job,
                                              bool globalHeader, Muxer& muxer);

}  // namespace NorvexExport::Media
