#include "ManPage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <cstdio>

namespace NorvexApps {

namespace {

/// A text that is no request of the page's language.
std::string Escaped(const std::string& text) {
    std::string escaped;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\'')) escaped += "\\&";
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else {
            escaped += c;
        }
        isLineStart = c == '\n';
    }
    return escaped;
}

/// Lines as short as those who read the source of pages expect; man fills them.
std::string Wrapped(std::string text) {
    constexpr std::size_t width = 72;
    for (std::size_t begin = 0; begin + width < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::size_t blank = end - begin > width ? text.rfind(' ', begin + width) : end;
        const bool isBreak = blank != std::string::npos && blank > begin && blank < text.size();
        if (isBreak) text[blank] = '\n';
        begin = isBreak ? blank + 1 : end + 1;
    }
    return Escaped(text);
}

std::string Section(const char* title, const std::string& body) {
    return std::string(".SH ") + title + '\n' + body + '\n';
}

std::string Paragraphs(const std::string& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string::npos) return Wrapped(text);
    return Wrapped(text.substr(0, end)) + "\n.PP\n" + Paragraphs(text.substr(end + 1));
}

std::string Italic(const std::string& text) {
    return "\\fI" + Escaped(text) + "\\fR";
}

/// ".TP" and what an option or argument is called, and what it is for.
std::string Entry(const CLI::Option& option) {
    std::string names;
    for (const std::string& name : option.get_snames()) names += Escaped("-" + name) + ", ";
    for (const std::string& name : option.get_lnames()) names += Escaped("--" + name) + ", ";
    names = names.empty() ? Italic(option.get_name(true)) : "\\fB" + names.substr(0, names.size() - 2) + "\\fR";
    const std::string value = option.get_positional() ? "" : option.get_option_text();
    if (!value.empty()) names += (value[0] == '[' ? "" : " ") + Italic(value);
    return ".TP\n" + names + '\n' + Wrapped(option.get_description()) + '\n';
}

/// The options and arguments of a program or command, the groups of options under headings of their own.
std::string Entries(const CLI::App& app, bool hasHeadings) {
    std::string arguments;
    std::vector<std::pair<std::string, std::string>> groups;
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_group().empty()) continue;
        if (option->get_positional()) {
            arguments += Entry(*option);
            continue;
        }
        const auto isGroup = [option](const auto& group) { return group.first == option->get_group(); };
        auto group = std::find_if(groups.begin(), groups.end(), isGroup);
        if (group == groups.end()) group = groups.insert(groups.end(), {option->get_group(), {}});
        group->second += Entry(*option);
    }
    std::string text = arguments;
    for (const auto& [name, entries] : groups) {
        const bool isUsual = name == "Options" || !hasHeadings;
        text += (isUsual ? "" : ".SS " + Escaped(name) + '\n') + entries;
    }
    return text;
}

std::string Synopsis(const CLI::App& app) {
    const std::string name = "\\fB" + Escaped(app.get_name()) + "\\fR";
    if (!app.get_subcommands({}).empty()) return name + " " + Italic("COMMAND") + " [" + Italic("ARGUMENTS") + "]";
    std::string text = name + " [" + Italic("OPTIONS") + "]";
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_positional()) text += " " + Italic(option->get_name(true));
    }
    return text;
}

std::string Commands(const CLI::App& app) {
    std::string text;
    for (const CLI::App* const command : app.get_subcommands({})) {
        text += ".SS " + Escaped(command->get_name());
        for (const CLI::Option* const option : command->get_options()) {
            if (!option->get_positional()) continue;
            const std::string argument = Escaped(option->get_name(true));
            text += option->get_required() ? " " + argument : " [" + argument + "]";
        }
        text += '\n' + Wrapped(command->get_description()) + ".\n" + Entries(*command, false);
    }
    return text;
}

}  // namespace

std::string ManPage(const CLI::App& app, const ManTexts& texts) {
    const std::string name = app.get_name();
    std::string summary = app.get_description();
    if (!summary.empty() && summary.back() == '.') summary.pop_back();
    if (!summary.empty()) summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
    const std::string examples = std::string(texts.examples).substr(std::string(texts.examples).find('\n') + 1);
    const std::string commands = Commands(app);
    return ".TH " + Escaped(boost::algorithm::to_upper_copy(name)) +
           " 1 \"\" \"Norvex " NORVEX_VERSION "\" \"User Commands\"\n" +
           Section("NAME", Escaped(name) + " \\- " + Wrapped(summary)) + Section("SYNOPSIS", Synopsis(app)) +
           Section("DESCRIPTION", Paragraphs(texts.description)) +
           (commands.empty() ? "" : Section("COMMANDS", commands)) + Section("OPTIONS", Entries(app, true)) +
           Section("EXAMPLES", ".EX\n" + Escaped(examples) + "\n.EE") +
           Section("EXIT STATUS", Paragraphs(texts.exitStatus)) + Section("FILES", Paragraphs(texts.files)) +
           Section("SEE ALSO", Paragraphs(texts.seeAlso));
}

bool PrintsManPage(const CLI::App& app, int argc, const char* const* argv, const ManTexts& texts) {
    if (argc != 2 || argv[1] != std::string("--man")) return false;
    std::fputs(ManPage(app, texts).c_str(), stdout);
    return true;
}

}  // namespace NorvexApps
