// Preset application of DataHelperCodecFFMPEG.

#include <algorithm>
#include <limits>

#include "norvex/Conf/DataHelpers/Codecs/DataHelperCodecFFMPEG.h"
#include "norvex/interfaces/Conf/DefaultVideoBitrate.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using V = IFormatCodecVideo;

HelperException Failure(const std::string& description) {
    HelperException exception;
    exception << TagDescription(description);
    AddStack(exception);
    return exception;
}

/// Sets a child of the stream to what the preset holds under that tag.
void Copy(const Property& preset, Property& stream, const std::string& tag) {
    stream.SetChild(tag, preset[tag]);
}

void ApplyAudioBitrate(const Property& preset, Property& stream) {
    const std::string& mode = preset[V::TAG_BITRATE_MODE].GetString();
    if (mode == V::TAG_BITRATE_MODE_CBR) {
        stream.SetChildT(V::TAG_BITRATE_MODE, mode);
        Copy(preset, stream, V::TAG_BITRATE);
    } else if (mode == V::TAG_BITRATE_MODE_VBR) {
        stream.SetChildT(V::TAG_BITRATE_MODE, mode);
        Copy(preset, stream, V::TAG_QUALITY);
        Copy(preset, stream, V::TAG_BITRATE);
    } else if (mode == V::TAG_BITRATE_MODE_CBR_AUTO) {
        // The automatic mode is a preset's word; the stream keeps the bitrate it has, and correction sees to it.
        stream.SetChildT(V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR);
    } else {
        NORVEX_THROW(Failure("Unknown bitrate mode"));
    }
}

/// The rate of the preset, or the stream's own where the preset has none or a zero.
Core::Ratio FrameRate(const Property& preset, const Property& stream) {
    if (preset.ChildExists(V::TAG_FPS)) {
        const Core::Ratio rate = preset[V::TAG_FPS].GetRatio();
        if (rate != Core::Ratio(0, 1)) return rate;
    }
    return stream[V::TAG_FPS].GetRatio();
}

/// A bitrate that stands beside a quality counts only where the options approve of it.
bool HasApprovedBitrate(const Property& preset) {
    if (!preset.ChildExists(V::TAG_CODEC_OPTIONS_ENCODE)) return false;
    const Property& options = preset[V::TAG_CODEC_OPTIONS_ENCODE];
    return options.ChildExists(V::TAG_APPROVED_VBR_MODE_ONLY) && options[V::TAG_APPROVED_VBR_MODE_ONLY].GetBool() &&
           preset.ChildExists(V::TAG_BITRATE);
}

int ToInt(long long number) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

/// `defaultBitrate` gives the bitrate for a quality.
template <class DefaultBitrate>
void ApplyVideoBitrate(const Property& preset, Property& stream, const std::string& mode,
                       const DefaultBitrate& defaultBitrate) {
    if (mode == V::TAG_BITRATE_MODE_CBR) {
        stream.SetChildT(V::TAG_BITRATE_MODE, mode);
        Copy(preset, stream, V::TAG_BITRATE);
    } else if (mode == V::TAG_BITRATE_MODE_VBR) {
        stream.SetChildT(V::TAG_BITRATE_MODE, mode);
        if (!preset.ChildExists(V::TAG_QUALITY)) {
            NORVEX_THROW(Failure("Quality is required for VBR bitrate mode"));
        }
        const long long quality = preset[V::TAG_QUALITY].GetInt64();
        stream.SetChildT(V::TAG_QUALITY, quality);
        stream.SetChildT(V::TAG_BITRATE, HasApprovedBitrate(preset) ? preset[V::TAG_BITRATE].GetInt64()
                                                                    : defaultBitrate(ToInt(quality)));
    } else if (mode == V::TAG_BITRATE_MODE_CBR_AUTO) {
        stream.SetChildT(V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR);
        stream.SetChildT(V::TAG_BITRATE, defaultBitrate(-1));
    } else {
        NORVEX_THROW(Failure("Unknown bitrate mode"));
    }
}

}  // namespace

void DataHelperCodecFFMPEG::ApplyPresetSettings(const Property& preset, Property& stream) const {
    const std::string& id = preset[V::TAG_CODEC_ID].GetString();
    if (id != m_codecId) {
        NORVEX_THROW(Failure("Incompatible preset codec id: " + id + ", required " + m_codecId));
    }
    if (m_mediaType != MediaType::Video && m_mediaType != MediaType::Audio) {
        NORVEX_THROW(Failure("Unknown stream type"));
    }
    stream.SetChildT(V::TAG_CODEC_ID, id);

    if (m_mediaType == MediaType::Audio) {
        ApplyAudioBitrate(preset, stream);
        ApplyPresetEncodeOptions(preset, stream);
        return;
    }

    const std::string& mode = preset[V::TAG_BITRATE_MODE].GetString();
    const long long width = stream[V::TAG_WIDTH].GetInt64();
    const long long height = stream[V::TAG_HEIGHT].GetInt64();
    const Core::Ratio rate = FrameRate(preset, stream);
    stream.SetChildT(V::TAG_FPS, rate);
    for (const std::string* tag : {&V::TAG_MAX_I_FRAME_INTERVAL, &V::TAG_MAX_B_FRAME_SEQUENCE, &V::TAG_THREAD_NUMBER}) {
        if (preset.ChildExists(*tag)) stream.SetChildT(*tag, preset[*tag].GetInt64());
    }
    if (preset.ChildExists(V::TAG_MULTIPASS_ENCODING)) {
        stream.SetChildT(V::TAG_MULTIPASS_ENCODING, preset[V::TAG_MULTIPASS_ENCODING].GetString());
    }
    ApplyVideoBitrate(preset, stream, mode, [&](int quality) {
        const double fps = static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator());
        return GetDefaultVideoBitrate(id, width, height, fps, quality);
    });
    // Always written: the absence of a value in a preset resets what the stream had.
    stream.SetChildT(V::TAG_BITS_PER_PIXEL,
                     preset.ChildExists(V::TAG_BITS_PER_PIXEL) ? preset[V::TAG_BITS_PER_PIXEL].GetInt64() : 0);
    stream.SetChildT(V::TAG_COVER_FLAG, preset.ChildExists(V::TAG_COVER_FLAG) && preset[V::TAG_COVER_FLAG].GetBool());
    ApplyPresetEncodeOptions(preset, stream);
}

void DataHelperCodecFFMPEG::ApplyPresetEncodeOptions(const Property& preset, Property& stream) const {
    const Property defaults = GetDefaults();
    const bool hasOptions =
        preset.ChildExists(V::TAG_CODEC_OPTIONS_ENCODE) && preset[V::TAG_CODEC_OPTIONS_ENCODE].Count() > 0;
    if (!hasOptions) {
        Copy(defaults, stream, V::TAG_CODEC_OPTIONS_ENCODE);
        return;
    }
    Property& options = stream.SetChild(V::TAG_CODEC_OPTIONS_ENCODE, preset[V::TAG_CODEC_OPTIONS_ENCODE]);
    for (const Property& option : defaults[V::TAG_CODEC_OPTIONS_ENCODE]) {
        if (!options.ChildExists(option.GetName())) options.AddNamed(option);
    }
}

}  // namespace Norvex::Conf
