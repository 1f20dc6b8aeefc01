/// What both programs say of a wrong command line. It has CLI11 in it, and is for one source of a program alone.
#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "OtherNames.h"

namespace NorvexApps {

/// The names of all options that are known where the command line was left.
inline std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    for (const CLI::App* const command : app.get_subcommands()) {
        const std::vector<std::string> more = OptionNames(*command);
        names.insert(names.end(), more.begin(), more.end());
    }
    return names;
}

/// What is wrong with words that nothing was made of.
inline std::string ComplaintAbout(const CLI::App& app, const std::vector<std::string>& words) {
    const auto option =
        std::find_if(words.begin(), words.end(), [](const std::string& word) { return word.substr(0, 1) == "-"; });
    if (option != words.end()) {
        const std::string name = option->substr(0, option->find('='));
        return "there is no option '" + name + "'" + DidYouMean(name, OptionNames(app));
    }
    const bool wantsCommand = app.get_require_subcommand_min() > 0 && app.get_subcommands().empty();
    std::vector<std::string> commands;
    std::string list;
    for (const CLI::App* const command : app.get_subcommands({})) {
        commands.push_back(command->get_name());
        list += (list.empty() ? "" : ", ") + command->get_name();
    }
    if (!wantsCommand) return "there is no use for '" + words.front() + "'";
    if (words.empty()) return "give one of the commands " + list;
    const std::string suggestion = DidYouMean(words.front(), commands);
    return "there is no command '" + words.front() + "'" + (suggestion.empty() ? "; there are " + list : suggestion);
}

/// Prints what a parse came to: help, with the examples behind that of the whole program, or a complaint. (A footer of
/// CLI11's would lose its lines: later versions wrap it.) Returns the exit status: CLI11's own are many; a wrong
/// command line is 2, as with other programs.
inline int ExitStatus(const CLI::App& app, const CLI::ParseError& error, const char* examples) {
    if (error.get_exit_code() == 0) {
        const int status = app.exit(error);
        const bool isHelp = error.get_name() == "CallForHelp" && app.get_subcommands().empty();
        if (isHelp) std::printf("\n%s\n", examples);
        return status;
    }
    const bool wantsCommand = app.get_require_subcommand_min() > 0 && app.get_subcommands().empty();
    const std::vector<std::string> words = app.remaining(true);
    const bool isAboutWords = wantsCommand || (!words.empty() && error.get_name() != "ValidationError");
    const std::string complaint = isAboutWords ? ComplaintAbout(app, words) : error.what();
    std::fprintf(stderr, "%s: %s\n", app.get_name().c_str(), complaint.c_str());
    // What a value may be is part of its complaint.
    if (error.get_name() != "ValidationError") {
        std::fprintf(stderr, "%s --help tells what may be given.\n", app.get_name().c_str());
    }
    return 2;
}

}  // namespace NorvexApps
