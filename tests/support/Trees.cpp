#include "support/Trees.h"

#include <algorithm>
#include <string_view>

namespace NorvexTest {

using namespace Norvex;
using Core::Property;

namespace {

std::string Leaf(const Property& node) {
    static const char* const types[] = {"none", "bool", "double", "int", "string", "ratio", "node"};
    const std::string type = types[node.GetType()];
    return node.GetType() == PT_NODE || node.GetType() == PT_NONE ? type
                                                                  : type + ' ' + Core::PropertyValueToString(node);
}

void DumpInto(const Property& node, const std::string& path, std::string& out) {
    if (node.Count() == 0) out += path + ": " + Leaf(node) + '\n';
    for (const Property& child : node) DumpInto(child, path + Property::SEPARATOR + child.GetName(), out);
}

/// Reads the value of the text's beginning, and takes it away from there.
Property Read(const std::string& name, std::string_view& rest) {
    const auto take = [&rest](std::size_t count) {
        const std::string taken(rest.substr(0, count));
        rest.remove_prefix(taken.size());
        return taken;
    };
    if (rest.front() == '{') {
        Property node(name);
        for (take(1); rest.front() != '}'; take(rest.find_first_not_of(", "))) {
            const std::string child = take(rest.find(':'));
            take(rest.find_first_not_of(": "));
            node.AddNamed(Read(child, rest));
        }
        take(1);
        return node;
    }
    const std::string text = take(rest.find_first_of(",}"));
    if (text == "true" || text == "false") return {name, text == "true"};
    const auto ratio = Core::ParseRatio(text);
    if (!ratio) return {name, text};
    return text.find('/') == std::string::npos ? Property(name, ratio->numerator()) : Property(name, *ratio);
}

class RecordingConsumer final : public RefCounted<Conf::IConstraintConsumer> {
public:
    void Reset() override { calls.emplace_back("reset"); }
    void AddValue(const std::string& name, const Property& value) override {
        calls.push_back("add " + name + '=' + Core::PropertyValueToString(value));
        const std::string text = Core::PropertyValueToString(value);
        names.push_back(name == text || name + "/1" == text ? name : name + '=' + text);
    }
    void EndValues() override { calls.emplace_back("end"); }
    void SetMaxValue(double value) override { Record("max", std::to_string(value), max); }
    void SetMaxValue(long long value) override { Record("max", std::to_string(value), max); }
    void SetMinValue(double value) override { Record("min", std::to_string(value), min); }
    void SetMinValue(long long value) override { Record("min", std::to_string(value), min); }
    void SetStep(double value) override { Record("step", std::to_string(value), step); }
    void SetStep(long long value) override { Record("step", std::to_string(value), step); }
    Property GetValue() const override { return {}; }
    void SetValue(const Property& /*value*/) override { calls.emplace_back("set"); }

    std::vector<std::string> calls;
    std::vector<std::string> names;
    std::string min;
    std::string max;
    std::string step;

private:
    void Record(const char* call, const std::string& value, std::string& field) {
        calls.push_back(std::string(call) + ' ' + value);
        field = value;
    }
};

SP<RecordingConsumer> Fill(const Conf::IPropertyConstraint& constraint) {
    SP<RecordingConsumer> consumer(new RecordingConsumer);
    constraint.FillValueList(consumer);
    return consumer;
}

}  // namespace

std::string TreeDiff(const Property& expected, const Property& actual) {
    const std::string wanted = Dump(expected), found = Dump(actual);
    return wanted == found ? "" : "expected:\n" + wanted + "found:\n" + found;
}

std::string Dump(const Property& tree) {
    std::string out;
    DumpInto(tree, tree.GetName(), out);
    return out;
}

Property Tree(const std::string& text) {
    const std::size_t brace = text.find('{');
    std::string_view rest = std::string_view(text).substr(brace);
    return Read(text.substr(0, brace), rest);
}

std::vector<std::string> CallsOf(const Conf::IPropertyConstraint& constraint) {
    return Fill(constraint)->calls;
}

std::string ListOf(const Conf::IPropertyConstraint& constraint) {
    const SP<RecordingConsumer> consumer = Fill(constraint);
    if (!consumer->min.empty()) {
        return consumer->min + ".." + consumer->max + (consumer->step.empty() ? "" : "/" + consumer->step);
    }
    if (consumer->calls.empty()) return constraint.Description("");
    std::string list;
    for (const std::string& name : consumer->names) list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::vector<std::string> RulesOf(const Conf::IDataHelper& helper) {
    Conf::RuleList rules;
    helper.GetValidationRules(rules);
    std::vector<std::string> lines;
    for (const auto& [key, rule] : rules) {
        const auto first = rule->GetFirstConstraint();
        lines.push_back((first ? rule->GetFirstPath() + " in " + ListOf(*first) : std::string("always")) + " -> " +
                        rule->GetSecondPath() + " in " + ListOf(*rule->GetSecondConstraint()));
    }
    return lines;
}

std::vector<std::string> ConstraintsOf(const Conf::IDataHelper& helper) {
    Conf::ConstraintMap constraints;
    helper.GetConstraints(constraints);
    std::vector<std::string> lines;
    for (const auto& [path, constraint] : constraints) lines.push_back(path + " in " + ListOf(*constraint));
    return lines;
}

}  // namespace NorvexTest
