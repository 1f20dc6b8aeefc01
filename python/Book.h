#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <vector>

/// The rule book of the process: the census, and the tables of helpers.

namespace NorvexPython {

namespace py = pybind11;

/// Takes the census and builds all tables, unless they stand. Whoever calls into the rule book calls this before. Other
/// threads have the interpreter meanwhile: helpers and a census that are written in Python need it, and who held it
/// while waiting for the tables would wait forever. Throws what taking and building throws; the next call tries again.
void RequireBook();

/// Takes the census from a callable of Python, and not from FFmpeg. Throws RegistrationException where it is taken.
void SetCensus(py::object listEncoders);

/// Registers a helper that `make` gives; see PythonHelper.h.
void RegisterHelper(const std::string& kind, const std::string& id, py::object make);

/// Registers the library's second set.
void RegisterModern();

/// The class ids of the filters: the library's, and those that were registered here.
std::vector<std::string> FilterIds();

}  // namespace NorvexPython
