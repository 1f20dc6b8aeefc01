#include "norvex/Conf/Review/PresetAssembly.h"

#include <array>
#include <functional>
#include <string_view>
#include <utility>

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/Explaining.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterResample.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using A = IFormatCodecAudio;
using P = IPreset;
using V = IFormatCodecVideo;

/// The places of a preset to which a value of a stream's flat node goes beside the codec's own section.
struct Place {
    std::string tag;
    std::string path;
};

const std::vector<Place>& VideoPlaces() {
    static const std::vector<Place>& places = Lasting(std::vector<Place>{
        {V::TAG_WIDTH, WidthPath()},
        {V::TAG_HEIGHT, HeightPath()},
        {V::TAG_FPS, FrameRatePath()},
    });
    return places;
}

/// The same for a value of the video codec's section, be it a stream's or a preset's.
const std::vector<Place>& FormatPlaces() {
    static const std::vector<Place>& places = Lasting(std::vector<Place>{
        {V::TAG_COVER_FLAG, CoverFlagPath()},
        {ProfileKey(), FormatProfilePath()},
    });
    return places;
}

const std::vector<Place>& AudioPlaces() {
    static const std::vector<Place>& places = Lasting(std::vector<Place>{
        {A::TAG_SAMPLE_RATE, SampleRatePath()},
        {A::TAG_SAMPLE_FORMAT, SampleFormatPath()},
        {A::TAG_LAYOUT, LayoutPath()},
    });
    return places;
}

/// The node at a path. What stands in the way as a leaf gives way.
Property& MakePath(Property& root, std::string_view path) {
    Property* node = &root;
    for (;;) {
        if (node->GetType() != PT_NODE) *node = Property(node->GetName());
        const std::size_t end = path.find(Property::SEPARATOR);
        const std::string_view step = path.substr(0, end);
        const auto child = node->FindChild(step);
        node = child != node->end() ? &*child : &node->SetChild(std::string(step));
        if (end == std::string_view::npos) return *node;
        path.remove_prefix(end + Property::SEPARATOR.size());
    }
}

void AddValues(Property& preset, const Property& section, const std::vector<Place>& places) {
    for (const auto& [tag, path] : places) {
        if (const Property* const value = section.FindByPath(tag)) MakePath(preset, path).CopyDataFrom(*value);
    }
}

void AddStream(Property& preset, const std::string& codecKey, const Property& stream,
               const std::vector<Place>& places) {
    preset.SetChild(codecKey, stream);
    AddValues(preset, stream, places);
}

void AddSection(Property& preset, const Property& section) {
    const std::string& name = section.GetName();
    if (name == V::TAG_FORMAT_CODEC_VIDEO) {
        AddStream(preset, P::KEY_FILTER_VIDEO_CODEC, section, VideoPlaces());
    } else if (name == A::TAG_FORMAT_CODEC_AUDIO) {
        AddStream(preset, P::KEY_FILTER_AUDIO_CODEC, section, AudioPlaces());
    } else if (!name.empty()) {
        preset.SetChild(name, section);
        // The resampler's section keeps the sample format beside the node in which rules look for it.
        if (name == Proc::IFilterResample::CLASS_ID && section.ChildExists(A::TAG_SAMPLE_FORMAT)) {
            MakePath(preset, SampleFormatPath()).CopyDataFrom(section[A::TAG_SAMPLE_FORMAT]);
        }
    }
}

template <class Sections>
Property Assemble(const Sections& sections) {
    Property preset(std::string("preset"));
    for (const Property& section : sections) AddSection(preset, section);
    const auto video = preset.FindChild(P::KEY_FILTER_VIDEO_CODEC);
    if (video != preset.end()) AddValues(preset, *video, FormatPlaces());
    return preset;
}

}  // namespace

Property AssemblePreset(const std::vector<Property>& sections) {
    return Assemble(sections);
}

Property AssembleDocument(const Property& preset) {
    return Assemble(preset);
}

Property AssembleStream(const Property& stream) {
    return Assemble(std::array{std::cref(stream)});
}

std::string StreamPathOf(const std::string& presetPath) {
    for (const auto* const places : {&VideoPlaces(), &FormatPlaces(), &AudioPlaces()}) {
        for (const auto& [tag, path] : *places) {
            if (path == presetPath) return tag;
        }
    }
    for (const std::string* const section : {&P::KEY_FILTER_VIDEO_CODEC, &P::KEY_FILTER_AUDIO_CODEC}) {
        std::string_view below = presetPath;
        if (Take(below, *section) && Take(below, Property::SEPARATOR)) return std::string(below);
    }
    return presetPath;
}

std::string DocumentPathOf(const std::string& presetPath) {
    if (presetPath == SampleFormatPath()) return Path(Proc::IFilterResample::CLASS_ID, A::TAG_SAMPLE_FORMAT);
    for (const auto& [tag, path] : FormatPlaces()) {
        if (path == presetPath) return Path(P::KEY_FILTER_VIDEO_CODEC, tag);
    }
    return presetPath;
}

const std::string* CodecSectionOf(const std::string& streamName) {
    if (streamName == V::TAG_FORMAT_CODEC_VIDEO) return &P::KEY_FILTER_VIDEO_CODEC;
    return streamName == A::TAG_FORMAT_CODEC_AUDIO ? &P::KEY_FILTER_AUDIO_CODEC : nullptr;
}

const std::string* OtherPlaceOf(const std::string& streamName, std::string_view streamPath) {
    const bool isVideo = streamName == V::TAG_FORMAT_CODEC_VIDEO;
    for (const auto* const places : {isVideo ? &VideoPlaces() : &AudioPlaces(), isVideo ? &FormatPlaces() : nullptr}) {
        if (places == nullptr) continue;
        for (const auto& [tag, path] : *places) {
            if (tag == streamPath) return &path;
        }
    }
    return nullptr;
}

std::vector<std::string> PresetPathsOf(const std::string& streamName, const std::string& streamPath) {
    const std::string* const section = CodecSectionOf(streamName);
    if (section == nullptr) return {};
    std::vector<std::string> paths = {Path(*section, streamPath)};
    if (const std::string* const other = OtherPlaceOf(streamName, streamPath)) paths.push_back(*other);
    return paths;
}

}  // namespace Norvex::Conf
