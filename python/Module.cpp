#include <pybind11/pybind11.h>

#include "Classes.h"
#include "Errors.h"
#include "Helpers.h"
#include "PythonHelper.h"
#include "Records.h"

PYBIND11_MODULE(_norvex, module) {
    namespace py = pybind11;
    using namespace NorvexPython;
    // The library's tables are one for the process, and so is who may call helpers that are written in Python.
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        throw py::import_error("norvex works in the main interpreter alone");
    }
    LoadClasses();
    RegisterErrors();
    BindConstraints(module);
    BindHelpers(module);
    BindReview(module);
    BindFitting(module);
    py::module_::import("atexit").attr("register")(py::cpp_function(&Held::DropAll));
}
