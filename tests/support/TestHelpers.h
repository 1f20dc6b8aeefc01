#pragma once

#include <gmock/gmock.h>

#include <initializer_list>
#include <optional>
#include <string>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/Trees.h"

namespace NorvexTest {

// So that a test has all names by one line.
using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A node with these children.
inline Property Node(const std::string& name, std::initializer_list<Property> children) {
    Property node(name);
    for (const auto& child : children) node.AddNamed(child);
    return node;
}

inline RuleList CollectRules(const IDataHelper& helper) {
    RuleList rules;
    helper.GetValidationRules(rules);
    return rules;
}

inline ConstraintMap CollectConstraints(const IDataHelper& helper) {
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    return constraints;
}

/// What the constraint makes of the value: "ok", "fixed to X" or "no"; "taken" where it leaves alone what is not valid.
template <class Constraint>
std::string FixupOf(const Constraint& constraint, Property value) {
    const Property before = value;
    const bool isValid = constraint->IsValid(value), isFixed = constraint->Fixup(value);
    if (isFixed && value != before) return isValid ? "changed" : "fixed to " + PropertyValueToString(value);
    return value != before ? "changed" : isFixed == isValid ? (isValid ? "ok" : "no") : isFixed ? "taken" : "refused";
}

/// A codec helper that says, behind its base, what a case needs.
class TestCodec final : public RefCounted<DataHelperCodecFFMPEG> {
public:
    explicit TestCodec(MediaType type, const std::string& codecId = "test")
        : RefCounted<DataHelperCodecFFMPEG>(codecId, type) {}

    Property GetDefaults() const override { return defaults ? *defaults : Base::GetDefaults(); }
    void GetValidationRules(RuleList& out) const override {
        Base::GetValidationRules(out);
        out.insert(out.end(), rules.begin(), rules.end());
    }
    void GetConstraints(ConstraintMap& out) const override {
        Base::GetConstraints(out);
        for (const auto& [path, constraint] : constraints) out[path] = constraint;
    }

    std::optional<Property> defaults;  ///< in the place of the base's
    RuleList rules;
    ConstraintMap constraints;

private:
    using Base = DataHelperCodecFFMPEG;
};

}  // namespace NorvexTest
