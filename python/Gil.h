#pragma once

#include <pybind11/pybind11.h>
#include <unistd.h>

#include <exception>
#include <utility>

/// Who holds the interpreter, and how Python code is called. A thread that asks for the interpreter at its end is
/// unwound by it, from whatever Python code it was in: destructors in its way would touch objects without holding it,
/// or end the process. Such a thread sleeps here until the process is gone, as it does in later Pythons by itself.

namespace NorvexPython {

namespace py = pybind11;

inline bool IsEnding() noexcept {
#if PY_VERSION_HEX >= 0x030D0000
    return Py_IsFinalizing() != 0;
#else
    return _Py_IsFinalizing() != 0;
#endif
}

/// Whether there is an interpreter that takes calls.
inline bool IsAlive() noexcept {
    return Py_IsInitialized() != 0 && !IsEnding();
}

/// Runs a function of Python's own interface that may wait for the interpreter. It throws nothing, and there must be
/// nothing within that is to be destroyed.
template <class Operation>
auto Surviving(const Operation& operation) {
    try {
        return operation();
    } catch (...) {  // the unwinding of the thread
        for (;;) pause();
    }
}

/// Holds the interpreter, on whatever thread. Only where IsAlive(), or where the thread holds it already.
class WithGil {
public:
    WithGil() : m_state(Surviving([] { return PyGILState_Ensure(); })) {}
    ~WithGil() { PyGILState_Release(m_state); }
    WithGil(const WithGil&) = delete;
    WithGil& operator=(const WithGil&) = delete;

private:
    const PyGILState_STATE m_state;
};

/// Lets other threads have the interpreter while `operation` runs, and passes on what it throws.
template <class Operation>
void WithoutGil(const Operation& operation) {
    std::exception_ptr failure;
    PyThreadState* const thread = PyEval_SaveThread();
    try {
        operation();
    } catch (...) {
        failure = std::current_exception();
    }
    Surviving([thread] { PyEval_RestoreThread(thread); });
    if (failure) std::rethrow_exception(std::move(failure));
}

/// Takes what a function of Python's own interface returns: a new reference, or null with an exception set.
inline py::object Owned(PyObject* object) {
    if (object == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(object);
}

/// callable(arguments...), where that is Python code.
template <class... Arguments>
py::object Call(py::handle callable, const Arguments&... arguments) {
    const py::tuple tuple = py::make_tuple(arguments...);
    return Owned(Surviving([&] { return PyObject_CallObject(callable.ptr(), tuple.ptr()); }));
}

/// What an iterable gives, all at once: it may be Python code.
inline py::tuple Listed(py::handle iterable) {
    return py::reinterpret_steal<py::tuple>(
        Owned(Surviving([&] { return PySequence_Tuple(iterable.ptr()); })).release());
}

inline py::object Attribute(py::handle object, const char* name) {
    return Owned(Surviving([&] { return PyObject_GetAttrString(object.ptr(), name); }));
}

}  // namespace NorvexPython
