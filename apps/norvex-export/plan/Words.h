/// How plans name what they are about.
#pragma once

#include <string>
#include <vector>

#include "norvex-export/Media.h"
#include "norvex-export/Request.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// "1, 2, 3", or with another word before the last.
std::string Join(const std::vector<std::string>& words, const std::string& last = ", ");
std::string Capitalised(std::string text);
std::string SizeText(long long width, long long height);
Norvex::Core::Ratio ToRatio(const Fraction& fraction);

/// "stream 1", "streams 1, 2 and 3".
std::string StreamsText(const std::vector<int>& streams);

/// What streams of a kind are called: "picture", "subtitles".
std::string NameOf(StreamKind kind);

/// What a stream of the input is, such as "h264, 640x480, 25 fps".
std::string WordsFor(const VideoSource& source);
std::string WordsFor(const AudioSource& source);
std::string WordsFor(const SubtitleSource& source);
std::string WordsFor(const AttachmentSource& source);
std::string WordsFor(const StreamSource& source);

}  // namespace NorvexExport
