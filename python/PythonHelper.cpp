#include "PythonHelper.h"

#include <set>
#include <utility>

#include "Helpers.h"
#include "Records.h"
#include "Trees.h"
#include "norvex/Norvex.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

/// All that live, guarded by the interpreter's lock. Never destroyed.
std::set<PyObject**>& AllHeld() {
    static auto* const all = new std::set<PyObject**>;
    return *all;
}

[[noreturn]] void RefuseWithoutInterpreter() {
    HelperException exception;
    exception << TagDescription("The interpreter of a helper that is written in Python has ended.");
    NORVEX_THROW(AddStack(exception));
}

// --------------------------------------------------------------------------------------- what helpers stand on

class AudioBase : public AudioCodecHelper {
public:
    AudioBase(const std::string& /*kind*/, const std::string& id) : AudioCodecHelper(id) {}
};

class VideoBase : public VideoCodecHelper {
public:
    VideoBase(const std::string& /*kind*/, const std::string& id) : VideoCodecHelper(id) {}
};

/// A container that holds nothing, and corrects by its rules.
class FormatBase : public RefCounted<DataHelperFormatBase> {
public:
    FormatBase(const std::string& kind, const std::string& id) : m_kind(kind), m_id(id) {}
    Property GetDefaults() const override {
        Property defaults(m_kind);
        defaults.SetChildT(IFormatFile::TAG_CONTAINER, m_id);
        return defaults;
    }
    void GetRequiredObjects(ObjectList& /*objects*/) const override {}
    void GetValidationRules(RuleList& /*rules*/) const override {}
    void GetConstraints(ConstraintMap& /*constraints*/) const override {}

private:
    const std::string m_kind;
    const std::string m_id;
};

class FilterBase : public PlainHelper {
public:
    FilterBase(const std::string& kind, const std::string& /*id*/) : m_kind(kind) {}
    Property GetDefaults() const override { return Property(m_kind); }

private:
    const std::string m_kind;
};

// -------------------------------------------------------------------------------------------------- the helpers

/// Asks the object for what it has a method for, and the base for the rest.
template <class Base>
class Written final : public Base {
public:
    Written(const std::string& kind, const std::string& id, py::object object)
        : Base(kind, id), m_kind(kind), m_object(std::move(object)) {}

    Property GetDefaults() const override {
        Property defaults;
        if (!Ask("defaults", [&](const py::object& method) { defaults = SectionFrom(Call(method), m_kind); })) {
            return Base::GetDefaults();
        }
        return defaults;
    }
    void GetRequiredObjects(ObjectList& objects) const override {
        const auto add = [&](const py::object& method) {
            for (const py::handle pair : Listed(Call(method))) {
                objects.push_back(pair.cast<std::pair<std::string, std::string>>());
            }
        };
        if (!Ask("requires", add)) Base::GetRequiredObjects(objects);
    }
    void GetValidationRules(RuleList& rules) const override {
        const auto add = [&](const py::object& method) {
            for (const py::handle rule : Listed(Call(method))) {
                rules.emplace_back(Property::SEPARATOR,
                                   PairValidationRule::Create(Attribute(rule, "condition_path").cast<std::string>(),
                                                              ConstraintOf(Attribute(rule, "condition")),
                                                              Attribute(rule, "path").cast<std::string>(),
                                                              ConstraintOf(Attribute(rule, "constraint"))));
            }
        };
        if (!Ask("rules", add)) Base::GetValidationRules(rules);
    }
    void GetConstraints(ConstraintMap& constraints) const override {
        const auto add = [&](const py::object& method) {
            const py::object allowed = Call(method);
            if (!py::isinstance<py::dict>(allowed)) throw py::type_error("allowed() gives no dict of constraints");
            for (const py::handle path : Listed(allowed)) {
                constraints[path.cast<std::string>()] = ConstraintOf(py::object(allowed[path]));
            }
        };
        if (!Ask("allowed", add)) Base::GetConstraints(constraints);
    }
    void ApplyPresetSettings(const Property& preset, Property& stream) const override {
        const auto apply = [&](const py::object& method) {
            stream = SectionFrom(Call(method, ObjectFrom(preset), ObjectFrom(stream)), stream.GetName());
        };
        if (!Ask("apply", apply)) Base::ApplyPresetSettings(preset, stream);
    }
    void CorrectFormatCodec(Property& tree) const override {
        const auto correct = [&](const py::object& method) {
            tree = SectionFrom(Call(method, ObjectFrom(tree)), tree.GetName());
        };
        if (!Ask("correct", correct)) Base::CorrectFormatCodec(tree);
    }

private:
    /// False where the object has no such method.
    template <class Use>
    bool Ask(const char* method, const Use& use) const {
        return m_object.With([&](const py::object& object) {
            PyObject* const found = Surviving([&] { return PyObject_GetAttrString(object.ptr(), method); });
            if (found == nullptr && PyErr_ExceptionMatches(PyExc_AttributeError) != 0) {
                PyErr_Clear();
                return false;
            }
            use(Owned(found));
            return true;
        });
    }

    const std::string m_kind;
    const Held m_object;
};

template <class Base>
class Bare final : public Base {
public:
    using Base::Base;
};

template <class Base>
SP<const IDataHelper> Make(const std::string& kind, const std::string& id, const py::object& make) {
    const SP<const IDataHelper> base(new Bare<Base>(kind, id));
    py::object object = Call(make, Helper{{kind, id, base}});
    if (object.is_none()) return nullptr;
    if (py::isinstance<Helper>(object)) return object.cast<const Helper&>().named.helper;
    return SP<const IDataHelper>(new Written<Base>(kind, id, std::move(object)));
}

}  // namespace

Held::Held(py::object object) : m_object(object.release().ptr()) {
    AllHeld().insert(&m_object);
}

Held::~Held() {
    // What the interpreter did not let go of at its end is lost with it.
    if (!IsAlive()) return;
    const WithGil gil;
    AllHeld().erase(&m_object);
    Py_CLEAR(m_object);
}

void Held::DropAll() {
    // What goes may make or drop others.
    while (!AllHeld().empty()) {
        PyObject** const held = *AllHeld().begin();
        AllHeld().erase(AllHeld().begin());
        Py_CLEAR(*held);
    }
}

void Held::RequireInterpreter() {
    if (Py_IsInitialized() == 0) RefuseWithoutInterpreter();
}

py::object Held::Get() const {
    if (m_object == nullptr) RefuseWithoutInterpreter();
    return py::reinterpret_borrow<py::object>(m_object);
}

SP<const IDataHelper> MakeHelper(const std::string& kind, const std::string& id, const Held& make) {
    return make.With([&](const py::object& object) {
        if (kind == IPreset::KEY_FORMAT) return Make<FormatBase>(kind, id, object);
        if (kind == IPreset::KEY_FILTER_AUDIO_CODEC) return Make<AudioBase>(kind, id, object);
        if (kind == IPreset::KEY_FILTER_VIDEO_CODEC) return Make<VideoBase>(kind, id, object);
        return Make<FilterBase>(kind, id, object);
    });
}

}  // namespace NorvexPython
