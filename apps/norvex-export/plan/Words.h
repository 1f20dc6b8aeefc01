/// How plans name what they are about.
#pragma once

#include <string>
#include <vector>

#include "norvex-export/Media.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

std::string Join(const std::vector<std::string>& words);
std::string SizeText(long long width, long long height);
Norvex::Core::Ratio ToRatio(const Fraction& fraction);

/// What a stream of the input is, such as "h264, 640x480, 25 fps".
std::string WordsFor(const VideoSource& source);
std::string WordsFor(const AudioSource& source);

}  // namespace NorvexExport
