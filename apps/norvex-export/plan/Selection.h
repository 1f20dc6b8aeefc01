/// Which streams of an input go into an output.
#pragma once

#include <vector>

#include "Draft.h"

namespace NorvexExport {

/// Streams of the input, in its order.
struct Selection {
    std::vector<const VideoSource*> pictures;
    std::vector<const VideoSource*> covers;
    std::vector<const AudioSource*> sounds;
    std::vector<const SubtitleSource*> subtitles;  ///< not yet judged one by one, nor held against the limit
    std::vector<const AttachmentSource*> attachments;
    std::vector<const StreamSource*> data;
};

/// What the user wants of the input and the container can hold, within its limits. Notes say what is left out. Throws
/// RequestError where the user wants a stream that is not there.
Selection SelectStreams(Draft& draft);

}  // namespace NorvexExport
