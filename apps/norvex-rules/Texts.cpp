#include "Texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <vector>

namespace NorvexRules {

namespace {

using Norvex::Document::Value;

/// The list of the book that a kind of helper stands in, or null.
const Value* ListOf(const Value& book, const std::string& kind) {
    const std::pair<const char*, const char*> lists[] = {
        {"format", "formats"}, {"video", "videoCodecs"}, {"audio", "audioCodecs"}, {"filter", "filters"}};
    for (const auto& [name, list] : lists) {
        if (kind == name) return &book[list];
    }
    return nullptr;
}

std::string TextOf(const Value& value) {
    return value.GetKind() == Value::Kind::Text ? value.GetText() : WriteJson(value, {-1, false});
}

std::string Joined(const Value& list) {
    std::string text;
    for (const Value& item : list.GetList()) text += (text.empty() ? "" : ", ") + TextOf(item);
    return text;
}

void CollectLeaves(const Value& node, const std::string& path, std::string& text) {
    for (const auto& [name, value] : node.GetObject()) {
        const std::string below = path.empty() ? name : path + "/" + name;
        const bool isSection = value.GetKind() == Value::Kind::Object;
        if (isSection && !value.GetObject().empty()) {
            CollectLeaves(value, below, text);
        } else {
            text += fmt::format("  {:<44} {}\n", below, isSection ? "" : TextOf(value));
        }
    }
}

std::string CarriedText(const Value& format, const char* kind) {
    const Value& carried = format[kind];
    if (carried.IsNull()) return {};
    return fmt::format("  {:<10} {}  (default {})\n", kind, Joined(carried["codecs"]), TextOf(carried["default"]));
}

std::string WordsOf(const Value& allowed) {
    const std::string& words = allowed["words"].GetText();
    return words.empty() ? "anything that its method accepts" : words;
}

std::string CodecLine(const Value& codec) {
    return fmt::format("  {:<14} {}\n", codec["id"].GetText(),
                       codec["encoder"].IsNull() ? "no encoder in this build" : TextOf(codec["encoder"]));
}

std::string GridText(const Value& book, const char* kind, const char* codecList) {
    std::set<std::string> encodable;
    for (const Value& codec : book[codecList].GetList()) {
        if (!codec["encoder"].IsNull()) encodable.insert(codec["id"].GetText());
    }
    std::set<std::string> columns;
    std::size_t height = 0;
    for (const Value& format : book["formats"].GetList()) {
        if (format[kind].IsNull()) continue;
        for (const Value& codec : format[kind]["codecs"].GetList()) {
            columns.insert(codec.GetText());
            height = std::max(height, codec.GetText().size());
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
    for (const Value& format : book["formats"].GetList()) {
        if (format[kind].IsNull()) continue;
        std::set<std::string> codecs;
        for (const Value& codec : format[kind]["codecs"].GetList()) codecs.insert(codec.GetText());
        text += fmt::format("{:<{}}", format["id"].GetText(), left);
        for (const std::string& id : columns) {
            char mark = '.';
            if (codecs.count(id) > 0) mark = encodable.count(id) ? 'x' : 'o';
            if (format[kind]["default"].GetText() == id) mark = encodable.count(id) ? 'D' : 'd';
            text += fmt::format("{} ", mark);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}

}  // namespace

std::string ListText(const Value& book) {
    std::string text = fmt::format("Containers ({})\n", book["formats"].GetList().size());
    for (const Value& format : book["formats"].GetList()) {
        std::string carried;
        for (const char* kind : {"video", "audio", "subtitles"}) {
            if (format[kind].IsNull()) continue;
            carried += fmt::format("{}{} {} ({})", carried.empty() ? "" : ", ", kind, TextOf(format[kind]["default"]),
                                   format[kind]["codecs"].GetList().size());
        }
        text += fmt::format("  {:<14} {}\n", format["id"].GetText(), carried);
    }
    text += fmt::format("\nVideo codecs ({})\n", book["videoCodecs"].GetList().size());
    for (const Value& codec : book["videoCodecs"].GetList()) text += CodecLine(codec);
    text += fmt::format("\nAudio codecs ({})\n", book["audioCodecs"].GetList().size());
    for (const Value& codec : book["audioCodecs"].GetList()) text += CodecLine(codec);
    text += fmt::format("\nFilters ({})\n", book["filters"].GetList().size());
    for (const Value& filter : book["filters"].GetList()) text += fmt::format("  {}\n", filter["id"].GetText());
    return text;
}

std::optional<std::string> ShowText(const Value& book, const std::string& kind, const std::string& id) {
    const Value* const list = ListOf(book, kind);
    if (list == nullptr) return std::nullopt;
    const Value::List& helpers = list->GetList();
    const auto helper =
        std::find_if(helpers.begin(), helpers.end(), [&id](const Value& h) { return h["id"].GetText() == id; });
    if (helper == helpers.end()) return std::nullopt;

    std::string text = fmt::format("{} {}\n", kind, id);
    if (helper->Find("encoder") != nullptr) {
        text += fmt::format("  encoder    {}\n",
                            (*helper)["encoder"].IsNull() ? "none in this build" : TextOf((*helper)["encoder"]));
    }
    if (kind == "format") {
        for (const char* stream : {"video", "audio", "subtitles"}) text += CarriedText(*helper, stream);
    }
    if (!(*helper)["requires"].GetList().empty())
        text += fmt::format("  requires   {}\n", Joined((*helper)["requires"]));
    text += "\nDefaults\n";
    CollectLeaves((*helper)["defaults"], {}, text);
    text += "\nAllowed\n";
    for (const Value& constraint : (*helper)["constraints"].GetList()) {
        text += fmt::format("  {:<44} {}\n", TextOf(constraint["path"]), WordsOf(constraint["allowed"]));
    }
    text += "\nRules\n";
    for (const Value& rule : (*helper)["rules"].GetList()) {
        if (!rule["when"].IsNull()) {
            text += fmt::format("  when {} is {}:\n  ", TextOf(rule["when"]["path"]), WordsOf(rule["when"]["allowed"]));
        }
        text += fmt::format("  {} is {}\n", TextOf(rule["path"]), WordsOf(rule["allowed"]));
    }
    if ((*helper)["rules"].GetList().empty()) text += "  none\n";
    return text;
}

std::string MatrixText(const Value& book) {
    return "D default, x carried; d and o the same, but not encoded here\n\nVideo\n" +
           GridText(book, "video", "videoCodecs") + "\nAudio\n" + GridText(book, "audio", "audioCodecs");
}

}  // namespace NorvexRules
