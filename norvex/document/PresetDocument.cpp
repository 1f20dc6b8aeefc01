#include "norvex/document/PresetDocument.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/Review/PresetAssembly.h"
#include "norvex/Conf/Review/PresetParameters.h"
#include "norvex/document/Fail.h"
#include "norvex/foundation/Excerpt.h"
#include "norvex/interfaces/Conf/CodecLists.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Document {

namespace {

using Conf::ParameterMap;
using Core::Excerpt;
using Core::Property;
using P = Conf::IPreset;
using V = Conf::IFormatCodecVideo;
using Proc::IResize;

constexpr const char* g_versionKey = "norvex-preset";
constexpr const char* g_aboutKey = "about";
constexpr const char* g_presetKey = "preset";

std::string Join(const std::string& path, const std::string& tag) {
    return path.empty() ? tag : path + Property::SEPARATOR + tag;
}

std::string Quoted(const std::string& text) {
    return "'" + Excerpt(text) + "'";
}

// ------------------------------------------------------------------------------------------------------ the form

/// The members of an object, of which there are no others, and none twice.
void RequireMembers(const Value& object, std::initializer_list<std::string_view> known) {
    std::set<std::string> names;
    for (const auto& [name, value] : object.GetObject()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            Fail(value.line, "there is no member " + Quoted(name));
        }
        if (!names.insert(name).second) Fail(value.line, Quoted(name) + " stands there twice");
    }
}

/// Form 2 tells people about the preset.
void BringUpFrom1(Value& root) {
    RequireMembers(root, {g_versionKey, g_presetKey});
    root[g_aboutKey] = Value(Value::Object());
}

/// What makes a document of each form, from 1, one of the next.
constexpr void (*g_steps[])(Value&) = {BringUpFrom1};
static_assert(std::size(g_steps) == g_presetVersion - 1);

void BringUp(Value& root) {
    const Value* const version = root.Find(g_versionKey);
    if (version == nullptr) Fail(root.line, std::string("this is no preset: it has no '") + g_versionKey + "'");
    const int line = version->line;
    const long long form = version->GetKind() == Value::Kind::Integer ? version->GetInteger() : 0;
    if (form < 1 || form > g_presetVersion) {
        Fail(line,
             "the preset is of another version; this program knows versions up to " + std::to_string(g_presetVersion));
    }
    for (auto step = std::begin(g_steps) + form - 1; step != std::end(g_steps); ++step) (*step)(root);
}

PresetAbout AboutOf(const Value& object) {
    RequireMembers(object, {"name", "description", "purpose"});
    const auto text = [&object](const char* name) {
        const Value* const value = object.Find(name);
        return value != nullptr ? value->GetText() : std::string();
    };
    return {text("name"), text("description"), text("purpose")};
}

Value FormOfAbout(const PresetAbout& about) {
    return {{"name", about.name}, {"description", about.description}, {"purpose", about.purpose}};
}

// ------------------------------------------------------------------------------------------------- the rule book's

bool IsCodecKind(const std::string& kind) {
    return kind == P::KEY_FILTER_VIDEO_CODEC || kind == P::KEY_FILTER_AUDIO_CODEC;
}

/// Whether a filter's section is about the streams whose codec has its section under that name.
bool IsFilterOf(const std::string& codecSection, const std::string& name) {
    const bool isOfVideo = name == Proc::IFilterResize::CLASS_ID || name == Proc::IFilterFrameRate::CLASS_ID;
    const bool isOfAudio = name == Proc::IFilterResample::CLASS_ID || name == Proc::IFilterAudioVolume::CLASS_ID ||
                           name == Proc::IFilterAudioFormatter::CLASS_ID;
    return codecSection == P::KEY_FILTER_VIDEO_CODEC   ? isOfVideo
           : codecSection == P::KEY_FILTER_AUDIO_CODEC ? isOfAudio
                                                       : false;
}

/// Whether any container or codec of the kind has that parameter.
bool IsKnownToAny(const std::string& kind, const std::string& path) {
    if (kind != P::KEY_FORMAT && !IsCodecKind(kind)) return false;
    const auto& helpers = GetAvailableDataHelpers(kind);
    return std::any_of(helpers.begin(), helpers.end(),
                       [&](const auto& row) { return Conf::ParametersOf(kind, row.first).count(path) > 0; });
}

/// "720 x 480", as rules offer sizes behind the frame size mode.
std::optional<std::pair<long long, long long>> ParseSize(std::string_view text) {
    const std::size_t by = text.find(" x ");
    if (by == std::string_view::npos) return std::nullopt;
    const auto number = [](std::string_view part) {
        long long value = 0;
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        return error == std::errc() && end == part.data() + part.size() ? value : 0;
    };
    const std::pair size(number(text.substr(0, by)), number(text.substr(by + 3)));
    if (size.first <= 0 || size.second <= 0) return std::nullopt;
    return size;
}

class Interpreter {
public:
    Interpreter(PresetDocument& document, Foreign foreign) : m_document(document), m_foreign(foreign) {}

    void Run() {
        for (Property& section : m_document.preset) InterpretSection(section);
    }

private:
    [[noreturn]] void Fail(const std::string& path, const std::string& sentence) const {
        Document::Fail(m_document.LineOf(path), sentence);
    }

    void InterpretSection(Property& section) const {
        const std::string& kind = section.GetName();
        RequireSection(section, kind);
        std::string id;
        if (kind == P::KEY_FORMAT) {
            id = RequireId(section, kind, Conf::IFormatFile::TAG_CONTAINER, "container");
            if (GetAvailableDataHelpers(kind).count(id) == 0) {
                Fail(Join(kind, Conf::IFormatFile::TAG_CONTAINER), "there is no container " + Quoted(id));
            }
        } else if (IsCodecKind(kind)) {
            id = RequireId(section, kind, V::TAG_CODEC_ID, "codec");
            if (GetAvailableDataHelpers(kind).count(id) == 0) {
                Fail(Join(kind, V::TAG_CODEC_ID), "there is no codec " + Quoted(id));
            }
        } else if (kind == P::KEY_FILTER_SUBTITLE_CODEC) {
            RequireSubtitleCodec(section, kind);
        }
        InterpretValues(section, kind, id, kind);
        if (kind == P::KEY_FORMAT) InterpretStreams(section);
    }

    void RequireSection(const Property& section, const std::string& path) const {
        if (section.GetType() != PT_NODE) Fail(path, Quoted(path) + " must be a section");
    }

    std::string RequireId(const Property& section, const std::string& path, const std::string& tag,
                          const char* what) const {
        const auto id = section.FindChild(tag);
        if (id == section.end() || id->GetType() != PT_STRING) {
            Fail(path, Quoted(path) + " does not say which " + what + " it is about");
        }
        return id->GetString();
    }

    void RequireSubtitleCodec(const Property& section, const std::string& path) const {
        const auto& codecs = Conf::GetAllSubtitleCodecs();
        const std::string id = RequireId(section, path, V::TAG_CODEC_ID, "codec");
        if (std::find(codecs.begin(), codecs.end(), id) == codecs.end()) {
            Fail(Join(path, V::TAG_CODEC_ID), "there is no codec " + Quoted(id));
        }
    }

    /// `path` is where the section of that kind stands.
    void InterpretValues(Property& section, const std::string& kind, const std::string& id,
                         const std::string& path) const {
        const ParameterMap parameters = Conf::ParametersOf(kind, id);
        if (parameters.empty()) Fail(path, "there is no section " + Quoted(path));
        InterpretNode(section, parameters, kind, std::string(), path);
        if (kind == Proc::IFilterResize::CLASS_ID) InterpretSize(section);
    }

    void InterpretNode(Property& node, const ParameterMap& parameters, const std::string& kind, const std::string& path,
                       const std::string& sectionPath) const {
        for (Property& child : node) {
            const std::string below = Join(path, child.GetName());
            const std::string whole = Join(sectionPath, below);
            if (below == P::KEY_STREAMS && kind == P::KEY_FORMAT) continue;
            const auto parameter = parameters.find(below);
            const bool isOneName = child.GetName().find(Property::SEPARATOR) == std::string::npos;
            if (parameter == parameters.end() || !isOneName) {
                if (m_foreign == Foreign::Left && isOneName && IsKnownToAny(kind, below)) continue;
                const std::string place = Conf::DocumentPathOf(whole);
                Fail(whole, "there is no parameter " + Quoted(whole) +
                                (place != whole ? "; it is " + Quoted(place) : std::string()));
            }
            const bool isSection = parameter->second.type == PT_NODE;
            if (isSection != (child.GetType() == PT_NODE)) {
                Fail(whole, Quoted(whole) + " must be " + (isSection ? "a section" : "a value"));
            }
            if (isSection) {
                InterpretNode(child, parameters, kind, below, sectionPath);
            } else {
                Conf::Interpret(child, parameter->second);
            }
        }
    }

    static void InterpretSize(Property& section) {
        const auto resize = section.FindChild(IResize::CLASS_ID);
        if (resize == section.end()) return;
        const auto mode = resize->FindChild(IResize::FRAME_SIZE_MODE);
        if (mode == resize->end() || mode->GetType() != PT_STRING) return;
        const auto size = ParseSize(mode->GetString());
        if (!size) return;
        *mode = IResize::FRAME_SIZE_CUSTOM;
        resize->SetChildT(V::TAG_WIDTH, size->first);
        resize->SetChildT(V::TAG_HEIGHT, size->second);
    }

    void InterpretStreams(Property& format) const {
        const auto streams = format.FindChild(P::KEY_STREAMS);
        if (streams == format.end()) return;
        const std::string path = Join(P::KEY_FORMAT, P::KEY_STREAMS);
        RequireSection(*streams, path);
        for (Property& stream : *streams) InterpretStream(stream, Join(path, stream.GetName()));
    }

    void InterpretStream(Property& stream, const std::string& path) const {
        RequireSection(stream, path);
        const auto typeId = stream.FindChild(P::KEY_TYPE_ID);
        if (typeId == stream.end() || typeId->GetType() != PT_STRING) Fail(path, Quoted(path) + " has no type");
        const std::string type = typeId->GetString();
        const bool isVideo = type == P::STREAM_TYPE_VIDEO;
        if (!isVideo && type != P::STREAM_TYPE_AUDIO && type != P::STREAM_TYPE_SUBTITLES_TEXT) {
            Fail(Join(path, P::KEY_TYPE_ID), "there is no type of stream " + Quoted(type));
        }
        const std::string& kind = isVideo                        ? P::KEY_FILTER_VIDEO_CODEC
                                  : type == P::STREAM_TYPE_AUDIO ? P::KEY_FILTER_AUDIO_CODEC
                                                                 : P::KEY_FILTER_SUBTITLE_CODEC;
        for (Property& child : stream) {
            const std::string& name = child.GetName();
            const std::string below = Join(path, name);
            if (name == kind) {
                InterpretStreamCodec(child, below);
            } else if (IsFilterOf(kind, name)) {
                RequireSection(child, below);
                InterpretValues(child, name, std::string(), below);
            } else if (name != P::KEY_TYPE_ID && !(isVideo && name == V::TAG_COVER_FLAG)) {
                Fail(below, "there is no parameter " + Quoted(below));
            }
        }
    }

    /// A container may carry codecs for which there is no helper.
    void InterpretStreamCodec(Property& section, const std::string& path) const {
        RequireSection(section, path);
        if (!IsCodecKind(section.GetName())) return RequireSubtitleCodec(section, path);
        const std::string id = RequireId(section, path, V::TAG_CODEC_ID, "codec");
        const bool isKnown =
            GetAvailableDataHelpers(section.GetName()).count(id) > 0 || CodecIDFromTextID(id) != AV_CODEC_ID_NONE;
        if (!isKnown) Fail(Join(path, V::TAG_CODEC_ID), "there is no codec " + Quoted(id));
        InterpretValues(section, section.GetName(), id, path);
    }

    PresetDocument& m_document;
    const Foreign m_foreign;
};

}  // namespace

int PresetDocument::LineOf(std::string path) const {
    for (;;) {
        const auto line = lines.find(path);
        if (line != lines.end()) return line->second;
        if (path.empty()) return 0;
        const std::size_t end = path.rfind(Property::SEPARATOR);
        path.erase(end == std::string::npos ? 0 : end);
    }
}

std::string WritePreset(const Property& preset, const PresetAbout& about) {
    Value document = {{g_versionKey, g_presetVersion}};
    if (!(about == PresetAbout())) document[g_aboutKey] = FormOfAbout(about);
    document[g_presetKey] = FormOf(preset, g_deepestDocument - 1);
    return WriteJson(document) + '\n';
}

PresetDocument ParsePreset(std::string_view text) {
    if (text.size() > g_largestPreset) Fail(1, "the document is larger than 1 MB, which no preset is");
    Value root = ReadJson(text);
    BringUp(root);
    RequireMembers(root, {g_versionKey, g_aboutKey, g_presetKey});
    const Value* const preset = root.Find(g_presetKey);
    if (preset == nullptr) Fail(root.line, std::string("there is no '") + g_presetKey + "'");
    PresetDocument document;
    if (const Value* const about = root.Find(g_aboutKey)) document.about = AboutOf(*about);
    document.preset = TreeOf(g_presetKey, *preset, &document.lines);
    if (document.preset.GetType() != PT_NODE) Fail(preset->line, "the preset holds no sections");
    return document;
}

void InterpretPreset(PresetDocument& document, Foreign foreign) {
    Interpreter(document, foreign).Run();
}

PresetDocument ReadPreset(std::string_view text, Foreign foreign) {
    PresetDocument document = ParsePreset(text);
    InterpretPreset(document, foreign);
    return document;
}

}  // namespace Norvex::Document
