#include "Classes.h"

namespace NorvexPython {

namespace {

/// Never let go of: whoever asks after the end of the interpreter has other troubles.
struct Classes {
    py::handle fraction;
    py::handle errors;
    py::handle records;
};
Classes g_classes;

}  // namespace

void LoadClasses() {
    g_classes.fraction = py::module_::import("fractions").attr("Fraction").cast<py::object>().release();
    g_classes.errors = py::module_::import("norvex._errors").release();
    g_classes.records = py::module_::import("norvex._records").release();
}

py::handle FractionClass() noexcept {
    return g_classes.fraction;
}

py::object ErrorClass(const char* name) {
    return g_classes.errors.attr(name);
}

py::object RecordClass(const char* name) {
    return g_classes.records.attr(name);
}

py::str TextFrom(const std::string& text) {
    PyObject* const decoded =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "backslashreplace");
    if (decoded == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

}  // namespace NorvexPython
