#include "Records.h"

#include <pybind11/stl.h>

#include <utility>

#include "Classes.h"
#include "Gil.h"
#include "Trees.h"
#include "norvex/Norvex.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

/// All values of the one type of the first, with their display names.
SP<const IPropertyConstraint> SetOf(const py::iterable& values) {
    ConstraintSet::ValueList<Property> list;
    for (const py::handle entry : Listed(values)) {
        const bool isNamed = py::isinstance<py::tuple>(entry);
        const auto [name, object] = isNamed ? entry.cast<std::pair<std::optional<std::string>, py::object>>()
                                            : std::pair(std::optional<std::string>(), entry.cast<py::object>());
        Property value = TreeFrom(object, std::string());
        if (value.GetType() == PT_NODE || value.GetType() == PT_NONE ||
            (!list.empty() && list.front().second.GetType() != value.GetType())) {
            throw py::type_error("the values of a list are of one type: bool, int, float, str or Fraction");
        }
        list.emplace_back(name ? *name : Core::PropertyValueToString(value), std::move(value));
    }
    if (list.empty()) throw py::value_error("there is no value in the list");
    const PropertyTypes type = list.front().second.GetType();
    return ConstraintSet::Create(type, list);
}

SP<const IPropertyConstraint> RangeOf(const py::object& lo, const py::object& hi, const py::object& step) {
    const Property bounds[] = {TreeFrom(lo, "lo"), TreeFrom(hi, "hi"), TreeFrom(step, "step")};
    bool isDouble = false;
    for (const Property& bound : bounds) {
        if (bound.GetType() != PT_INT64 && bound.GetType() != PT_DOUBLE) {
            throw py::type_error("the bounds and the step of a range are int or float");
        }
        isDouble = isDouble || bound.GetType() == PT_DOUBLE;
    }
    if (isDouble) return ConstraintRange::Create(bounds[0].GetDouble(), bounds[1].GetDouble(), bounds[2].GetDouble());
    return ConstraintRange::Create(bounds[0].GetInt64(), bounds[1].GetInt64(), bounds[2].GetInt64());
}

py::tuple ValuesOf(const Constraint& constraint) {
    py::list values;
    for (const Property& value : constraint.GetAllowed().values) {
        values.append(py::make_tuple(TextFrom(value.GetName()), ObjectFrom(value)));
    }
    return py::tuple(values);
}

py::object Nearest(const Constraint& constraint, const py::object& object) {
    Property value = TreeFrom(object, std::string());
    return constraint.Get()->Fixup(value) ? ObjectFrom(value) : py::none();
}

std::string Describe(const Constraint& constraint) {
    const std::string& words = constraint.GetAllowed().words;
    return "<norvex.Constraint: " + (words.empty() ? "?" : words) + '>';
}

}  // namespace

const Allowed& Constraint::GetAllowed() const {
    if (!m_allowed) m_allowed = WhatIsAllowed(*m_constraint);
    return *m_allowed;
}

py::object ConstraintFrom(SP<const IPropertyConstraint> constraint) {
    if (!constraint) return py::none();
    return py::cast(Constraint(std::move(constraint)));
}

SP<IPropertyConstraint> ConstraintOf(const py::object& object) {
    if (object.is_none()) return nullptr;
    if (!py::isinstance<Constraint>(object)) {
        throw py::type_error(std::string(Py_TYPE(object.ptr())->tp_name) + " is no norvex.Constraint");
    }
    // All that a constraint does is const; rules ask for the other pointer.
    return SP<IPropertyConstraint>(const_cast<IPropertyConstraint*>(object.cast<const Constraint&>().Get().get()));
}

py::dict AllowedFrom(const ConstraintMap& constraints) {
    py::dict dict;
    for (const auto& [path, constraint] : constraints) dict[TextFrom(path)] = ConstraintFrom(constraint);
    return dict;
}

py::list RulesFrom(const RuleList& rules) {
    const py::object record = RecordClass("Rule");
    py::list list;
    for (const auto& entry : rules) {
        const auto& rule = entry.second;
        if (!rule) continue;
        list.append(Call(record, TextFrom(rule->GetSecondPath()), ConstraintFrom(rule->GetSecondConstraint()),
                         TextFrom(rule->GetFirstPath()), ConstraintFrom(rule->GetFirstConstraint())));
    }
    return list;
}

py::list RequiredFrom(const ObjectList& objects) {
    py::list list;
    for (const auto& [kind, implementation] : objects) {
        list.append(py::make_tuple(TextFrom(kind), TextFrom(implementation)));
    }
    return list;
}

py::object FindingFrom(const Finding& finding) {
    return Call(RecordClass("Finding"), TextFrom(finding.helperKind), TextFrom(finding.helperId),
                NameOf(finding.source), NameOf(finding.verdict), NameOf(finding.problem), TextFrom(finding.path),
                ObjectFrom(finding.value), ConstraintFrom(finding.constraint), TextFrom(finding.conditionPath),
                ObjectFrom(finding.condition), TextFrom(finding.documentPath), TextFrom(finding.message), py::none());
}

py::list FindingsFrom(const std::vector<Finding>& findings) {
    py::list list;
    for (const Finding& finding : findings) list.append(FindingFrom(finding));
    return list;
}

py::object ChangeFrom(const CorrectedValue& change) {
    return Call(RecordClass("Change"), TextFrom(change.helperKind), TextFrom(change.helperId), TextFrom(change.path),
                ObjectFrom(change.before), ObjectFrom(change.after), NameOf(change.reason),
                change.broken ? FindingFrom(*change.broken) : py::none());
}

py::object MendedFrom(const MendedPreset& mended) {
    const py::object record = RecordClass("MendedValue");
    py::list values;
    for (const MendedValue& value : mended.values) {
        values.append(Call(record, TextFrom(value.path), NameOf(value.outcome), ObjectFrom(value.before),
                           ObjectFrom(value.after), TextFrom(value.message)));
    }
    return Call(RecordClass("Mended"), ObjectFrom(mended.preset), FindingsFrom(mended.broken), values,
                FindingsFrom(mended.left), FindingsFrom(mended.open));
}

py::object FailedFinding(const std::string& kind, const std::string& id, const py::object& error) {
    return Call(RecordClass("Finding"), TextFrom(kind), TextFrom(id), "helper", "failed", "failed", "", py::none(),
                py::none(), "", py::none(), "", Owned(Surviving([&error] { return PyObject_Repr(error.ptr()); })),
                error);
}

void BindConstraints(py::module_& module) {
    py::class_<Constraint>(module, "Constraint", py::is_final(), "Which values one parameter may take. Immutable.")
        .def_property_readonly("values", &ValuesOf, "Pairs of display name and value; empty where it is no list.")
        .def_property_readonly(
            "min", [](const Constraint& it) { return ObjectFrom(it.GetAllowed().min); },
            "The lower bound, which belongs to the range; None where it is no range.")
        .def_property_readonly(
            "max", [](const Constraint& it) { return ObjectFrom(it.GetAllowed().max); }, "The upper bound.")
        .def_property_readonly(
            "step", [](const Constraint& it) { return ObjectFrom(it.GetAllowed().step); },
            "A hint for controls, which plays no part in what is valid; None where there is none.")
        .def_property_readonly(
            "words", [](const Constraint& it) { return TextFrom(it.GetAllowed().words); },
            "Such as 'one of 1, 2' or 'from 1 to 51', in the language of the locale.")
        .def(
            "is_valid",
            [](const Constraint& it, const py::object& value) {
                return IsLegal(TreeFrom(value, std::string()), *it.Get());
            },
            py::arg("value"), "Whether the value is allowed; one of a type that cannot be judged is not.")
        .def("nearest", &Nearest, py::arg("value"),
             "The value, or the nearest that is allowed; None where there is none. Raises ConstraintError for a type "
             "that the constraint cannot judge.")
        .def("__repr__", [](const Constraint& it) { return TextFrom(Describe(it)); });
    module.def(
        "one_of", [](const py::iterable& values) { return ConstraintFrom(SetOf(values)); }, py::arg("values"),
        "A list of values of one type, or of pairs of display name and value.");
    module.def(
        "between",
        [](const py::object& lo, const py::object& hi, const py::object& step) {
            return ConstraintFrom(RangeOf(lo, hi, step));
        },
        py::arg("lo"), py::arg("hi"), py::arg("step") = 0,
        "A number between two bounds, which belong to the range. Of integers where all three are int.");
}

}  // namespace NorvexPython
