#pragma once

#include <string>

#include "norvex/document/DocumentException.h"

namespace Norvex::Document {

/// Throws DocumentException, which tells of `line` where it is not 0.
[[noreturn]] inline void Fail(int line, const std::string& sentence) {
    NORVEX_THROW(DocumentException(line, sentence));
}

}  // namespace Norvex::Document
