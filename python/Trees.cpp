#include "Trees.h"

#include <limits>
#include <string_view>
#include <vector>

#include "Classes.h"
#include "Gil.h"
#include "norvex/document/DocumentException.h"
#include "norvex/document/TreeForm.h"
#include "norvex/foundation/Excerpt.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using Core::Property;

constexpr char g_mark = '$';
const char* const g_children = "$children";

// ---------------------------------------------------------------------------------------------------- to objects

py::object Text(const std::string& text) {
    const auto size = static_cast<Py_ssize_t>(text.size());
    if (PyObject* const decoded = PyUnicode_DecodeUTF8(text.data(), size, nullptr)) return Owned(decoded);
    if (PyErr_ExceptionMatches(PyExc_UnicodeDecodeError) == 0) throw py::error_already_set();
    PyErr_Clear();
    return py::bytes(text);
}

py::object ObjectFrom(const Property& tree, int levels);

py::object Pairs(const Property& node, int levels) {
    py::list pairs;
    for (const Property& child : node) {
        py::list pair;
        pair.append(Text(child.GetName()));
        pair.append(ObjectFrom(child, levels - 2));
        pairs.append(std::move(pair));
    }
    py::dict section;
    section[g_children] = std::move(pairs);
    return std::move(section);
}

py::object Section(const Property& node, int levels) {
    if (levels < 1) NORVEX_THROW(Document::DocumentException(0, "the tree is too deep to be read in Python"));
    py::dict section;
    for (const Property& child : node) {
        const py::object name = Text(child.GetName());
        if (child.GetName()[0] == g_mark || !PyUnicode_Check(name.ptr())) return Pairs(node, levels);
        const py::object value = ObjectFrom(child, levels - 1);
        if (PyDict_SetItem(section.ptr(), name.ptr(), value.ptr()) != 0) throw py::error_already_set();
    }
    return section.size() == node.Count() ? std::move(section) : Pairs(node, levels);
}

py::object ObjectFrom(const Property& tree, int levels) {
    switch (tree.GetType()) {
        case PT_BOOL:
            return py::bool_(tree.GetBool());
        case PT_INT64:
            return Owned(PyLong_FromLongLong(tree.GetInt64()));
        case PT_DOUBLE:
            return Owned(PyFloat_FromDouble(tree.GetDouble()));
        case PT_STRING:
            return Text(tree.GetString());
        case PT_RATIO: {
            const Core::Ratio ratio = tree.GetRatio();
            return Call(FractionClass(), ratio.numerator(), ratio.denominator());
        }
        case PT_NODE:
            return Section(tree, levels);
        case PT_NONE:
            break;
    }
    return py::none();
}

// -------------------------------------------------------------------------------------------------- from objects

/// The way from the root to where the reader is, in names that the stack holds.
struct Step {
    const Step* before;
    std::string_view name;
};

std::string PathOf(const Step* step) {
    std::string path;
    for (; step != nullptr && step->before != nullptr; step = step->before) {
        path = path.empty() ? std::string(step->name) : std::string(step->name) + Property::SEPARATOR + path;
    }
    return path;
}

[[noreturn]] void Raise(const char* name, const Step& step, const std::string& what) {
    const std::string path = PathOf(&step);
    const std::string message = (path.empty() ? "The tree" : '\'' + Core::Excerpt(path) + '\'') + ' ' + what;
    const py::object error = Call(ErrorClass(name), message);
    error.attr("path") = TextFrom(path);
    PyErr_SetObject(py::type::handle_of(error).ptr(), error.ptr());
    throw py::error_already_set();
}

std::string ClassName(py::handle object) {
    return Py_TYPE(object.ptr())->tp_name;
}

/// What the bytes of a name or text are, for as long as the object lives.
std::string_view BytesOf(py::handle object, const Step& step) {
    if (PyBytes_Check(object.ptr())) {
        return {PyBytes_AS_STRING(object.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(object.ptr()))};
    }
    if (!PyUnicode_Check(object.ptr())) Raise("TreeTypeError", step, "has a name of type " + ClassName(object));
    Py_ssize_t size = 0;
    const char* const text = PyUnicode_AsUTF8AndSize(object.ptr(), &size);
    if (text == nullptr) {
        PyErr_Clear();
        Raise("TreeValueError", step, "has a text with characters that UTF-8 has no bytes for");
    }
    return {text, static_cast<std::size_t>(size)};
}

long long IntegerFrom(py::handle object, const Step& step) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(object.ptr(), &overflow);
    if (overflow != 0) Raise("TreeOverflowError", step, "is an integer beyond 64 bits");
    if (number == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    return number;
}

/// Reads what is no dict, and nothing where it is one.
std::optional<Property> LeafFrom(py::handle object, const std::string& name, const Step& step) {
    PyObject* const it = object.ptr();
    if (PyUnicode_Check(it) || PyBytes_Check(it)) return Property(name, BytesOf(object, step));
    if (PyBool_Check(it)) return Property(name, it == Py_True);
    if (PyLong_Check(it)) return Property(name, IntegerFrom(object, step));
    if (PyDict_Check(it)) return std::nullopt;
    if (PyFloat_Check(it)) return Property(name, PyFloat_AS_DOUBLE(it));
    if (object.is_none()) {
        Property node(name);
        node.CopyDataFrom(Property());
        return node;
    }
    if (py::isinstance(object, FractionClass())) {
        const long long numerator = IntegerFrom(Attribute(object, "numerator"), step);
        return Property(name, Core::Ratio(numerator, IntegerFrom(Attribute(object, "denominator"), step)));
    }
    if (PyIndex_Check(it))
        return Property(name, IntegerFrom(Owned(Surviving([it] { return PyNumber_Index(it); })), step));
    Raise("TreeTypeError", step, "is of type " + ClassName(object) + ", which no tree holds");
}

void Fill(Property& node, py::handle dict, const Step& step, int levels);

void Add(Property& node, const std::string& name, py::handle object, const Step& step, int levels) {
    if (const auto leaf = LeafFrom(object, name, step)) {
        node.AddNamed(*leaf);
    } else {
        Fill(node.AddNamed(Property(name)), object, step, levels);
    }
}

void FillFromPairs(Property& node, py::handle pairs, const Step& step, int levels) {
    const auto isList = [](py::handle object) { return PyList_Check(object.ptr()) || PyTuple_Check(object.ptr()); };
    if (!isList(pairs)) Raise("TreeTypeError", step, "has $children that are no list");
    // A copy: reading a value may run code that changes the list.
    for (const py::handle pair : py::tuple(py::reinterpret_borrow<py::object>(pairs))) {
        if (!isList(pair) || PySequence_Fast_GET_SIZE(pair.ptr()) != 2) {
            Raise("TreeTypeError", step, "has $children that are no pairs of a name and a value");
        }
        const py::tuple both(py::reinterpret_borrow<py::object>(pair));
        const std::string name(BytesOf(both[0], step));
        Add(node, name, both[1], {&step, name}, levels - 2);
    }
}

/// The special members of documents that Python has forms of its own for.
void FillFromSpecial(Property& node, const std::string& kind, py::handle object, const Step& step) {
    if (const auto value = LeafFrom(object, std::string(), step)) {
        const bool isText = value->GetType() == PT_STRING;
        Document::Value form;
        if (isText) form[kind] = value->GetString();
        if (value->GetType() == PT_BOOL) form[kind] = value->GetBool();
        try {
            node.CopyDataFrom(Document::TreeOf(node.GetName(), form));
            return;
        } catch (const Document::DocumentException&) {
            // It is told below, with the path.
        }
    }
    Raise("TreeValueError", step, "has a special member " + Core::Excerpt(kind) + " that stands for nothing");
}

void Fill(Property& node, py::handle dict, const Step& step, int levels) {
    if (levels < 1) Raise("TreeValueError", step, "is too deep");
    const Py_ssize_t size = PyDict_GET_SIZE(dict.ptr());
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    for (Py_ssize_t place = 0; PyDict_Next(dict.ptr(), &place, &key, &item) != 0;) {
        // Owned: reading a value may run code that changes the dict.
        const auto name = py::reinterpret_borrow<py::object>(key);
        const auto value = py::reinterpret_borrow<py::object>(item);
        if (!PyUnicode_Check(key)) Raise("TreeTypeError", step, "has a name of type " + ClassName(name));
        const std::string text(BytesOf(name, step));
        if (!text.empty() && text.front() == g_mark) {
            if (size != 1) Raise("TreeValueError", step, "has " + Core::Excerpt(text) + " beside other members");
            if (text == g_children) return FillFromPairs(node, value, step, levels - 1);
            return FillFromSpecial(node, text, value, step);
        }
        Add(node, text, value, {&step, text}, levels - 1);
        if (PyDict_GET_SIZE(dict.ptr()) != size) Raise("TreeValueError", step, "changed while it was read");
    }
}

}  // namespace

py::object ObjectFrom(const Property& tree) {
    return ObjectFrom(tree, Document::g_deepestDocument);
}

py::object ObjectFrom(const std::optional<Property>& tree) {
    return tree ? ObjectFrom(*tree) : py::none();
}

Property TreeFrom(py::handle object, const std::string& name) {
    const Step root{nullptr, {}};
    if (auto leaf = LeafFrom(object, name, root)) return std::move(*leaf);
    Property node(name);
    Fill(node, object, root, Document::g_deepestDocument);
    return node;
}

Property SectionFrom(py::handle object, const std::string& name) {
    if (!PyDict_Check(object.ptr())) {
        Raise("TreeTypeError", {nullptr, {}}, "is of type " + ClassName(object) + " and no dict");
    }
    return TreeFrom(object, name);
}

}  // namespace NorvexPython
