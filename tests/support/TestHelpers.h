#pragma once

#include <initializer_list>
#include <optional>
#include <string>

#include "norvex/Norvex.h"

namespace NorvexTest {

/// A node with these children.
inline Norvex::Core::Property Node(const std::string& name, std::initializer_list<Norvex::Core::Property> children) {
    Norvex::Core::Property node(name);
    for (const auto& child : children) node.AddNamed(child);
    return node;
}

inline Norvex::Conf::RuleList CollectRules(const Norvex::Conf::IDataHelper& helper) {
    Norvex::Conf::RuleList rules;
    helper.GetValidationRules(rules);
    return rules;
}

inline Norvex::Conf::ConstraintMap CollectConstraints(const Norvex::Conf::IDataHelper& helper) {
    Norvex::Conf::ConstraintMap constraints;
    helper.GetConstraints(constraints);
    return constraints;
}

/// What the constraint makes of the value: "ok", "fixed to X" or "no"; "taken" where it leaves alone what is not valid.
template <class Constraint>
std::string FixupOf(const Constraint& constraint, Norvex::Core::Property value) {
    const Norvex::Core::Property before = value;
    const bool isValid = constraint->IsValid(value), isFixed = constraint->Fixup(value);
    if (isFixed && value != before) return isValid ? "changed" : "fixed to " + PropertyValueToString(value);
    return value != before ? "changed" : isFixed == isValid ? (isValid ? "ok" : "no") : isFixed ? "taken" : "refused";
}

/// A codec helper that says, behind its base, what a case needs.
class TestCodec final : public Norvex::RefCounted<Norvex::Conf::DataHelperCodecFFMPEG> {
public:
    explicit TestCodec(Norvex::MediaType type, const std::string& codecId = "test")
        : RefCounted<DataHelperCodecFFMPEG>(codecId, type) {}

    Norvex::Core::Property GetDefaults() const override { return defaults ? *defaults : Base::GetDefaults(); }
    void GetValidationRules(Norvex::Conf::RuleList& out) const override {
        Base::GetValidationRules(out);
        out.insert(out.end(), rules.begin(), rules.end());
    }
    void GetConstraints(Norvex::Conf::ConstraintMap& out) const override {
        Base::GetConstraints(out);
        for (const auto& [path, constraint] : constraints) out[path] = constraint;
    }

    std::optional<Norvex::Core::Property> defaults;  ///< in the place of the base's
    Norvex::Conf::RuleList rules;
    Norvex::Conf::ConstraintMap constraints;

private:
    using Base = Norvex::Conf::DataHelperCodecFFMPEG;
};

}  // namespace NorvexTest
