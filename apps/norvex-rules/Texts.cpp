#include "Texts.h"

#include <fmt/format.h>
#include <fnmatch.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using Norvex::Document::Value;
using P = Norvex::Conf::IPreset;

struct Kind {
    const char* name;
    const char* title;
    const char* list;            ///< of the book
    const char* carried;         ///< in a container, where there is something like it
    const std::string* section;  ///< as the library calls the kind; null for filters, which are kinds themselves
};
constexpr Kind g_kinds[] = {
    {"format", "Containers", "formats", nullptr, &P::KEY_FORMAT},
    {"video", "Video codecs", "videoCodecs", "video", &P::KEY_FILTER_VIDEO_CODEC},
    {"audio", "Audio codecs", "audioCodecs", "audio", &P::KEY_FILTER_AUDIO_CODEC},
    {"subtitles", "Subtitle codecs", "subtitleCodecs", "subtitles", &P::KEY_FILTER_SUBTITLE_CODEC},
    {"filter", "Filters", "filters", nullptr, nullptr},
};

/// Null for a kind of which there are none.
const Kind* FindKind(const std::string& name) {
    const auto* const kind =
        std::find_if(std::begin(g_kinds), std::end(g_kinds), [&name](const Kind& row) { return name == row.name; });
    return kind != std::end(g_kinds) ? kind : nullptr;
}

std::string TextOfList(const Value& list) {
    std::string text;
    for (const Value& item : list.GetList()) text += (text.empty() ? "" : ", ") + TextOfValue(item);
    return text;
}

void CollectLeaves(const Value& node, const std::string& path, std::string& text) {
    for (const auto& [name, value] : node.GetObject()) {
        const std::string below = path.empty() ? name : path + "/" + name;
        const bool isSection = value.GetKind() == Value::Kind::Object;
        if (isSection && !value.GetObject().empty()) {
            CollectLeaves(value, below, text);
        } else {
            text += fmt::format("  {:<44} {}\n", below, isSection ? "" : TextOfValue(value));
        }
    }
}

std::string CarriedText(const Value& format, const char* kind) {
    const Value& carried = format[kind];
    if (carried.IsNull()) return {};
    return fmt::format("  {:<10} {}  (default {})\n", kind, TextOfList(carried["codecs"]),
                       TextOfValue(carried["default"]));
}

std::string WordsOf(const Value& allowed) {
    const std::string& words = allowed["words"].GetText();
    return words.empty() ? "anything that its method accepts" : words;
}

std::string NameOf(const Kind& kind, const std::string& id) {
    return kind.section != nullptr ? Norvex::Conf::FullNameForPeople(*kind.section, id)
                                   : Norvex::Conf::NameForPeople(id, std::string());
}

/// What follows the id and the name in a list.
std::string WordsOfItem(const Value& item) {
    if (item.Find("encoder") != nullptr) {
        return item["encoder"].IsNull() ? "no encoder in this build" : TextOfValue(item["encoder"]);
    }
    std::string carried;
    for (const char* kind : {"video", "audio", "subtitles"}) {
        if (item.Find(kind) == nullptr || item[kind].IsNull()) continue;
        carried += fmt::format("{}{} {} ({})", carried.empty() ? "" : ", ", kind, TextOfValue(item[kind]["default"]),
                               item[kind]["codecs"].GetList().size());
    }
    return carried;
}

/// The ids of a container's or codec's surroundings, in lines that fit a terminal.
std::string WrappedLine(const char* title, const std::vector<std::string>& ids) {
    constexpr std::size_t width = 100;
    std::string text;
    std::string line = fmt::format("  {:<10}", title);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const std::string word = ' ' + ids[i] + (i + 1 < ids.size() ? "," : "");
        if (line.size() + word.size() > width) text += std::exchange(line, std::string(12, ' ')) + '\n';
        line += word;
    }
    return text + line + '\n';
}

/// The containers that carry a codec.
std::vector<std::string> CarriersOf(const Value& book, const char* carried, const std::string& codecId) {
    std::vector<std::string> ids;
    for (const Value& format : book["formats"].GetList()) {
        if (format[carried].IsNull()) continue;
        const Value::List& codecs = format[carried]["codecs"].GetList();
        const bool isCarried = std::any_of(codecs.begin(), codecs.end(),
                                           [&codecId](const Value& codec) { return codec.GetText() == codecId; });
        const bool isDefault = format[carried]["default"].GetText() == codecId;
        if (isCarried) ids.push_back(format["id"].GetText() + (isDefault ? " (default)" : ""));
    }
    return ids;
}

/// The items of a list that a listing asks for.
std::vector<const Value*> ItemsOf(const Value& book, const Kind& kind, const Listing& listing) {
    std::vector<const Value*> items;
    if (!listing.kind.empty() && listing.kind != kind.name) return items;
    const bool isPattern = listing.pattern.find_first_of("*?[") != std::string::npos;
    const std::string pattern = isPattern ? listing.pattern : '*' + listing.pattern + '*';
    for (const Value& item : book[kind.list].GetList()) {
        if (fnmatch(pattern.c_str(), item["id"].GetText().c_str(), FNM_CASEFOLD) == 0) items.push_back(&item);
    }
    return items;
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

std::string TextOfValue(const Value& value) {
    return value.GetKind() == Value::Kind::Text ? value.GetText() : WriteJson(value, {-1, false});
}

std::vector<std::string> Kinds() {
    std::vector<std::string> names;
    for (const Kind& kind : g_kinds) names.emplace_back(kind.name);
    return names;
}

std::string ListText(const Value& book, const Listing& listing) {
    std::string text;
    for (const Kind& kind : g_kinds) {
        const std::vector<const Value*> items = ItemsOf(book, kind, listing);
        if (items.empty()) continue;
        text += fmt::format("{}{} ({})\n", text.empty() ? "" : "\n", kind.title, items.size());
        for (const Value* const item : items) {
            const std::string& id = (*item)["id"].GetText();
            text += fmt::format("  {:<19} {:<38} {}", id, NameOf(kind, id), WordsOfItem(*item));
            text.erase(text.find_last_not_of(' ') + 1);
            text += '\n';
        }
    }
    return text;
}

std::string ListJson(const Value& book, const Listing& listing) {
    Value::List list;
    for (const Kind& kind : g_kinds) {
        for (const Value* const item : ItemsOf(book, kind, listing)) {
            list.push_back({{"kind", kind.name}, {"id", (*item)["id"]}});
            if (const Value* const encoder = item->Find("encoder")) list.back()["encoder"] = *encoder;
        }
    }
    return WriteJson(list) + '\n';
}

std::optional<std::string> ShowText(const Value& book, const std::string& kind, const std::string& id) {
    const Kind* const found = FindKind(kind);
    if (found == nullptr) return std::nullopt;
    const Value::List& helpers = book[found->list].GetList();
    const auto helper =
        std::find_if(helpers.begin(), helpers.end(), [&id](const Value& h) { return h["id"].GetText() == id; });
    if (helper == helpers.end()) return std::nullopt;

    std::string text = fmt::format("{} {}\n", kind, id);
    if (helper->Find("encoder") != nullptr) {
        text += fmt::format("  encoder    {}\n",
                            (*helper)["encoder"].IsNull() ? "none in this build" : TextOfValue((*helper)["encoder"]));
    }
    if (kind == "format") {
        for (const char* stream : {"video", "audio", "subtitles"}) text += CarriedText(*helper, stream);
    }
    if (found->carried != nullptr) text += WrappedLine("carried by", CarriersOf(book, found->carried, id));
    if (helper->Find("defaults") == nullptr) return text;
    if (!(*helper)["requires"].GetList().empty())
        text += fmt::format("  requires   {}\n", TextOfList((*helper)["requires"]));
    text += "\nDefaults\n";
    CollectLeaves((*helper)["defaults"], {}, text);
    text += "\nAllowed\n";
    for (const Value& constraint : (*helper)["constraints"].GetList()) {
        text += fmt::format("  {:<44} {}\n", TextOfValue(constraint["path"]), WordsOf(constraint["allowed"]));
    }
    text += "\nRules\n";
    for (const Value& rule : (*helper)["rules"].GetList()) {
        if (!rule["when"].IsNull()) {
            text += fmt::format("  when {} is {}:\n  ", TextOfValue(rule["when"]["path"]),
                                WordsOf(rule["when"]["allowed"]));
        }
        text += fmt::format("  {} is {}\n", TextOfValue(rule["path"]), WordsOf(rule["allowed"]));
    }
    if ((*helper)["rules"].GetList().empty()) text += "  none\n";
    return text;
}

std::string MatrixText(const Value& book) {
    return "D default, x carried; d and o the same, but not encoded here\n\nVideo\n" +
           GridText(book, "video", "videoCodecs") + "\nAudio\n" + GridText(book, "audio", "audioCodecs") +
           "\nSubtitles\n" + GridText(book, "subtitles", "subtitleCodecs");
}

}  // namespace NorvexRules
