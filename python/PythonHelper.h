#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <string>

#include "Gil.h"
#include "norvex/interfaces/Conf/IDataHelper.h"

/// Helpers that are written in Python. Such an object has some of the methods of norvex.Helper: defaults, allowed,
/// rules, requires, apply and correct. For those that it lacks stands its base: for a codec what the library's own
/// helpers stand on, which asks the encoder, applies presets and corrects by whatever the object allows.

namespace NorvexPython {

namespace py = pybind11;

/// A Python object in the hands of the library, whose tables outlive the interpreter. It goes with the interpreter, and
/// is out of reach from then on.
class Held {
public:
    explicit Held(py::object object);
    ~Held();
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    /// Calls with the object, holding the interpreter. Throws Norvex::Conf::HelperException where it is gone.
    template <class Use>
    auto With(const Use& use) const {
        RequireInterpreter();
        const WithGil gil;
        return use(Get());
    }

    /// Lets go of all of them, at the end of the interpreter.
    static void DropAll();

private:
    static void RequireInterpreter();
    py::object Get() const;

    PyObject* m_object;
};

/// Calls make(base) and takes what it returns for a helper. Null for None.
Norvex::SP<const Norvex::Conf::IDataHelper> MakeHelper(const std::string& kind, const std::string& id,
                                                       const Held& make);

}  // namespace NorvexPython
