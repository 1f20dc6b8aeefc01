#include <boost/stacktrace.hpp>

#include "norvex/foundation/Exception.h"

namespace Norvex {

std::string GetCallStack() {
    return to_string(boost::stacktrace::stacktrace());
}

}  // namespace Norvex
