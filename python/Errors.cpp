#include "Errors.h"

#include <boost/exception/diagnostic_information.hpp>
#include <new>
#include <string>

#include "Classes.h"
#include "Gil.h"
#include "norvex/document/DocumentException.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using Conf::HelperException;
using Core::PropertyException;

/// What a node of that type is in Python.
py::object ClassOf(PropertyTypes type) {
    const auto builtin = [](PyTypeObject& known) {
        return py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&known));
    };
    switch (type) {
        case PT_BOOL:
            return builtin(PyBool_Type);
        case PT_DOUBLE:
            return builtin(PyFloat_Type);
        case PT_INT64:
            return builtin(PyLong_Type);
        case PT_STRING:
            return builtin(PyUnicode_Type);
        case PT_RATIO:
            return py::reinterpret_borrow<py::object>(FractionClass());
        case PT_NODE:
            return builtin(PyDict_Type);
        case PT_NONE:
            break;
    }
    return builtin(*Py_TYPE(Py_None));
}

py::object ObjectOf(const std::string& text) {
    return TextFrom(text);
}
py::object ObjectOf(int number) {
    return py::int_(number);
}
py::object ObjectOf(PropertyTypes type) {
    return ClassOf(type);
}

template <class Tag>
void Give(const py::object& error, const char* name, const Exception& failure) {
    if (const auto* const detail = boost::get_error_info<Tag>(failure)) error.attr(name) = ObjectOf(*detail);
}

const char* NameOf(const Exception& failure) {
    const auto is = [&failure](const auto* type) { return dynamic_cast<decltype(type)>(&failure) != nullptr; };
    // The derived ones first.
    if (is(static_cast<const Conf::RegistrationException*>(nullptr))) return "RegistrationError";
    if (is(static_cast<const HelperException*>(nullptr))) return "HelperError";
    if (is(static_cast<const Conf::ConstraintException*>(nullptr))) return "ConstraintError";
    if (is(static_cast<const Conf::FormatException*>(nullptr))) return "FormatError";
    if (is(static_cast<const Core::MethodIsNotApplicable*>(nullptr))) return "MethodError";
    if (is(static_cast<const PropertyException*>(nullptr))) return "PropertyError";
    if (is(static_cast<const Document::DocumentException*>(nullptr))) return "DocumentError";
    if (is(static_cast<const Proc::SettingsException*>(nullptr))) return "SettingsError";
    return "Error";
}

py::object ErrorOf(const Exception& failure) {
    const py::object error = Call(ErrorClass(NameOf(failure)));
    Give<TagDescription>(error, "description", failure);
    Give<TagDetails>(error, "details", failure);
    Give<TagCallStack>(error, "call_stack", failure);
    Give<PropertyException::TagPropertyName>(error, "property_name", failure);
    Give<PropertyException::TagPropertyType>(error, "property_type", failure);
    Give<PropertyException::TagMethodName>(error, "method_name", failure);
    Give<Conf::ConstraintException::TagConstraintClass>(error, "constraint_class", failure);
    Give<Conf::ConstraintException::TagValueType>(error, "value_type", failure);
    Give<HelperException::TagClassIsNotFound>(error, "class_is_not_found", failure);
    Give<HelperException::TagClassIsFound>(error, "class_is_found", failure);
    Give<HelperException::TagTypeIsNotFound>(error, "type_is_not_found", failure);
    Give<Document::DocumentException::TagLine>(error, "line", failure);
    error.attr("diagnostics") = TextFrom(boost::diagnostic_information(failure));
    return error;
}

py::object ErrorOf(const std::exception& failure) {
    // The library puts the call stack behind the message of a standard exception.
    const std::string what = failure.what();
    const std::size_t end = what.find('\n');
    const py::object error = Call(ErrorClass("Error"));
    error.attr("description") = TextFrom(what.substr(0, end));
    if (end != std::string::npos) error.attr("call_stack") = TextFrom(what.substr(end + 1));
    error.attr("diagnostics") = TextFrom(boost::diagnostic_information(failure));
    return error;
}

}  // namespace

py::object ErrorFrom(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const py::error_already_set& raised) {
        py::object error = raised.value();
        if (raised.trace()) PyException_SetTraceback(error.ptr(), raised.trace().ptr());
        return error;
    } catch (const py::cast_error&) {
        return Call(PyExc_TypeError, "a value is not of the type that is wanted");
    } catch (const py::builtin_exception& raised) {  // what pybind11 raises itself
        try {
            raised.set_error();
            throw py::error_already_set();
        } catch (const py::error_already_set&) {
            return ErrorFrom(std::current_exception());
        }
    } catch (const std::bad_alloc&) {
        return py::reinterpret_borrow<py::object>(PyExc_MemoryError)();
    } catch (const Exception& raised) {
        return ErrorOf(raised);
    } catch (const std::exception& raised) {
        return ErrorOf(raised);
    } catch (...) {
        return Call(ErrorClass("Error"));
    }
}

py::object ErrorOrNone(const std::exception_ptr& failure) {
    return failure ? ErrorFrom(failure) : py::none();
}

void RaiseUnlessException(const std::exception_ptr& failure) {
    if (failure && !py::isinstance(ErrorFrom(failure), PyExc_Exception)) std::rethrow_exception(failure);
}

void RegisterErrors() {
    py::register_local_exception_translator([](std::exception_ptr failure) {
        if (!failure) return;
        const py::object error = ErrorFrom(failure);
        PyErr_SetObject(py::type::handle_of(error).ptr(), error.ptr());
    });
}

}  // namespace NorvexPython
