#include "Judging.h"

#include <set>

#include "common/OtherNames.h"
#include "norvex/document/TreeForm.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using Document::PlainFormOf;
using Document::Value;
using P = IPreset;

const char* TypeName(PropertyTypes type) {
    switch (type) {
        case PT_BOOL:
            return "bool";
        case PT_DOUBLE:
            return "double";
        case PT_INT64:
            return "int";
        case PT_STRING:
            return "text";
        case PT_RATIO:
            return "ratio";
        case PT_NODE:
            return "node";
        case PT_NONE:
            break;
    }
    return "none";
}

template <class Constraint>
bool Is(const IPropertyConstraint& constraint) {
    return dynamic_cast<const Constraint*>(&constraint) != nullptr;
}

/// Tells a test of integers as a divisor and the rest that it asks for, by what it answers. Whether it is one. The rest
/// is never negative.
bool AddSteps(const ConstraintMethod& test, Value& json) {
    constexpr long long far = 512;  // some times the widest step of a picture
    const auto takes = [&test](long long number) { return IsLegal(Property(std::string(), number), test); };
    long long first = 0;
    while (first < far && !takes(first)) ++first;
    long long second = first + 1;
    while (second < far && !takes(second)) ++second;
    const long long step = second - first;
    if (second >= far || IsLegal(Property("", "text"), test)) return false;
    for (long long number = -far; number < far; ++number) {
        if (takes(number) != ((number % step + step) % step == first)) return false;
    }
    json["class"] = "multiple";
    json["type"] = TypeName(PT_INT64);
    json["divisor"] = step;
    json["rest"] = first;
    return true;
}

void AddClass(const IPropertyConstraint& constraint, const Allowed& allowed, Value& json) {
    if (const auto* const test = dynamic_cast<const ConstraintMethod*>(&constraint)) {
        const bool takesAll = IsLegal(Property("", "text"), *test) && IsLegal(Property(), *test);
        if (!AddSteps(*test, json)) json["class"] = takesAll ? "any" : "words";
        return;
    }
    const bool isRange = Is<ConstraintRange>(constraint);
    json["class"] = isRange                                   ? "range"
                    : Is<ConstraintSet>(constraint)           ? "set"
                    : Is<ConstraintCodecs>(constraint)        ? "codecs"
                    : Is<ConstraintChannelLayout>(constraint) ? "layouts"
                    : Is<ConstraintSampleFormat>(constraint)  ? "sampleFormats"
                    : Is<SizeConstraints>(constraint)         ? "sizes"
                                                              : "words";
    PropertyTypes type = PT_STRING;
    if (isRange && allowed.min) type = allowed.min->GetType();
    if (!allowed.values.empty()) type = allowed.values.front().GetType();
    json["type"] = TypeName(type);
    if (Is<ConstraintCodecs>(constraint)) {
        Property fallback{std::string(), std::string()};  // a text that is no codec becomes the default
        if (constraint.Fixup(fallback)) json["fallback"] = PlainFormOf(fallback);
    }
}

/// What is allowed together with the automatic values, if that is more.
void AddWidened(const SP<const IPropertyConstraint>& own, const SP<const IPropertyConstraint>& automatic, Value& json) {
    if (automatic != own) json["widened"] = AllowedJson(*automatic);
}

Value EndJson(const std::string& path, const IPropertyConstraint& constraint) {
    return {{"path", DocumentPathOf(path)}, {"assembled", path}, {"allowed", AllowedJson(constraint)}};
}

/// Where the assembled preset has what the document has elsewhere.
class Places {
public:
    void Add(const std::string& assembled) {
        const std::string path = DocumentPathOf(assembled);
        if (path != assembled && m_known.insert(path).second) m_list.push_back({{"from", path}, {"to", assembled}});
    }
    Value Take() { return std::move(m_list); }

private:
    std::set<std::string> m_known;
    Value::List m_list;
};

void AddPlaces(const std::string& kind, const IDataHelper& helper, Places& places) {
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    for (const auto& [path, constraint] : constraints) places.Add(kind + Property::SEPARATOR + path);
    RuleList rules;
    helper.GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        places.Add(rule->GetFirstPath());
        places.Add(rule->GetSecondPath());
    }
}

}  // namespace

Value AllowedJson(const IPropertyConstraint& constraint) {
    const Allowed allowed = WhatIsAllowed(constraint);
    Value json = {{"words", allowed.words}};
    AddClass(constraint, allowed, json);
    if (!allowed.values.empty()) {
        for (const Property& value : allowed.values) {
            json["values"].Append({{"name", value.GetName()}, {"value", PlainFormOf(value)}});
        }
    }
    if (allowed.min) json["min"] = PlainFormOf(*allowed.min);
    if (allowed.max) json["max"] = PlainFormOf(*allowed.max);
    if (allowed.step) json["step"] = PlainFormOf(*allowed.step);
    return json;
}

Value ConstraintsJson(const std::string& kind, const IDataHelper& helper) {
    ConstraintMap own;
    helper.GetConstraints(own);
    ConstraintMap automatic;
    DataHelperProxyAuto::Create(kind, SP<const IDataHelper>(&helper))->GetConstraints(automatic);
    Value::List list;
    for (const auto& [path, constraint] : own) {
        Value json = {{"path", path}, {"allowed", AllowedJson(*constraint)}};
        AddWidened(constraint, automatic[path], json);
        list.push_back(std::move(json));
    }
    return list;
}

Value RulesJson(const std::string& kind, const IDataHelper& helper) {
    RuleList own;
    helper.GetValidationRules(own);
    RuleList automatic;
    DataHelperProxyAuto::Create(kind, SP<const IDataHelper>(&helper))->GetValidationRules(automatic);
    Value::List list;
    for (std::size_t i = 0; i < own.size(); ++i) {
        const IValidationRule& rule = *own[i].second;
        Value json = EndJson(rule.GetSecondPath(), *rule.GetSecondConstraint());
        const auto condition = rule.GetFirstConstraint();
        json["when"] = condition ? EndJson(rule.GetFirstPath(), *condition) : Value();
        AddWidened(rule.GetSecondConstraint(), automatic[i].second->GetSecondConstraint(), json);
        list.push_back(std::move(json));
    }
    return list;
}

Value ParametersJson(const std::string& kind, const std::string& id) {
    Value::Object members;
    for (const auto& [path, parameter] : ParametersOf(kind, id)) {
        Value json = {{"type", TypeName(parameter.type)}};
        if (parameter.automatic) json["automatic"] = PlainFormOf(*parameter.automatic);
        members.push_back({path, std::move(json)});
    }
    return members;
}

Value JudgingJson() {
    Places places;
    for (const std::string& kind : {P::KEY_FORMAT, P::KEY_FILTER_VIDEO_CODEC, P::KEY_FILTER_AUDIO_CODEC}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) AddPlaces(kind, *helper, places);
    }
    Value::Object layouts;
    for (const std::string& name : NorvexApps::IdsOf(NorvexApps::Named::Layout)) {
        layouts.push_back({name, LayoutRecord::Find(name).channels});
    }
    Value::Object formats;
    for (const std::string& name : NorvexApps::IdsOf(NorvexApps::Named::SampleFormat)) {
        const SampleFmtRecord& record = SampleFmtRecord::Find(name);
        formats.push_back(
            {name,
             {{"bits", record.bits}, {"planar", record.planar}, {"twin", SampleFmtRecord::Find(record.twin).name}}});
    }
    Value common;
    for (const std::string& kind :
         {P::KEY_FORMAT, P::KEY_FILTER_VIDEO_CODEC, P::KEY_FILTER_AUDIO_CODEC, P::KEY_FILTER_SUBTITLE_CODEC}) {
        common[kind] = ParametersJson(kind, std::string());
    }
    Value::Object sentences;
    for (const auto& [name, sentence] : FindingSentences()) sentences.push_back({name, sentence});
    return {{"places", places.Take()},
            {"sentences", std::move(sentences)},
            {"parameters", std::move(common)},
            {"layouts", std::move(layouts)},
            {"sampleFormats", std::move(formats)}};
}

}  // namespace NorvexRules
