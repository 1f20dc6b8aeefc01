/// The streams of the output, each of which carries one of the input to the muxer.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "Encoding.h"
#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

using OutputStreams = std::vector<std::unique_ptr<OutputStream>>;

/// What the first pass leaves to the second, by the streams of the input that are encoded twice.
using PassRecords = std::map<int, PassRecord>;

/// The streams that the pass of that number makes of what the job asks of the input, each added to the muxer.
OutputStreams MakeStreams(Input& input, const ExportJob& job, int pass, PassRecords& records, Muxer& muxer);

/// Begins the input's film and gives the muxer its tags, once the streams are made.
void BeginFilm(Input& input, const ExportJob& job, Muxer& muxer);

}  // namespace NorvexExport::Media
