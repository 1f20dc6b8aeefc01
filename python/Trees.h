#pragma once

#include <pybind11/pybind11.h>

#include <optional>
#include <string>

#include "norvex/foundation/Property.h"

/// Settings trees as dicts. The form is that of preset documents, in Python's own types: a section is a dict, a ratio a
/// fractions.Fraction, a text a str, one that is not UTF-8 bytes, and a node without a value None. What a dict has no
/// form for is {"$children": [[name, value], ...]}: a section whose names repeat, begin with "$" or are not UTF-8. The
/// other special members of documents are read too.

namespace NorvexPython {

namespace py = pybind11;

/// A new dict, or a value.
py::object ObjectFrom(const Norvex::Core::Property& tree);
/// None where there is nothing.
py::object ObjectFrom(const std::optional<Norvex::Core::Property>& tree);

/// The tree of that name. Raises TreeTypeError, TreeOverflowError or TreeValueError, which say at which path.
Norvex::Core::Property TreeFrom(py::handle object, const std::string& name);
/// The same of a dict alone.
Norvex::Core::Property SectionFrom(py::handle object, const std::string& name);

}  // namespace NorvexPython
