/// The whole rule book as one JSON document, which all that the program shows is made from.
#pragma once

#include <string>

#include "norvex/document/Json.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

namespace NorvexRules {

/// The version of the document's form. rulebook.schema.json describes it.
constexpr int g_bookVersion = 4;

/// Takes the census of encoders first. The order is stable: by id, and within a helper as the helper gives it.
Norvex::Document::Value MakeBook();

/// The encoder of a codec that a container carries, or none: FFmpeg has two names for a few subtitle codecs, and
/// encoders go by the later one.
Norvex::Proc::SafeEncoderCodec EncoderOf(const std::string& codecId);

}  // namespace NorvexRules
