#include "Check.h"

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

const char* SourceName(Finding::Source source) {
    switch (source) {
        case Finding::Source::Constraint:
            return "constraint";
        case Finding::Source::Rule:
            return "rule";
        case Finding::Source::Helper:
            break;
    }
    return "helper";
}

const char* OutcomeName(MendedValue::Outcome outcome) {
    switch (outcome) {
        case MendedValue::Outcome::Kept:
            return "kept";
        case MendedValue::Outcome::Corrected:
            return "corrected";
        case MendedValue::Outcome::Defaulted:
            return "defaulted";
        case MendedValue::Outcome::Dropped:
            break;
    }
    return "dropped";
}

Value FormOf(const std::vector<Finding>& findings) {
    Value::List list;
    for (const Finding& finding : findings) {
        list.push_back({{"helper", finding.helperKind + (finding.helperId.empty() ? "" : " " + finding.helperId)},
                        {"kind", SourceName(finding.source)},
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

}  // namespace

std::string JudgementText(const MendedPreset& mended) {
    const std::string open = Section("Left open", mended.open);
    if (mended.broken.empty()) return open + "The preset keeps every rule.\n";
    return open + Section("Broken", mended.broken) + Section("Changed", mended.values) +
           Section("Left after mending", mended.left) + "Mended:\n" + Document::WritePreset(mended.preset);
}

std::string JudgementJson(const MendedPreset& mended) {
    Value::List values;
    for (const MendedValue& value : mended.values) {
        values.push_back({{"path", value.path},
                          {"outcome", OutcomeName(value.outcome)},
                          {"before", FormOf(value.before)},
                          {"after", FormOf(value.after)},
                          {"message", value.message}});
    }
    return Document::WriteJson({{"broken", FormOf(mended.broken)},
                                {"open", FormOf(mended.open)},
                                {"changed", values},
                                {"left", FormOf(mended.left)},
                                {"mended", Document::ReadJson(Document::WritePreset(mended.preset))}}) +
           '\n';
}

}  // namespace NorvexRules
