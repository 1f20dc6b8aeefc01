#pragma once

#include <string>

#include "norvex/foundation/Export.h"

/// How FFmpeg writes the containers of the book.

namespace Norvex::Conf {

/// FFmpeg's short name of the muxer that writes a container: the id itself, where no other is known. The running build
/// need not have it.
NORVEX_API std::string MuxerOf(const std::string& formatId);

/// Whether the container holds one picture and nothing else.
NORVEX_API bool HoldsOnePicture(const std::string& formatId);

/// Whether the container's muxer keeps a picture of this codec (FFmpeg's name of it) as a cover beside film or sound:
/// FFmpeg's "attached picture". Tried with FFmpeg 5.1, by reading back what was written.
NORVEX_API bool KeepsCover(const std::string& formatId, const std::string& codecId);

/// The same of files inside the file, such as fonts.
NORVEX_API bool KeepsAttachments(const std::string& formatId);

}  // namespace Norvex::Conf
