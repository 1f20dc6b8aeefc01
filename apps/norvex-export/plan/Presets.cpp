#include "Presets.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>

#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

/// What a preset has for one kind of stream.
struct KindRow {
    StreamKind kind;
    const std::string* typeId;
    const std::string* codecSection;
    std::vector<const std::string*> filterSections;
};

const std::vector<KindRow>& Kinds() {
    static const std::vector<KindRow> rows = {
        {StreamKind::Video,
         &P::STREAM_TYPE_VIDEO,
         &P::KEY_FILTER_VIDEO_CODEC,
         {&Proc::IFilterResize::CLASS_ID, &Proc::IFilterFrameRate::CLASS_ID}},
        {StreamKind::Audio, &P::STREAM_TYPE_AUDIO, &P::KEY_FILTER_AUDIO_CODEC, {&Proc::IFilterResample::CLASS_ID}},
        {StreamKind::Subtitle, &P::STREAM_TYPE_SUBTITLES_TEXT, &P::KEY_FILTER_SUBTITLE_CODEC, {}},
    };
    return rows;
}

const KindRow* RowOfSection(const std::string& section) {
    for (const KindRow& row : Kinds()) {
        if (*row.codecSection == section) return &row;
        for (const std::string* const filter : row.filterSections) {
            if (*filter == section) return &row;
        }
    }
    return nullptr;
}

// ------------------------------------------------------------------------------------------------------ reading

class PresetReader {
public:
    PresetReader(const Document::PresetDocument& document, const Request& request)
        : m_document(document), m_request(request) {}

    std::vector<Choice> Read() {
        for (const Property& section : m_document.preset) {
            const std::string& name = section.GetName();
            if (name == P::KEY_FORMAT) continue;
            if (RowOfSection(name) == nullptr) {
                throw RequestError(PlaceOf(name) + ": this program has no use for '" + name + "'");
            }
            Collect(section, name, name, CodecIdIn(section), std::nullopt);
        }
        // What was set for one container means nothing to another.
        const std::string containerPath = Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER});
        const std::string chosen = m_request.TextAt(containerPath);
        const Property* const format = Find(m_document.preset, P::KEY_FORMAT);
        if (format == nullptr || (!chosen.empty() && (*format)[IFormatFile::TAG_CONTAINER].GetString() != chosen)) {
            return std::move(m_choices);
        }
        for (const Property& value : *format) {
            if (value.GetType() != PT_NODE) {
                Add(Path({P::KEY_FORMAT, value.GetName()}), Path({P::KEY_FORMAT, value.GetName()}), value, {}, {});
            }
        }
        if (const Property* const streams = Find(*format, P::KEY_STREAMS)) ReadStreams(*format, *streams);
        return std::move(m_choices);
    }

private:
    std::string PlaceOf(const std::string& path) const { return "line " + std::to_string(m_document.LineOf(path)); }

    static const Property* Find(const Property& node, const std::string& name) {
        const auto child = node.FindChild(name);
        return child != node.end() ? &*child : nullptr;
    }

    static std::string CodecIdIn(const Property& section) {
        const Property* const id = Find(section, C::TAG_CODEC_ID);
        return id != nullptr && id->GetType() == PT_STRING ? id->GetString() : std::string();
    }

    void ReadStreams(const Property& format, const Property& streams) {
        // The list as the container's helper gives it says nothing of a film.
        const Property defaults =
            CreateDataHelper(P::KEY_FORMAT, format[IFormatFile::TAG_CONTAINER].GetString())->GetDefaults();
        if (const Property* const own = Find(defaults, P::KEY_STREAMS); own != nullptr && *own == streams) return;
        for (const Property& stream : streams) {
            const std::string path = Path({P::KEY_FORMAT, P::KEY_STREAMS, stream.GetName()});
            int index = -1;
            const std::string& name = stream.GetName();
            const auto parsed = std::from_chars(name.data(), name.data() + name.size(), index);
            if (parsed.ec != std::errc() || parsed.ptr != name.data() + name.size() || index < 0) {
                throw RequestError(PlaceOf(path) + ": '" + path + "' is no stream by its number");
            }
            for (const Property& section : stream) ReadSection(section, path, index);
        }
    }

    void ReadSection(const Property& section, const std::string& streamPath, int index) {
        const std::string& name = section.GetName();
        if (section.GetType() != PT_NODE) return;  // its sections say the same
        std::string codecId = CodecIdIn(section);
        const Property* const shared = Find(m_document.preset, name);
        if (codecId.empty() && shared != nullptr) codecId = CodecIdIn(*shared);
        Collect(section, name, Path({streamPath, name}), codecId, index);
    }

    /// `path` is where the values of the node belong in a preset, `place` where they stand in this one.
    void Collect(const Property& node, const std::string& path, const std::string& place, const std::string& codecId,
                 std::optional<int> stream) {
        for (const Property& child : node) {
            const std::string below = Path({path, child.GetName()});
            const std::string belowPlace = Path({place, child.GetName()});
            if (child.GetType() == PT_NODE) {
                Collect(child, below, belowPlace, codecId, stream);
            } else {
                Add(below, belowPlace, child, codecId, stream);
            }
        }
    }

    void Add(const std::string& path, const std::string& place, const Property& value, const std::string& codecId,
             std::optional<int> stream) {
        m_choices.push_back({path, value, "preset, " + PlaceOf(place), false, stream, codecId, true});
    }

    const Document::PresetDocument& m_document;
    const Request& m_request;
    std::vector<Choice> m_choices;
};

// ------------------------------------------------------------------------------------------------------ writing

/// Puts what `part` has, and `whole` has not or has otherwise, into `rest`.
void Subtract(const Property& part, const Property* whole, Property& rest) {
    for (const Property& value : part) {
        const Property* same = nullptr;
        if (whole != nullptr && whole->ChildExists(value.GetName())) same = &(*whole)[value.GetName()];
        if (value.GetType() != PT_NODE) {
            if (same == nullptr || !(*same == value)) rest.AddNamed(value);
            continue;
        }
        Property below(value.GetName());
        Subtract(value, same, below);
        if (below.Count() > 0) rest.AddNamed(below);
    }
}

/// What all of the sections have alike.
Property Shared(const std::vector<const Property*>& sections) {
    Property shared = *sections.front();
    for (const Property* const section : sections) {
        Property other(shared.GetName());
        Property common(shared.GetName());
        Subtract(shared, section, other);
        Subtract(shared, &other, common);
        shared = common;
    }
    return shared;
}

const Property* FindSection(const StreamPlan& stream, const std::string& name) {
    const auto section = std::find_if(stream.sections.begin(), stream.sections.end(),
                                      [&name](const Property& s) { return s.GetName() == name; });
    return section != stream.sections.end() ? &*section : nullptr;
}

/// Adds a section for all of the streams, and to `own` what each has for itself.
void AddSection(const std::string& name, const std::vector<const StreamPlan*>& streams, Property& preset,
                std::vector<Property>& own) {
    const Property* const first = FindSection(*streams.front(), name);
    if (first == nullptr) return;
    preset.SetChild(name, *first);
    const bool hasCodec = first->ChildExists(C::TAG_CODEC_ID);
    const auto isOfFirst = [&](const Property& section) {
        return !hasCodec || section[C::TAG_CODEC_ID] == (*first)[C::TAG_CODEC_ID];
    };
    // The section of a stream with another codec shares nothing: what is set for one means nothing to the other.
    std::vector<const Property*> alike;
    for (const StreamPlan* const stream : streams) {
        const Property& section = *FindSection(*stream, name);
        if (isOfFirst(section)) alike.push_back(&section);
    }
    const Property shared = Shared(alike);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const Property& section = *FindSection(*streams[i], name);
        Property rest(name);
        Subtract(section, isOfFirst(section) ? &shared : nullptr, rest);
        if (rest.Count() == 0) continue;
        // A codec's section says which codec it is about.
        if (hasCodec) rest.SetChild(C::TAG_CODEC_ID, section[C::TAG_CODEC_ID]);
        own[i].AddNamed(rest);
    }
}

}  // namespace

std::vector<Property> SectionsOf(const StreamPlan& plan) {
    const Property& stream = plan.settled;
    const bool isVideo = stream.GetName() == V::TAG_FORMAT_CODEC_VIDEO;
    const bool isAudio = stream.GetName() == A::TAG_FORMAT_CODEC_AUDIO;
    Property section(isVideo   ? P::KEY_FILTER_VIDEO_CODEC
                     : isAudio ? P::KEY_FILTER_AUDIO_CODEC
                               : P::KEY_FILTER_SUBTITLE_CODEC);
    const std::string filterTags[] = {V::TAG_WIDTH,  V::TAG_HEIGHT,         V::TAG_ASPECTX,     V::TAG_ASPECTY,
                                      V::TAG_FPS,    V::TAG_COVER_FLAG,     A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT,
                                      A::TAG_LAYOUT, A::TAG_BITS_PER_SAMPLE};
    for (const Property& value : stream) {
        if (std::find(std::begin(filterTags), std::end(filterTags), value.GetName()) == std::end(filterTags)) {
            section.AddNamed(value);
        }
    }
    std::vector<Property> sections = {section};
    if (isVideo) {
        sections.push_back(Proc::IFilterFrameRate::MakeSettings(
            plan.isAtSourceRate ? Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE
                                : stream[V::TAG_FPS].GetRatio()));
    }
    if (isAudio) {
        Proc::SettingsFilterResample settings;
        settings.sampleRate = static_cast<int>(stream[A::TAG_SAMPLE_RATE].GetInt64());
        settings.layout = LayoutRecord::Find(stream[A::TAG_LAYOUT].GetString()).layout;
        settings.sampleFormat = SampleFmtRecord::Find(stream[A::TAG_SAMPLE_FORMAT].GetString()).format;
        sections.push_back(Proc::IFilterResample::Settings2Property(settings));
    }
    return sections;
}

Property PresetOf(const Plan& plan) {
    Property preset(std::string("preset"));
    preset.SetChild(P::KEY_FORMAT).SetChildT(IFormatFile::TAG_CONTAINER, plan.formatId);
    std::vector<std::pair<int, Property>> entries;
    for (const KindRow& row : Kinds()) {
        std::vector<const StreamPlan*> streams;
        for (const StreamPlan& stream : plan.streams) {
            if (!stream.sections.empty() && RowOfSection(stream.sections.front().GetName()) == &row) {
                streams.push_back(&stream);
            }
        }
        if (streams.empty()) continue;
        std::vector<Property> own(streams.size(), Property(*row.typeId));
        AddSection(*row.codecSection, streams, preset, own);
        for (const std::string* const filter : row.filterSections) AddSection(*filter, streams, preset, own);
        for (std::size_t i = 0; i < streams.size(); ++i) {
            if (own[i].Count() == 0) continue;
            Property entry(std::to_string(streams[i]->streamIndex));
            entry.SetChildT(P::KEY_TYPE_ID, *row.typeId);
            for (const Property& section : own[i]) entry.AddNamed(section);
            entries.emplace_back(streams[i]->streamIndex, entry);
        }
    }
    std::sort(entries.begin(), entries.end(), [](const auto& one, const auto& two) { return one.first < two.first; });
    for (const auto& [index, entry] : entries) preset[P::KEY_FORMAT].SetChild(P::KEY_STREAMS).AddNamed(entry);
    return preset;
}

std::optional<StreamKind> KindOfSection(const std::string& section) {
    const KindRow* const row = RowOfSection(section);
    return row != nullptr ? std::optional<StreamKind>(row->kind) : std::nullopt;
}

void ChooseFromPreset(Request& request, const std::string& presetText) {
    try {
        const Document::PresetDocument document = Document::ReadPreset(presetText);
        const std::vector<Choice> choices = PresetReader(document, request).Read();
        request.choices.insert(request.choices.begin(), choices.begin(), choices.end());
    } catch (const Document::DocumentException& error) {
        throw RequestError("'" + request.presetFile + "', " + error.what());
    }
}

}  // namespace NorvexExport
