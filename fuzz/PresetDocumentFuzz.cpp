// Preset documents: of any text, and of any tree.

#include "Input.h"
#include "norvex/document/PresetDocument.h"

using namespace Norvex::Document;
using Norvex::Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;

namespace {

void RoundTrip(const Property& preset) {
    std::string text;
    try {
        text = WritePreset(preset);
    } catch (const DocumentException&) {
        return;  // too deep
    }
    if (text.size() > g_largestPreset) return;
    Require(Same(ParsePreset(text).preset, preset), "what was written is read again");
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
        PresetDocument document = ParsePreset(text);
        RoundTrip(document.preset);
        (void)WriteJson(PlainFormOf(document.preset));
        InterpretPreset(document, Foreign::Left);
        RoundTrip(document.preset);
        const Property interpreted = document.preset;
        InterpretPreset(document, Foreign::Left);
        Require(Same(document.preset, interpreted), "what has its meaning keeps it");
        InterpretPreset(document);
    } catch (const DocumentException&) {
    }
    return 0;
}
