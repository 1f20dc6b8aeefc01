#include "Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace NorvexExport {

namespace {

std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

bool ClearsLines(int file) {
    return isatty(file) != 0 && !Variable("TERM").empty() && Variable("TERM") != "dumb";
}

bool TakesColours(int file) {
    return ClearsLines(file) && Variable("NO_COLOR").empty();
}

}  // namespace NorvexExport
