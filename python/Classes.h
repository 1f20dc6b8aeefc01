#pragma once

#include <pybind11/pybind11.h>

#include <string>

/// What the module needs of Python: classes that are written there.

namespace NorvexPython {

namespace py = pybind11;

/// Imports them. Called once, while the module is made: an import within a call could deadlock with another thread's.
void LoadClasses();

/// fractions.Fraction.
py::handle FractionClass() noexcept;
/// A class of norvex/_errors.py or norvex/_records.py.
py::object ErrorClass(const char* name);
py::object RecordClass(const char* name);

/// A text of the library for people: bytes that are no UTF-8 are shown as escapes.
py::str TextFrom(const std::string& text);

}  // namespace NorvexPython
