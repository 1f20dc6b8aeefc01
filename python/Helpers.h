#pragma once

#include <pybind11/pybind11.h>

#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexPython {

namespace py = pybind11;

/// norvex.Helper: one of the catalogue's, or the base of one that is written in Python.
struct Helper {
    Norvex::Conf::NamedHelper named;
};

/// The name of the flat node of a stream in which the helper's codec is, or the stream's own.
const std::string& StreamName(const std::string& kind, py::handle stream);

/// Adds norvex.Helper and the functions that find and register helpers to the module.
void BindHelpers(py::module_& module);

/// Adds what judges, corrects and mends.
void BindReview(py::module_& module);

/// Adds what tells which containers a file's streams fit.
void BindFitting(py::module_& module);

}  // namespace NorvexPython
