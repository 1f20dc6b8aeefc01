#pragma once

#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norvex/Conf/Review/CorrectionReport.h"
#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/Conf/Review/PresetMending.h"
#include "norvex/interfaces/Conf/IDataHelper.h"

/// What the library tells, as Python's objects: norvex/_records.py has the dataclasses.

namespace NorvexPython {

namespace py = pybind11;

/// norvex.Constraint: which values one parameter may take. Immutable.
class Constraint {
public:
    explicit Constraint(Norvex::SP<const Norvex::Conf::IPropertyConstraint> constraint)
        : m_constraint(std::move(constraint)) {}

    const Norvex::SP<const Norvex::Conf::IPropertyConstraint>& Get() const { return m_constraint; }
    /// What it allows, asked for once: few look at it.
    const Norvex::Conf::Allowed& GetAllowed() const;

private:
    Norvex::SP<const Norvex::Conf::IPropertyConstraint> m_constraint;
    mutable std::optional<Norvex::Conf::Allowed> m_allowed;
};

/// None for null.
py::object ConstraintFrom(Norvex::SP<const Norvex::Conf::IPropertyConstraint> constraint);
/// Null for None. Raises TypeError for another class.
Norvex::SP<Norvex::Conf::IPropertyConstraint> ConstraintOf(const py::object& object);

py::dict AllowedFrom(const Norvex::Conf::ConstraintMap& constraints);
py::list RulesFrom(const Norvex::Conf::RuleList& rules);
py::list RequiredFrom(const Norvex::Conf::ObjectList& objects);

py::object FindingFrom(const Norvex::Conf::Finding& finding);
py::list FindingsFrom(const std::vector<Norvex::Conf::Finding>& findings);
py::object ChangeFrom(const Norvex::Conf::CorrectedValue& change);
py::object MendedFrom(const Norvex::Conf::MendedPreset& mended);

/// A finding about a helper that failed.
py::object FailedFinding(const std::string& kind, const std::string& id, const py::object& error);

/// Adds norvex.Constraint, one_of and between to the module.
void BindConstraints(py::module_& module);

}  // namespace NorvexPython
