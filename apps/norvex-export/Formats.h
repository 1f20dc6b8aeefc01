/// What the program has to know of containers beyond the rule book: which muxer of FFmpeg writes one, and which
/// extensions stand for it.
#pragma once

#include <string>

namespace NorvexExport {

/// FFmpeg's short name of the muxer of a container id.
std::string MuxerOf(const std::string& formatId);

/// The container id for the extension of a path; empty for a path without one. An extension that stands for nothing
/// else is taken as a container id.
std::string FormatOf(const std::string& path);

}  // namespace NorvexExport
