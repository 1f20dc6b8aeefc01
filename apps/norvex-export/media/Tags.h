/// What a film tells of itself beside its streams: titles and other tags, chapters, what each stream is there for, and
/// which way up its pictures are shown.
#pragma once

#include <cstdint>
#include <string>

extern "C" {
#include <libavformat/avformat.h>
}

#include "norvex-export/Media.h"

namespace NorvexExport::Media {

/// A tag's text, empty where there is none.
std::string TagOf(const AVDictionary* tags, const char* name);

/// The name that the stream was given; empty where it has none.
std::string TitleOf(const AVStream& stream);

/// How the stream's pictures are to be turned for a viewer. What is no quarter turn counts as none.
Orientation OrientationOf(const AVStream& stream);

/// Gives the output the tags and chapters of the input, which begins at `startTime` (AV_TIME_BASE units) and becomes 0.
/// Tags that tell of the former file rather than of the film are left out.
void CopyFilmTags(const AVFormatContext& input, std::int64_t startTime, AVFormatContext& output);

/// Gives a stream of the output what a stream of the input is called and is there for.
void CopyStreamTags(const AVStream& source, AVStream& stream, const AVOutputFormat& format);

}  // namespace NorvexExport::Media
