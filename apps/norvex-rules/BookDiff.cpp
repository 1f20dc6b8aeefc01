#include "BookDiff.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Book.h"
#include "Texts.h"
#include "common/TextFiles.h"
#include "norvex/document/DocumentException.h"

namespace NorvexRules {

namespace {

using Norvex::Document::Value;

/// What a helper says, each statement under what it is about; a list of values is one value after the other.
using Values = std::vector<std::string>;
using Statements = std::map<std::string, Values>;

Values AllowedOf(const Value& allowed) {
    Values values;
    if (const Value* const list = allowed.Find("values")) {
        for (const Value& value : list->GetList()) values.push_back(TextOfValue(value["name"]));
    } else {
        values.push_back(TextOfValue(allowed["words"]));
    }
    return values;
}

void AddLeaves(const Value& node, const std::string& path, Statements& statements) {
    if (node.GetKind() != Value::Kind::Object) {
        statements[path].push_back(TextOfValue(node));
        return;
    }
    for (const auto& [name, value] : node.GetObject()) AddLeaves(value, path + "/" + name, statements);
}

/// What a pixel format holds is in its name.
void AddFacts(const Value& facts, Statements& statements) {
    for (const auto& [name, value] : facts.GetObject()) {
        Values& values = statements[name == "pixelFormats" ? "pixel formats" : name];
        if (value.GetKind() == Value::Kind::Object) {
            for (const auto& [format, held] : value.GetObject()) values.push_back(format);
            std::sort(values.begin(), values.end());  // members have no order
        } else if (value.GetKind() == Value::Kind::List) {
            for (const Value& one : value.GetList()) values.push_back(TextOfValue(one));
        } else {
            values.push_back(TextOfValue(value));
        }
    }
}

Statements StatementsOf(const Value& helper) {
    Statements statements;
    for (const auto& [name, value] : helper.GetObject()) {
        // Limits stand among the defaults, parameters are what those and the constraints have, and what people call a
        // codec changes nothing.
        if (name == "id" || name == "limits" || name == "parameters" || name == "otherNames") continue;
        if (name == "constraints") {
            for (const Value& constraint : value.GetList()) {
                // What a container carries is told without it.
                if (TextOfValue(constraint["path"]).compare(0, 12, "streams_any_") == 0) continue;
                statements[TextOfValue(constraint["path"])] = AllowedOf(constraint["allowed"]);
            }
        } else if (name == "rules") {
            for (const Value& rule : value.GetList()) {
                std::string about = "rule: " + TextOfValue(rule["path"]);
                if (!rule["when"].IsNull()) {
                    about += " when " + TextOfValue(rule["when"]["path"]) + " is " +
                             TextOfValue(rule["when"]["allowed"]["words"]);
                }
                for (std::string& allowed : AllowedOf(rule["allowed"])) statements[about].push_back(std::move(allowed));
            }
        } else if (name == "defaults") {
            AddLeaves(value, "default", statements);
        } else if (value.Find("codecs") != nullptr) {
            for (const Value& codec : value["codecs"].GetList())
                statements["carries " + name].push_back(TextOfValue(codec));
        } else if (name == "facts" && !value.IsNull()) {
            AddFacts(value, statements);
        } else if (value.GetKind() == Value::Kind::Object) {
            AddLeaves(value, name, statements);
        } else {
            statements[name].push_back(TextOfValue(value));
        }
    }
    return statements;
}

Values Without(const Values& all, const Values& others) {
    Values rest;
    std::copy_if(all.begin(), all.end(), std::back_inserter(rest), [&others](const std::string& value) {
        return std::find(others.begin(), others.end(), value) == others.end();
    });
    return rest;
}

/// A long list that came or went is told by its ends.
std::string Shortened(const Values& values) {
    constexpr std::size_t most = 12;
    if (values.size() <= most) return boost::algorithm::join(values, ", ");
    const Values first(values.begin(), values.begin() + most / 2);
    return fmt::format("{}, ... {} ({} in all)", boost::algorithm::join(first, ", "), values.back(), values.size());
}

/// What became of one statement; none where nothing did.
std::optional<std::string> ChangeOf(const std::string& about, const Values* before, const Values* after) {
    if (before == nullptr) return about + " came: " + Shortened(*after);
    if (after == nullptr) return about + " went: " + Shortened(*before);
    if (*before == *after) return std::nullopt;
    if (before->size() == 1 && after->size() == 1) return about + ": " + before->front() + " > " + after->front();
    const Values came = Without(*after, *before);
    const Values went = Without(*before, *after);
    if (came.empty() && went.empty()) return about + ": in another order";
    std::string text = about + ":";
    if (!came.empty()) text += " + " + Shortened(came);
    if (!went.empty()) text += " - " + Shortened(went);
    return text;
}

std::vector<std::string> ChangesOf(const Value& before, const Value& after) {
    const Statements former = StatementsOf(before);
    const Statements now = StatementsOf(after);
    std::vector<std::string> changes;
    const auto add = [&](const std::string& about) {
        const auto one = former.find(about);
        const auto two = now.find(about);
        if (auto change = ChangeOf(about, one != former.end() ? &one->second : nullptr,
                                   two != now.end() ? &two->second : nullptr)) {
            changes.push_back(std::move(*change));
        }
    };
    for (const auto& [about, values] : former) add(about);
    for (const auto& [about, values] : now) {
        if (former.count(about) == 0) add(about);
    }
    return changes;
}

std::map<std::string, const Value*> HelpersOf(const Value& book, const char* list) {
    std::map<std::string, const Value*> helpers;
    if (const Value* const found = book.Find(list)) {
        for (const Value& helper : found->GetList()) helpers.emplace(helper["id"].GetText(), &helper);
    }
    return helpers;
}

/// What several helpers share is told once.
std::string SectionText(const char* title, const Value& before, const Value& after, const char* list) {
    const auto former = HelpersOf(before, list);
    const auto now = HelpersOf(after, list);
    Values came, went;
    std::vector<std::pair<std::string, Values>> changes;  ///< and of whom, in the order in which they turn up
    for (const auto& [id, helper] : now) {
        const auto old = former.find(id);
        if (old == former.end()) {
            came.push_back(id);
            continue;
        }
        for (std::string& change : ChangesOf(*old->second, *helper)) {
            const auto known = std::find_if(changes.begin(), changes.end(),
                                            [&change](const auto& other) { return other.first == change; });
            if (known != changes.end()) {
                known->second.push_back(id);
            } else {
                changes.emplace_back(std::move(change), Values{id});
            }
        }
    }
    for (const auto& [id, helper] : former) {
        if (now.count(id) == 0) went.push_back(id);
    }
    std::vector<std::pair<Values, Values>> groups;  ///< of helpers with what became of them
    for (auto& [change, ids] : changes) {
        const auto known =
            std::find_if(groups.begin(), groups.end(), [&ids = ids](const auto& other) { return other.first == ids; });
        if (known != groups.end()) {
            known->second.push_back(std::move(change));
        } else {
            groups.emplace_back(ids, Values{std::move(change)});
        }
    }
    std::string text;
    if (!came.empty()) text += "  came: " + boost::algorithm::join(came, ", ") + '\n';
    if (!went.empty()) text += "  went: " + boost::algorithm::join(went, ", ") + '\n';
    for (const auto& [ids, lines] : groups) {
        text += "  " + boost::algorithm::join(ids, ", ") + '\n';
        for (const std::string& line : lines) text += "    " + line + '\n';
    }
    return text.empty() ? text : std::string(title) + '\n' + text;
}

std::string VersionsOf(const Value& book) {
    return fmt::format("library {}, FFmpeg {}", TextOfValue(book["library"]), TextOfValue(book["ffmpeg"]));
}

}  // namespace

Value ReadBook(const std::string& path) {
    constexpr std::size_t largest = 100000000;
    try {
        Value book = Norvex::Document::ReadJson(NorvexApps::ReadText(path, largest));
        const Value* const version = book.Find("norvex-rules");
        if (version == nullptr) throw std::runtime_error("'" + path + "' is no rule book");
        if (version->GetKind() != Value::Kind::Integer || version->GetInteger() != g_bookVersion) {
            throw std::runtime_error("'" + path + "' is a rule book of another version, " + TextOfValue(*version));
        }
        return book;
    } catch (const Norvex::Document::DocumentException& error) {
        throw std::runtime_error("'" + path + "', " + error.what());
    }
}

std::string DiffText(const Value& before, const Value& after) {
    try {
        const std::string text = SectionText("Containers", before, after, "formats") +
                                 SectionText("Video codecs", before, after, "videoCodecs") +
                                 SectionText("Audio codecs", before, after, "audioCodecs") +
                                 SectionText("Subtitle codecs", before, after, "subtitleCodecs") +
                                 SectionText("Filters", before, after, "filters");
        if (text.empty()) return text;
        return VersionsOf(before) + "\n> " + VersionsOf(after) + "\n\n" + text;
    } catch (const Norvex::Document::DocumentException& error) {
        throw std::runtime_error(std::string("a rule book lacks something: ") + error.what());
    }
}

}  // namespace NorvexRules
