#pragma once

#include <Python.h>
#include <cxxabi.h>
#include <unistd.h>

#include <exception>
#include <utility>

/// Who holds the interpreter. pybind11's own guards end the process where a thread meets the end of the interpreter: it
/// is unwound through a destructor. Here such a thread sleeps until the process is gone, as in later Pythons.

namespace NorvexPython {

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

template <class Take>
auto TakeGil(const Take& take) {
    try {
        return take();
    } catch (abi::__forced_unwind&) {
        for (;;) pause();
    }
}

/// Holds the interpreter, on whatever thread. Only where IsAlive(), or where the thread holds it already.
class WithGil {
public:
    WithGil() : m_state(TakeGil([] { return PyGILState_Ensure(); })) {}
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
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (...) {
        failure = std::current_exception();
    }
    TakeGil([thread] { PyEval_RestoreThread(thread); });
    if (failure) std::rethrow_exception(std::move(failure));
}

}  // namespace NorvexPython
