#include "Presets.h"

#include <algorithm>
#include <iterator>

#include "common/PresetJson.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

namespace {

void CollectChoices(const Property& node, const std::string& path, const NorvexApps::PresetDocument& document,
                    std::vector<Choice>& choices) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : Path({path, child.GetName()});
        if (child.GetType() == PT_NODE) {
            CollectChoices(child, below, document, choices);
        } else {
            choices.push_back({below, child, "preset, " + document.PlaceOf(below)});
        }
    }
}

}  // namespace

void AddSettled(const Property& stream, Property& preset) {
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
    preset.SetChild(section.GetName(), section);
    if (isVideo) {
        const Property rate = Proc::IFilterFrameRate::MakeSettings(stream[V::TAG_FPS].GetRatio());
        preset.SetChild(rate.GetName(), rate);
    }
    if (isAudio) {
        Proc::SettingsFilterResample settings;
        settings.sampleRate = static_cast<int>(stream[A::TAG_SAMPLE_RATE].GetInt64());
        settings.layout = LayoutRecord::Find(stream[A::TAG_LAYOUT].GetString()).layout;
        settings.sampleFormat = SampleFmtRecord::Find(stream[A::TAG_SAMPLE_FORMAT].GetString()).format;
        const Property resample = Proc::IFilterResample::Settings2Property(settings);
        preset.SetChild(resample.GetName(), resample);
    }
}

void ChooseFromPreset(Request& request, const std::string& presetText) {
    std::vector<Choice> choices;
    try {
        const NorvexApps::PresetDocument document = NorvexApps::ReadPreset(presetText);
        NorvexApps::RequireKnownNames(document);
        const std::string sections[] = {P::KEY_FORMAT,
                                        P::KEY_FILTER_VIDEO_CODEC,
                                        P::KEY_FILTER_AUDIO_CODEC,
                                        P::KEY_FILTER_SUBTITLE_CODEC,
                                        Proc::IFilterResize::CLASS_ID,
                                        Proc::IFilterFrameRate::CLASS_ID,
                                        Proc::IFilterResample::CLASS_ID};
        for (const Property& section : document.preset) {
            const std::string& name = section.GetName();
            if (std::find(std::begin(sections), std::end(sections), name) == std::end(sections)) {
                throw RequestError(document.PlaceOf(name) + ": this program has no use for '" + name + "'");
            }
            const std::string idPath =
                Path({name, name == P::KEY_FORMAT ? IFormatFile::TAG_CONTAINER : C::TAG_CODEC_ID});
            const std::string chosen = request.TextAt(idPath);
            // What was set for one codec means nothing to another.
            if (!chosen.empty() && document.preset[idPath].GetString() != chosen) continue;
            CollectChoices(section, name, document, choices);
        }
    } catch (const NorvexApps::PresetError& error) {
        throw RequestError("'" + request.presetFile + "', " + error.what());
    }
    request.choices.insert(request.choices.begin(), choices.begin(), choices.end());
}

}  // namespace NorvexExport
