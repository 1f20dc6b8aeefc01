#include "Check.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "norvex/Conf/Review/EnumeratorNames.h"
#include "norvex/document/PresetDocument.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Document::PlainFormOf;
using Document::Value;

Value FormOf(const std::optional<Core::Property>& value) {
    return value ? PlainFormOf(*value) : Value();
}

Value FormOf(const std::vector<Finding>& findings) {
    Value::List list;
    for (const Finding& finding : findings) {
        list.push_back({{"helper", finding.helperKind + (finding.helperId.empty() ? "" : " " + finding.helperId)},
                        {"kind", NameOf(finding.source)},
                        {"path", finding.documentPath},
                        {"value", FormOf(finding.value)},
                        {"allowed", finding.allowed.words},
                        {"message", finding.message}});
    }
    return list;
}

template <class Told>
std::string Section(const char* title, const std::vector<Told>& told) {
    std::string text;
    for (const Told& one : told) text += "  - " + one.message + '\n';
    return text.empty() ? text : std::string(title) + ":\n" + text;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// The lines of two texts side by side: those that went with a minus, those that came with a plus, and of the others
/// the few around them.
std::string LineDiff(const std::vector<std::string>& before, const std::vector<std::string>& after) {
    // How many lines the ends of both from there have in common. Presets are short.
    std::vector<std::vector<std::size_t>> common(before.size() + 1, std::vector<std::size_t>(after.size() + 1));
    for (std::size_t i = before.size(); i-- > 0;) {
        for (std::size_t j = after.size(); j-- > 0;) {
            common[i][j] =
                before[i] == after[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::vector<std::string> lines;
    for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            lines.push_back("  " + before[i]);
            ++i, ++j;
        } else if (i < before.size() && (j == after.size() || common[i + 1][j] >= common[i][j + 1])) {
            lines.push_back("- " + before[i++]);
        } else {
            lines.push_back("+ " + after[j++]);
        }
    }
    constexpr std::size_t around = 2;
    std::string text;
    bool isCut = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto first = lines.begin() + static_cast<std::ptrdiff_t>(i - std::min(i, around));
        const auto last = lines.begin() + static_cast<std::ptrdiff_t>(std::min(i + around + 1, lines.size()));
        const bool isShown = std::any_of(first, last, [](const std::string& line) { return line[0] != ' '; });
        if (isShown && isCut) text += "  ...\n";
        if (isShown) text += lines[i] + '\n';
        isCut = !isShown;
    }
    return text;
}

std::string Verdict(const MendedPreset& mended) {
    const std::string open = Section("Left open", mended.open);
    if (mended.broken.empty()) return open + "The preset keeps every rule.\n";
    return open + Section("Broken", mended.broken) + Section("Changed", mended.values) +
           Section("Left after mending", mended.left);
}

}  // namespace

std::string JudgementText(const Document::PresetDocument& read, const MendedPreset& mended) {
    return Verdict(mended) +
           (mended.broken.empty() ? "" : "Mended:\n" + Document::WritePreset(mended.preset, read.about));
}

std::string JudgementDiff(const Document::PresetDocument& read, const MendedPreset& mended) {
    const std::string diff =
        LineDiff(LinesOf(Document::WritePreset(read.preset)), LinesOf(Document::WritePreset(mended.preset)));
    return Verdict(mended) + (diff.empty() ? "" : "Difference:\n" + diff);
}

std::string JudgementJson(const Document::PresetDocument& read, const MendedPreset& mended) {
    Value::List values;
    for (const MendedValue& value : mended.values) {
        values.push_back({{"path", value.path},
                          {"outcome", NameOf(value.outcome)},
                          {"before", FormOf(value.before)},
                          {"after", FormOf(value.after)},
                          {"message", value.message}});
    }
    return Document::WriteJson({{"broken", FormOf(mended.broken)},
                                {"open", FormOf(mended.open)},
                                {"changed", values},
                                {"left", FormOf(mended.left)},
                                {"mended", Document::ReadJson(Document::WritePreset(mended.preset, read.about))}}) +
           '\n';
}

}  // namespace NorvexRules
