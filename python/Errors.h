#pragma once

#include <pybind11/pybind11.h>

#include <exception>

/// Failures of the library as Python exceptions: norvex/_errors.py has their classes.

namespace NorvexPython {

namespace py = pybind11;

/// The Python exception that stands for a failure: what Python code raised as itself, with its traceback.
py::object ErrorFrom(const std::exception_ptr& failure);
/// The same; None where there is none.
py::object ErrorOrNone(const std::exception_ptr& failure);

/// Raises what no report may keep: KeyboardInterrupt, SystemExit and their like.
void RaiseUnlessException(const std::exception_ptr& failure);

/// Lets the module raise what its functions throw.
void RegisterErrors();

}  // namespace NorvexPython
