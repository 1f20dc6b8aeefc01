#pragma once

#include <string>

#include "norvex/foundation/Exception.h"

namespace Norvex::Document {

/// A document that cannot be read or written. It carries TagDescription, a sentence for a human reader, and TagLine
/// where the place is known. Unlike that of other failures, what() says it all: "line 3: there is no codec 'x'".
class NORVEX_API DocumentException : public Exception {
public:
    using TagLine = boost::error_info<struct LineId, int>;  ///< of the text, from 1

    /// `line` is 0 where there is no text.
    DocumentException(int line, const std::string& sentence);

    const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_what;
};

}  // namespace Norvex::Document
