// Preset documents: of any text, and of any tree.

#include "Input.h"
#include "common/PresetJson.h"

using namespace NorvexApps;
using Norvex::Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;

namespace {

void RoundTrip(const Property& preset) {
    std::string text;
    try {
        text = WritePreset(preset);
    } catch (const PresetError&) {
        return;  // too deep
    }
    Require(Same(ReadPreset(text).preset, preset), "what was written is read again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    if (input.Flag()) {
        Property preset = input.Tree("preset", 50);
        if (preset.GetType() == Norvex::PT_NODE) RoundTrip(preset);
        return 0;
    }
    try {
        const std::string text(data + (size > 0 ? 1 : 0), data + size);
        const PresetDocument document = ReadPreset(text);
        RoundTrip(document.preset);
        (void)ToJson(document.preset);
        RequireKnownNames(document);
    } catch (const PresetError&) {
    }
    return 0;
}
