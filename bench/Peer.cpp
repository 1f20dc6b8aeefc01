// What a media framework takes for the same question: which of the formats that AAC's encoder takes is nearest to what
// is asked for.

#include "Peer.h"

#include <gst/gst.h>

#include <stdexcept>

namespace NorvexBench {

Side IntersectAndFixate() {
    gst_init(nullptr, nullptr);
    // What the helper of AAC allows, in the framework's words.
    GstCaps* const allowed = gst_caps_from_string(
        "audio/x-raw, format=(string)F32LE, layout=(string)non-interleaved, rate=(int){96000, 88200, 64000, 48000, "
        "44100, 32000, 24000, 22050, 16000, 12000, 11025}, channels=(int){1, 2, 3, 5, 6, 8}");
    GstCaps* const wanted = gst_caps_from_string(
        "audio/x-raw, format=(string){S16LE, F32LE}, rate=(int)[1, 192000], channels=(int)[1, 16]");
    if (allowed == nullptr || wanted == nullptr) throw std::runtime_error("the peer does not read its own words");
    // They live as long as the process, as helpers do.
    return Operation([allowed, wanted] {
        GstCaps* caps = gst_caps_make_writable(gst_caps_truncate(gst_caps_intersect(allowed, wanted)));
        GstStructure* const structure = gst_caps_get_structure(caps, 0);
        gst_structure_fixate_field_nearest_int(structure, "rate", 44000);
        gst_structure_fixate_field_nearest_int(structure, "channels", 4);
        caps = gst_caps_fixate(caps);
        gst_caps_unref(caps);
    });
}

}  // namespace NorvexBench
