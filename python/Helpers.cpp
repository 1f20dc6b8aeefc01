#include "Helpers.h"

#include <pybind11/stl.h>

#include <utility>

#include "Book.h"
#include "Classes.h"
#include "Records.h"
#include "Trees.h"
#include "norvex/Norvex.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;

std::vector<std::string> IdsOf(const std::string& kind) {
    RequireBook();
    std::vector<std::string> ids;
    for (const auto& row : GetAvailableDataHelpers(kind)) ids.push_back(row.first);
    return ids;
}

Helper Find(const std::string& kind, const std::string& id, bool automatic) {
    RequireBook();
    return {{kind, id, automatic ? CreateDataHelperAuto(kind, id) : CreateDataHelper(kind, id)}};
}

py::object CorrectByHelper(const Helper& helper, const py::object& stream) {
    Property tree = SectionFrom(stream, StreamName(helper.named.kind, stream));
    helper.named.helper->CorrectFormatCodec(tree);
    return ObjectFrom(tree);
}

py::object Apply(const Helper& helper, const py::object& preset, const py::object& stream) {
    const Property section = SectionFrom(preset, helper.named.kind);
    Property tree = SectionFrom(stream, StreamName(helper.named.kind, stream));
    helper.named.helper->ApplyPresetSettings(section, tree);
    return ObjectFrom(tree);
}

std::string Describe(const Helper& helper) {
    return "<norvex.Helper: " + helper.named.kind + (helper.named.id.empty() ? "" : ' ' + helper.named.id) + '>';
}

}  // namespace

const std::string& StreamName(const std::string& kind, py::handle stream) {
    if (kind == IPreset::KEY_FILTER_VIDEO_CODEC || kind == V::TAG_FORMAT_CODEC_VIDEO) return V::TAG_FORMAT_CODEC_VIDEO;
    if (kind == IPreset::KEY_FILTER_AUDIO_CODEC || kind == A::TAG_FORMAT_CODEC_AUDIO) return A::TAG_FORMAT_CODEC_AUDIO;
    // To a container or filter a stream says what it is by its codec.
    if (PyDict_Check(stream.ptr()) != 0) {
        PyObject* const id = PyDict_GetItemString(stream.ptr(), IFormatCodec::TAG_CODEC_ID.c_str());
        if (id != nullptr && PyUnicode_Check(id) != 0) {
            const auto name = py::reinterpret_borrow<py::object>(id).cast<std::string>();
            RequireBook();
            if (GetAvailableDataHelpers(IPreset::KEY_FILTER_VIDEO_CODEC).count(name) > 0) {
                return V::TAG_FORMAT_CODEC_VIDEO;
            }
        }
    }
    return A::TAG_FORMAT_CODEC_AUDIO;
}

void BindHelpers(py::module_& module) {
    py::class_<Helper>(module, "Helper", py::is_final(),
                       "The rule book of one container, codec or filter. It never changes; what it gives is new.")
        .def_property_readonly("kind", [](const Helper& it) { return TextFrom(it.named.kind); })
        .def_property_readonly("id", [](const Helper& it) { return TextFrom(it.named.id); })
        .def(
            "defaults", [](const Helper& it) { return ObjectFrom(it.named.helper->GetDefaults()); },
            "The default settings: the section of a preset.")
        .def(
            "allowed",
            [](const Helper& it) {
                ConstraintMap constraints;
                it.named.helper->GetConstraints(constraints);
                return AllowedFrom(constraints);
            },
            "Constraints by the path of the parameter in the section; one that begins with a filter's class id is "
            "relative to the preset.")
        .def(
            "rules",
            [](const Helper& it) {
                RuleList rules;
                it.named.helper->GetValidationRules(rules);
                return RulesFrom(rules);
            },
            "The rules between parameters, the encoder's first.")
        .def(
            "requires",
            [](const Helper& it) {
                ObjectList objects;
                it.named.helper->GetRequiredObjects(objects);
                return RequiredFrom(objects);
            },
            "The filters that a preset must hold, as pairs of class id and implementation.")
        .def("apply", &Apply, py::arg("preset"), py::arg("stream"),
             "The stream with what the section `preset` says. Raises HelperError for another codec's section, and "
             "PropertyError for what is missing.")
        .def("correct", &CorrectByHelper, py::arg("stream"),
             "The stream with legal settings. A stream is flat: codec_id, bitrate (bits per second), sample_rate (Hz), "
             "width and height (pixels), frame_rate and their like. Raises PropertyError for what is missing.")
        .def("__repr__", [](const Helper& it) { return TextFrom(Describe(it)); });

    module.def(
        "formats", [] { return IdsOf(IPreset::KEY_FORMAT); }, "The ids of all containers.");
    module.def(
        "video_codecs", [] { return IdsOf(IPreset::KEY_FILTER_VIDEO_CODEC); }, "The ids of all video codecs.");
    module.def(
        "audio_codecs", [] { return IdsOf(IPreset::KEY_FILTER_AUDIO_CODEC); }, "The ids of all audio codecs.");
    module.def("filters", &FilterIds, "The kinds of all filters.");
    module.def("helper", &Find, py::arg("kind"), py::arg("id") = "", py::kw_only(), py::arg("automatic") = false,
               "The helper of a kind (format, video_codec, audio_codec, or a filter's, which has no id). With "
               "`automatic`, values that leave a choice to the system count as legal. Raises HelperError.");
    module.def("register", &RegisterHelper, py::arg("kind"), py::arg("id"), py::arg("make"),
               "Adds a helper that is written in Python, or puts it in the place of the library's. `make` is called "
               "with its base, and returns an object with some of the methods of Helper; the base stands for those "
               "that it lacks. Raises RegistrationError, as when a table of helpers stands.");
    module.def("register_modern", &RegisterModern,
               "Adds the codecs of today and their containers to the classic book. Raises RegistrationError when a "
               "table of helpers stands.");
    module.def("use_census", &SetCensus, py::arg("list_encoders"),
               "Takes the census from a callable that gives the names of a codec's encoders, none where there is none. "
               "Raises RegistrationError when it has been taken.");
}

}  // namespace NorvexPython
