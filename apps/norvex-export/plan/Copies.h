/// Streams that are carried over unchanged.
#pragma once

#include "Draft.h"

namespace NorvexExport {

/// Plans to carry a picture or sound over unchanged, where that was asked and can be. What is asked of it otherwise
/// stands in its own request.
bool PlanCopy(Draft& draft, const VideoSource& source, const Request& own);
bool PlanCopy(Draft& draft, const AudioSource& source, const Request& own);

/// The same of a cover in a container that has one by the rule book.
bool PlanCoverCopy(Draft& draft, const VideoSource& source, const Request& own);

/// Plans to carry over what the rule book has no word for: covers, attachments, subtitles, data. False where FFmpeg
/// cannot write it.
bool PlanCopy(Draft& draft, StreamKind kind, const StreamSource& source, const std::string& words);

/// Plans to carry over what is attached to the input, and its streams of data.
void PlanOthers(Draft& draft, const std::vector<const AttachmentSource*>& attachments,
                const std::vector<const StreamSource*>& data);

}  // namespace NorvexExport
