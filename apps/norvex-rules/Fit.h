/// What may become of a file, and which containers hold some codecs at once: to read, and for programs.
#pragma once

#include <string>
#include <vector>

#include "FileStreams.h"
#include "norvex/Conf/Review/Fit.h"

namespace NorvexRules {

/// The version of the document that FitJson makes. fit.schema.json describes it.
constexpr int g_fitVersion = 1;

/// A line for each stream, then one for each container that holds something of the file, in the order given.
std::string FitText(const FileStreams& file, const std::vector<Norvex::Conf::FormatFit>& fits);

/// One container in sentences.
std::string FitSentences(const FileStreams& file, const Norvex::Conf::FormatFit& fit);

std::string FitJson(const FileStreams& file, const std::vector<Norvex::Conf::FormatFit>& fits);

std::string HoldingText(const std::vector<Norvex::Conf::HoldingFormat>& formats);
std::string HoldingJson(const std::vector<Norvex::Conf::HoldingFormat>& formats);

}  // namespace NorvexRules
