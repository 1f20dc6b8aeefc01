extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/pixdesc.h>
}

#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

#include "Book.h"
#include "Classes.h"
#include "Gil.h"
#include "Helpers.h"
#include "Trees.h"
#include "norvex/Norvex.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

const char* const g_pixelFormat = "pixel_format";
const char* const g_codecData = "codec_data";

/// What is in the description beside the stream's node: the codec's data, which are no text.
SP<const ICodecData> DataOf(const py::object& stream) {
    PyObject* const data = PyDict_GetItemString(stream.ptr(), g_codecData);
    if (data == nullptr || PyBytes_Check(data) == 0) return nullptr;
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(PyBytes_AS_STRING(data));
    return CodecData::Create({begin, begin + PyBytes_GET_SIZE(data)});
}

std::string TextAt(const Property& tree, const std::string& name) {
    const auto child = tree.FindChild(name);
    return child != tree.end() && child->GetType() == PT_STRING ? child->GetString() : std::string();
}

SP<const IFormatCodec> DescriptionOf(const py::object& stream) {
    Property tree = SectionFrom(stream, std::string());
    switch (avcodec_get_type(CodecIDFromTextID(TextAt(tree, IFormatCodec::TAG_CODEC_ID)))) {
        case AVMEDIA_TYPE_VIDEO: {
            const int pixelFormat = av_get_pix_fmt(TextAt(tree, g_pixelFormat).c_str());
            return FormatCodecVideo::Create(std::move(tree), pixelFormat, DataOf(stream));
        }
        case AVMEDIA_TYPE_AUDIO:
            return FormatCodecAudio::Create(std::move(tree), DataOf(stream));
        default:
            return FormatCodecSubtitle::Create(std::move(tree));
    }
}

py::object LimitsFrom(const StreamLimits& limits) {
    return Call(RecordClass("Limits"), limits.video, limits.audio, limits.subtitle, limits.other);
}

py::object FitFrom(const FormatFit& fit) {
    const py::object changedSetting = RecordClass("ChangedSetting");
    const py::object streamFit = RecordClass("StreamFit");
    py::list streams;
    for (const StreamFit& stream : fit.streams) {
        py::list changes;
        for (const ChangedSetting& change : stream.changes) {
            changes.append(
                Call(changedSetting, TextFrom(change.path), ObjectFrom(change.before), ObjectFrom(change.after)));
        }
        streams.append(Call(streamFit, NameOf(stream.answer), NameOf(stream.kind), TextFrom(stream.codecId),
                            stream.isEncoded, TextFrom(stream.encodedTo), changes, stream.isOnePicture,
                            TextFrom(stream.reason)));
    }
    return Call(RecordClass("FormatFit"), TextFrom(fit.formatId), LimitsFrom(fit.limits), streams, fit.CountLost(),
                fit.CountEncoded(), fit.CountChanges());
}

py::list Fits(const py::iterable& streams, const std::optional<std::string>& format) {
    RequireBook();
    std::vector<SP<const IFormatCodec>> descriptions;
    for (const py::handle stream : Listed(streams)) {
        descriptions.push_back(DescriptionOf(py::reinterpret_borrow<py::object>(stream)));
    }
    std::vector<FormatFit> fits;
    WithoutGil([&] {
        if (format) {
            fits.push_back(FitInto(*format, descriptions));
        } else {
            fits = FitIntoAll(descriptions);
        }
    });
    py::list list;
    for (const FormatFit& fit : fits) list.append(FitFrom(fit));
    return list;
}

py::list Holding(const std::vector<std::string>& video, const std::vector<std::string>& audio,
                 const std::vector<std::string>& subtitles) {
    RequireBook();
    std::vector<HoldingFormat> formats;
    WithoutGil([&] { formats = ContainersFor({video, audio, subtitles}); });
    const py::object record = RecordClass("HoldingFormat");
    py::list list;
    for (const HoldingFormat& format : formats) {
        list.append(Call(record, TextFrom(format.formatId), LimitsFrom(format.limits), format.isEncodable));
    }
    return list;
}

}  // namespace

void BindFitting(py::module_& module) {
    module.def("fits", &Fits, py::arg("streams"), py::kw_only(), py::arg("format") = py::none(),
               "What becomes of the streams of a file in a container, or in each of them, the best first. A stream is "
               "flat, as for Helper.correct; a `pixel_format` is FFmpeg's name, `codec_data` the bytes of its "
               "extradata. Never raises for what a stream holds, only for what is no tree.");
    module.def("containers_for", &Holding, py::kw_only(), py::arg("video") = py::tuple(),
               py::arg("audio") = py::tuple(), py::arg("subtitles") = py::tuple(),
               "The containers that hold streams of all these codecs at once, an id for each stream; those that this "
               "build can encode first.");
}

}  // namespace NorvexPython
