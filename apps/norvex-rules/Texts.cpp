#include "Texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <vector>

namespace NorvexRules {

namespace {

using Json = nlohmann::ordered_json;

/// The list of the book that a kind of helper stands in, or null.
const Json* ListOf(const Json& book, const std::string& kind) {
    const std::pair<const char*, const char*> lists[] = {
        {"format", "formats"}, {"video", "videoCodecs"}, {"audio", "audioCodecs"}, {"filter", "filters"}};
    for (const auto& [name, list] : lists) {
        if (kind == name) return &book[list];
    }
    return nullptr;
}

std::string TextOf(const Json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string Joined(const Json& list) {
    std::string text;
    for (const Json& item : list) text += (text.empty() ? "" : ", ") + TextOf(item);
    return text;
}

void CollectLeaves(const Json& node, const std::string& path, std::string& text) {
    for (const auto& [name, value] : node.items()) {
        const std::string below = path.empty() ? name : path + "/" + name;
        if (value.is_object() && !value.empty()) {
            CollectLeaves(value, below, text);
        } else {
            text += fmt::format("  {:<44} {}\n", below, value.is_object() ? "" : TextOf(value));
        }
    }
}

std::string CarriedText(const Json& format, const char* kind) {
    const Json& carried = format[kind];
    if (carried.is_null()) return {};
    return fmt::format("  {:<10} {}  (default {})\n", kind, Joined(carried["codecs"]), TextOf(carried["default"]));
}

std::string WordsOf(const Json& allowed) {
    const std::string words = allowed["words"];
    return words.empty() ? "anything that its method accepts" : words;
}

std::string CodecLine(const Json& codec) {
    return fmt::format("  {:<14} {}\n", codec["id"].get<std::string>(),
                       codec["encoder"].is_null() ? "no encoder in this build" : TextOf(codec["encoder"]));
}

std::string GridText(const Json& book, const char* kind, const char* codecList) {
    std::set<std::string> encodable;
    for (const Json& codec : book[codecList]) {
        if (!codec["encoder"].is_null()) encodable.insert(codec["id"]);
    }
    std::set<std::string> columns;
    std::size_t height = 0;
    for (const Json& format : book["formats"]) {
        if (format[kind].is_null()) continue;
        for (const std::string id : format[kind]["codecs"]) {
            columns.insert(id);
            height = std::max(height, id.size());
        }
    }
    constexpr std::size_t left = 14;
    std::string text;
    for (std::size_t row = 0; row < height; ++row) {
        text += std::string(left, ' ');
        for (const std::string& id : columns) {
            const std::size_t first = height - id.size();
            text += row < first ? "  " : fmt::format("{} ", id[row - first]);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    for (const Json& format : book["formats"]) {
        if (format[kind].is_null()) continue;
        const Json& codecs = format[kind]["codecs"];
        text += fmt::format("{:<{}}", format["id"].get<std::string>(), left);
        for (const std::string& id : columns) {
            char mark = '.';
            if (std::find(codecs.begin(), codecs.end(), id) != codecs.end()) mark = encodable.count(id) ? 'x' : 'o';
            if (format[kind]["default"] == id) mark = encodable.count(id) ? 'D' : 'd';
            text += fmt::format("{} ", mark);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}

}  // namespace

std::string ListText(const Json& book) {
    std::string text = fmt::format("Containers ({})\n", book["formats"].size());
    for (const Json& format : book["formats"]) {
        std::string carried;
        for (const char* kind : {"video", "audio", "subtitles"}) {
            if (format[kind].is_null()) continue;
            carried += fmt::format("{}{} {} ({})", carried.empty() ? "" : ", ", kind, TextOf(format[kind]["default"]),
                                   format[kind]["codecs"].size());
        }
        text += fmt::format("  {:<14} {}\n", format["id"].get<std::string>(), carried);
    }
    text += fmt::format("\nVideo codecs ({})\n", book["videoCodecs"].size());
    for (const Json& codec : book["videoCodecs"]) text += CodecLine(codec);
    text += fmt::format("\nAudio codecs ({})\n", book["audioCodecs"].size());
    for (const Json& codec : book["audioCodecs"]) text += CodecLine(codec);
    text += fmt::format("\nFilters ({})\n", book["filters"].size());
    for (const Json& filter : book["filters"]) text += fmt::format("  {}\n", filter["id"].get<std::string>());
    return text;
}

std::optional<std::string> ShowText(const Json& book, const std::string& kind, const std::string& id) {
    const Json* const list = ListOf(book, kind);
    if (list == nullptr) return std::nullopt;
    const auto helper = std::find_if(list->begin(), list->end(), [&id](const Json& h) { return h["id"] == id; });
    if (helper == list->end()) return std::nullopt;

    std::string text = fmt::format("{} {}\n", kind, id);
    if (helper->contains("encoder")) {
        text += fmt::format("  encoder    {}\n",
                            (*helper)["encoder"].is_null() ? "none in this build" : TextOf((*helper)["encoder"]));
    }
    if (kind == "format") {
        for (const char* stream : {"video", "audio", "subtitles"}) text += CarriedText(*helper, stream);
    }
    if (!(*helper)["requires"].empty()) text += fmt::format("  requires   {}\n", Joined((*helper)["requires"]));
    text += "\nDefaults\n";
    CollectLeaves((*helper)["defaults"], {}, text);
    text += "\nAllowed\n";
    for (const Json& constraint : (*helper)["constraints"]) {
        text += fmt::format("  {:<44} {}\n", TextOf(constraint["path"]), WordsOf(constraint["allowed"]));
    }
    text += "\nRules\n";
    for (const Json& rule : (*helper)["rules"]) {
        if (!rule["when"].is_null()) {
            text += fmt::format("  when {} is {}:\n  ", TextOf(rule["when"]["path"]), WordsOf(rule["when"]["allowed"]));
        }
        text += fmt::format("  {} is {}\n", TextOf(rule["path"]), WordsOf(rule["allowed"]));
    }
    if ((*helper)["rules"].empty()) text += "  none\n";
    return text;
}

std::string MatrixText(const Json& book) {
    return "D default, x carried; d and o the same, but not encoded here\n\nVideo\n" +
           GridText(book, "video", "videoCodecs") + "\nAudio\n" + GridText(book, "audio", "audioCodecs");
}

}  // namespace NorvexRules
