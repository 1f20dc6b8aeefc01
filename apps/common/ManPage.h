/// The manual pages of the programs, made of what they say of their own command lines.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace NorvexApps {

/// What a manual page has beyond the command line. A paragraph a line.
struct ManTexts {
    const char* description;
    const char* examples;  ///< as --help prints them, a heading first
    const char* exitStatus;
    const char* files;
    const char* seeAlso;
};

/// The page in the language of man, as PROGRAM --man prints it; the build installs that.
std::string ManPage(const CLI::App& app, const ManTexts& texts);

/// Whether the program is asked for its page. Prints it then.
bool PrintsManPage(const CLI::App& app, int argc, const char* const* argv, const ManTexts& texts);

}  // namespace NorvexApps
