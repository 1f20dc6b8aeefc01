#include "Jobs.h"

#include <limits>

#include "Formats.h"
#include "Plan.h"
#include "Request.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

Fit FitOf(const Property& resizeSection, const FrameInfo& source, const FrameInfo& target) {
    const auto settings = Proc::IFilterResize::Property2Settings(resizeSection);
    using Modes = Proc::SettingsResizer::CustomModes;
    if (settings.frameSizeMode != Proc::SettingsResizer::FrameSizeModes::Custom) return Fit::Stretch;
    switch (settings.mode) {
        case Modes::Letterbox:
            return Fit::Letterbox;
        case Modes::Crop:
            return Fit::Crop;
        case Modes::Auto: {
            const auto shape = [](const FrameInfo& frame) {
                return static_cast<double>(frame.width) * frame.aspectX /
                       (static_cast<double>(frame.height) * frame.aspectY);
            };
            const double ratio = shape(source) / shape(target);
            return ratio > 0.98 && ratio < 1.02 ? Fit::Stretch : Fit::Letterbox;
        }
        default:
            return Fit::Stretch;
    }
}

const char* ScalerOf(const Property& resizeSection) {
    switch (Proc::IFilterResize::Property2Settings(resizeSection).method) {
        case Proc::SettingsResizer::Methods::Point:
            return "neighbor";
        case Proc::SettingsResizer::Methods::FastBilinear:
            return "fast_bilinear";
        case Proc::SettingsResizer::Methods::Bilinear:
            return "bilinear";
        case Proc::SettingsResizer::Methods::Bicubic:
            break;
    }
    return "bicubic";
}

/// What encodes counts in ints.
int Narrow(long long value, const Property& property) {
    if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()) {
        return static_cast<int>(value);
    }
    throw RequestError("'" + property.GetName() + "' is " + Core::PropertyValueToString(property) +
                       ", which is more than any encoder takes");
}

int ToInt(const Property& value) {
    return Narrow(value.GetInt64(), value);
}

Fraction ToFraction(const Property& value) {
    const Core::Ratio ratio = value.GetRatio();
    return {Narrow(ratio.numerator(), value), Narrow(ratio.denominator(), value)};
}

/// An option's value as FFmpeg reads it.
std::string OptionText(const Property& value) {
    if (value.GetType() == PT_BOOL) return value.GetBool() ? "1" : "0";
    return Core::PropertyValueToString(value);
}

/// The encoder's options, by FFmpeg's names. Of the rule book's options some are for the host.
std::vector<std::pair<std::string, std::string>> EncoderOptions(const Property& stream) {
    std::vector<std::pair<std::string, std::string>> options;
    const std::string& codec = stream[C::TAG_CODEC_ID].GetString();
    if (stream.ChildExists(C::TAG_CODEC_OPTIONS_ENCODE)) {
        for (const Property& value : stream[C::TAG_CODEC_OPTIONS_ENCODE]) {
            const std::string& tag = value.GetName();
            if (tag == V::TAG_APPROVED_VBR_MODE_ONLY || tag == V::TAG_DISABLE_TRANSPARENCY ||
                tag == V::TAG_USE_HW_CONTEXT || value.GetType() == PT_NODE) {
                continue;
            }
            if (const auto option = EncoderOptionOf(codec, tag, OptionText(value))) options.push_back(*option);
        }
    }
    if (stream.ChildExists(C::TAG_QUALITY)) {
        const auto option = QualityOptionOf(codec, stream[C::TAG_QUALITY].GetInt64());
        if (option) options.push_back(*option);
    }
    if (stream.ChildExists(C::TAG_BITRATE_MODE)) {
        const auto option = ModeOptionOf(codec, stream[C::TAG_BITRATE_MODE].GetString());
        if (option) options.push_back(*option);
    }
    return options;
}

std::string ProfileIn(const Property& stream) {
    const std::string path = Path({C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE});
    return stream.ChildExists(path) ? Core::PropertyValueToString(stream[path]) : std::string();
}

template <class Job>
void SetRateControl(const Property& stream, Job& job) {
    const bool variable = stream.ChildExists(C::TAG_BITRATE_MODE) &&
                          stream[C::TAG_BITRATE_MODE].GetString() == C::TAG_BITRATE_MODE_VBR &&
                          stream.ChildExists(C::TAG_QUALITY);
    job.rateControl = variable ? RateControl::Quality : RateControl::Bitrate;
    if (stream.ChildExists(C::TAG_BITRATE)) job.bitrate = stream[C::TAG_BITRATE].GetInt64();
    if (stream.ChildExists(C::TAG_QUALITY)) job.quality = ToInt(stream[C::TAG_QUALITY]);
}

}  // namespace

VideoJob MakeVideoJob(const Property& stream, const VideoSource& source, const Property& resizeSection) {
    VideoJob job;
    job.streamIndex = source.streamIndex;
    job.codecId = stream[C::TAG_CODEC_ID].GetString();
    job.width = ToInt(stream[V::TAG_WIDTH]);
    job.height = ToInt(stream[V::TAG_HEIGHT]);
    job.sampleAspect = {ToInt(stream[V::TAG_ASPECTX]), ToInt(stream[V::TAG_ASPECTY])};
    job.frameRate = ToFraction(stream[V::TAG_FPS]);
    job.fit = FitOf(resizeSection,
                    {source.width, source.height, source.sampleAspect.numerator, source.sampleAspect.denominator},
                    {job.width, job.height, job.sampleAspect.numerator, job.sampleAspect.denominator});
    job.orientation = source.orientation;
    job.scaler = ScalerOf(resizeSection);
    SetRateControl(stream, job);
    job.twoPass = stream.ChildExists(V::TAG_MULTIPASS_ENCODING) &&
                  stream[V::TAG_MULTIPASS_ENCODING].GetString() == V::TAG_TWO_PASS_MODE;
    // Two passes aim at a bitrate: the one that the quality stands for.
    if (job.twoPass) job.rateControl = RateControl::Bitrate;
    if (stream.ChildExists(V::TAG_MAX_B_FRAME_SEQUENCE)) job.maxBFrames = ToInt(stream[V::TAG_MAX_B_FRAME_SEQUENCE]);
    if (stream.ChildExists(V::TAG_MAX_I_FRAME_INTERVAL)) {
        job.keyFrameInterval = ToInt(stream[V::TAG_MAX_I_FRAME_INTERVAL]);
    }
    if (stream.ChildExists(C::TAG_THREAD_NUMBER)) job.threads = ToInt(stream[C::TAG_THREAD_NUMBER]);
    job.options = EncoderOptions(stream);
    job.pixelFormats = PixelFormatsOf(job.codecId, ProfileIn(stream));
    const std::string isOpaque = Path({C::TAG_CODEC_OPTIONS_ENCODE, V::TAG_DISABLE_TRANSPARENCY});
    job.keepsAlpha = !stream.ChildExists(isOpaque) || !stream[isOpaque].GetBool();
    return job;
}

AudioJob MakeAudioJob(const Property& stream, const AudioSource& source) {
    AudioJob job;
    job.streamIndex = source.streamIndex;
    job.codecId = stream[C::TAG_CODEC_ID].GetString();
    job.sampleRate = ToInt(stream[A::TAG_SAMPLE_RATE]);
    job.layout = stream[A::TAG_LAYOUT].GetString();
    job.sampleFormat = stream[A::TAG_SAMPLE_FORMAT].GetString();
    SetRateControl(stream, job);
    job.options = EncoderOptions(stream);
    return job;
}

}  // namespace NorvexExport
