/// What a shell offers where the user presses the tab key. The scripts of the shells (apps/completion) ask the program
/// itself, by a first argument that no help shows.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace NorvexApps {

/// The values that an option or a positional argument may have, by its name, such as "--format" or "KIND". Positional
/// arguments that stand before it are given, a command among them first.
using ValuesOf =
    std::function<std::vector<std::string>(const std::string& name, const std::vector<std::string>& before)>;

/// What may stand in the place of the last word, behind the others, one a line: with a tab and a description where
/// there is one. The line ":files" stands for names of files. Never fails.
std::string Candidates(const CLI::App& app, const std::vector<std::string>& words, const ValuesOf& valuesOf);

/// Whether the program is asked for that: PROGRAM --complete WORD... Prints it then.
bool AnswersShell(const CLI::App& app, int argc, const char* const* argv, const ValuesOf& valuesOf);

}  // namespace NorvexApps
