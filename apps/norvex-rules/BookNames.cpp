#include "BookNames.h"

#include <map>
#include <string>

#include "common/OtherNames.h"
#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using Document::Value;

class Names {
public:
    void Add(const std::string& kind, const IDataHelper& helper) {
        AddDefaults(helper.GetDefaults());
        const SP<const IDataHelper> automatic = DataHelperProxyAuto::Create(kind, SP<const IDataHelper>(&helper));
        ConstraintMap constraints;
        automatic->GetConstraints(constraints);
        for (const auto& [path, constraint] : constraints) AddAllowed(path, *constraint);
        RuleList rules;
        automatic->GetValidationRules(rules);
        for (const auto& [key, rule] : rules) AddAllowed(rule->GetSecondPath(), *rule->GetSecondConstraint());
    }
    void AddParameters(const std::string& kind, const std::string& id) {
        AddTag(kind);
        for (const auto& [path, parameter] : ParametersOf(kind, id)) {
            AddTag(path);
            if (parameter.automatic) AddValue(path, *parameter.automatic);
        }
    }

    Value Take() {
        Value::Object values;
        for (auto& [tag, names] : m_values) values.push_back({tag, ObjectOf(names)});
        return {{"parameters", ObjectOf(m_parameters)}, {"values", std::move(values)}};
    }

private:
    template <class Map>
    static Value ObjectOf(const Map& map) {
        Value::Object members;
        for (const auto& [name, value] : map) members.push_back({name, value});
        return members;
    }

    static std::string TagOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

    void AddTag(const std::string& path) {
        Value& json = m_parameters[TagOf(path)];
        if (!json.IsNull()) return;
        json["name"] = ParameterForPeople(path);
        if (const std::string unit = UnitForPeople(path); !unit.empty()) json["unit"] = unit;
    }

    void AddValue(const std::string& path, const Property& value) {
        const std::string tag = TagOf(path);
        if (tag == IFormatFile::TAG_CONTAINER || value.GetType() == PT_NODE) return;
        const std::string text = PropertyValueToString(value);
        // Containers also carry codecs that have no entry.
        const bool isCodec = tag == IFormatCodec::TAG_CODEC_ID;
        if (isCodec && (GetAvailableDataHelpers(IPreset::KEY_FILTER_VIDEO_CODEC).count(text) > 0 ||
                        GetAvailableDataHelpers(IPreset::KEY_FILTER_AUDIO_CODEC).count(text) > 0)) {
            return;
        }
        const std::string name = ValueForPeople(path, value);
        if (name != text) m_values[tag].insert_or_assign(text, name);
    }

    void AddDefaults(const Property& section) {
        for (const Property& child : section) {
            child.GetType() == PT_NODE ? AddDefaults(child) : AddValue(child.GetName(), child);
        }
    }

    void AddAllowed(const std::string& path, const IPropertyConstraint& constraint) {
        const Allowed allowed = WhatIsAllowed(constraint);
        for (const Property& value : allowed.values) AddValue(path, value);
        for (const auto& end : {allowed.min, allowed.max}) {
            if (end) AddValue(path, *end);
        }
    }

    std::map<std::string, Value> m_parameters;
    std::map<std::string, std::map<std::string, std::string>> m_values;
};

}  // namespace

Value NamesJson() {
    Names names;
    for (const std::string& kind :
         {IPreset::KEY_FORMAT, IPreset::KEY_FILTER_VIDEO_CODEC, IPreset::KEY_FILTER_AUDIO_CODEC}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            names.Add(kind, *helper);
            names.AddParameters(kind, id);
        }
    }
    for (const std::string& kind : NorvexApps::IdsOf(NorvexApps::Named::Filter)) {
        names.Add(kind, *CreateDataHelper(kind, std::string()));
        names.AddParameters(kind, std::string());
    }
    return names.Take();
}

}  // namespace NorvexRules
