#include "Completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>

namespace NorvexApps {

namespace {

constexpr const char* g_files = ":files\n";

/// What an option is for, in a few words: the beginning of its help.
std::string Brief(std::string help) {
    std::replace(help.begin(), help.end(), '\n', ' ');
    std::size_t end = help.size();
    for (const char* const mark : {". ", "; ", ": ", " (", ", such as"}) end = std::min(end, help.find(mark));
    return help.substr(0, end);
}

bool TakesFile(const CLI::Option& option) {
    const std::string words = option.get_positional() ? option.get_name(true) : option.get_option_text();
    const char* const files[] = {"FILE", "INPUT", "OUTPUT", "OLD", "NEW"};
    return std::any_of(std::begin(files), std::end(files), [&words](const char* file) { return words == file; });
}

/// Where the words before the last one lead.
class Place {
public:
    Place(const CLI::App& app, const std::vector<std::string>& words) : m_apps{&app} {
        for (auto word = words.begin(); word != words.end() && std::next(word) != words.end(); ++word) Pass(*word);
    }

    /// The option whose value the next word is, or null.
    const CLI::Option* Pending() const { return m_pending; }
    const std::vector<std::string>& Before() const { return m_before; }

    std::string Options() const {
        std::string text;
        for (const CLI::App* const app : m_apps) {
            const bool isOuter = app != m_apps.back();
            for (const CLI::Option* const option : app->get_options()) {
                if (option->get_lnames().empty() || (isOuter && option == app->get_help_ptr())) continue;
                text += "--" + option->get_lnames().front() + '\t' + Brief(option->get_description()) + '\n';
            }
        }
        return text;
    }

    std::string Commands() const {
        std::string text;
        if (!m_before.empty()) return text;
        for (const CLI::App* const command : m_apps.back()->get_subcommands({})) {
            text += command->get_name() + '\t' + Brief(command->get_description()) + '\n';
        }
        return text;
    }

    /// The option that is meant, also where it is about one stream, as in --audio-bitrate:2.
    const CLI::Option* Find(const std::string& name) const {
        for (const CLI::App* const app : m_apps) {
            if (const CLI::Option* const option = app->get_option_no_throw(name.substr(0, name.find(':'))))
                return option;
        }
        return nullptr;
    }

    /// The positional argument that comes next, or null.
    const CLI::Option* Next() const {
        std::size_t left = m_before.size() + 1 - m_apps.size();
        for (const CLI::Option* const option : m_apps.back()->get_options()) {
            if (option->get_positional() && left-- == 0) return option;
        }
        return nullptr;
    }

private:
    void Pass(const std::string& word) {
        const bool isValue = m_pending != nullptr;
        m_pending = nullptr;
        if (isValue) return;
        if (word.size() > 1 && word[0] == '-') {
            const CLI::Option* const option = word.find('=') == std::string::npos ? Find(word) : nullptr;
            if (option != nullptr && option->get_items_expected_max() > 0) m_pending = option;
            return;
        }
        const auto commands = m_before.empty() ? m_apps.back()->get_subcommands({}) : std::vector<const CLI::App*>();
        for (const CLI::App* const command : commands) {
            if (command->get_name() == word) m_apps.push_back(command);
        }
        m_before.push_back(word);
    }

    std::vector<const CLI::App*> m_apps;  ///< the program, and then the command
    std::vector<std::string> m_before;
    const CLI::Option* m_pending = nullptr;
};

std::string ValuesFor(const CLI::Option& option, const std::string& name, const std::string& begun, const Place& place,
                      const ValuesOf& valuesOf) {
    // What stands before the last comma of a list stays.
    const std::size_t comma = begun.rfind(',');
    const std::string former = comma == std::string::npos ? "" : begun.substr(0, comma + 1);
    std::string text;
    for (const std::string& value : valuesOf(name, place.Before())) text += former + value + '\n';
    return TakesFile(option) ? text + g_files : text;
}

/// Only lines that begin so; what stands for files is the shell's to choose from.
std::string BeginningWith(const std::string& begun, const std::string& lines, const std::string& ahead) {
    std::string text;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = lines.find('\n', at) + 1;
        const std::string line = lines.substr(at, end - at);
        at = end;
        if (line == g_files) {
            text += line;
        } else if (line.compare(0, begun.size(), begun) == 0) {
            text += ahead + line;
        }
    }
    return text;
}

}  // namespace

std::string Candidates(const CLI::App& app, const std::vector<std::string>& words, const ValuesOf& valuesOf) {
    const Place place(app, words);
    const std::string word = words.empty() ? std::string() : words.back();
    if (const CLI::Option* const option = place.Pending()) {
        const std::string name = "--" + option->get_lnames().front();
        return BeginningWith(word, ValuesFor(*option, name, word, place, valuesOf), {});
    }
    const std::size_t equals = word.find('=');
    if (word.substr(0, 1) == "-" && equals != std::string::npos) {
        const CLI::Option* const option = place.Find(word.substr(0, equals));
        if (option == nullptr || option->get_lnames().empty()) return {};
        const std::string begun = word.substr(equals + 1);
        const std::string name = "--" + option->get_lnames().front();
        return BeginningWith(begun, ValuesFor(*option, name, begun, place, valuesOf), word.substr(0, equals + 1));
    }
    if (word.substr(0, 1) == "-") return BeginningWith(word, place.Options(), {});
    const CLI::Option* const argument = place.Next();
    const std::string values =
        argument != nullptr ? ValuesFor(*argument, argument->get_name(true), word, place, valuesOf) : std::string();
    return BeginningWith(word, place.Commands() + values, {});
}

bool AnswersShell(const CLI::App& app, int argc, const char* const* argv, const ValuesOf& valuesOf) {
    if (argc < 2 || argv[1] != std::string("--complete")) return false;
    try {
        std::fputs(Candidates(app, {argv + 2, argv + argc}, valuesOf).c_str(), stdout);
    } catch (const std::exception&) {
        // A shell that is offered nothing asks no further.
    }
    return true;
}

}  // namespace NorvexApps
