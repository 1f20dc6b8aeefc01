#include "Copies.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include "Words.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;

namespace {

SP<const ICodecData> DataOf(std::size_t size) {
    return size == 0 ? nullptr : CodecData::Create(std::vector<std::uint8_t>(size));
}

/// A stream of the input as one that is carried over unchanged.
template <class Source>
Property Unchanged(const Source& source) {
    Property settings(std::string("stream"));
    settings.SetChildT(C::TAG_CODEC_ID, source.codecId);
    settings.SetChildT(C::TAG_FOURCC, source.codecTag);
    settings.SetChildT(C::TAG_LOSSLESS, true);
    settings.SetChildT(C::TAG_MAIN_STREAM, true);
    return settings;
}

SP<const IFormatCodec> Describe(const VideoSource& source) {
    return FormatCodecVideo::Create(Unchanged(source), av_get_pix_fmt(source.pixelFormat.c_str()),
                                    DataOf(source.codecDataSize));
}

SP<const IFormatCodec> Describe(const AudioSource& source) {
    Property settings = Unchanged(source);
    settings.SetChildT(A::TAG_LAYOUT, source.layout);
    return FormatCodecAudio::Create(settings, DataOf(source.codecDataSize));
}

template <class Source>
bool PlanCopyOf(Plan& plan, const Property& formatTree, const Source& source, StreamPlan::Kind kind, bool isAsked) {
    const char* const name = kind == StreamPlan::Kind::Video ? "picture" : "sound";
    if (!plan.request.copy) return false;
    if (isAsked) {
        plan.notes.push_back(std::string("The ") + name + " is encoded, since something was asked of it.");
        return false;
    }
    if (!CodecIsSupported(FormatFile::Create(formatTree), Describe(source))) {
        plan.notes.push_back("'" + plan.formatId + "' does not take the " + name + " (" + source.codecId +
                             ") as it is; it is encoded.");
        return false;
    }
    StreamPlan stream;
    stream.kind = kind;
    stream.source = WordsFor(source);
    stream.isCopied = true;
    plan.job.copies.push_back(source.streamIndex);
    plan.streams.push_back(std::move(stream));
    return true;
}

}  // namespace

bool PlanCopy(Plan& plan, const Property& formatTree, const VideoSource& source, bool isAsked) {
    return PlanCopyOf(plan, formatTree, source, StreamPlan::Kind::Video, isAsked);
}

bool PlanCopy(Plan& plan, const Property& formatTree, const AudioSource& source, bool isAsked) {
    return PlanCopyOf(plan, formatTree, source, StreamPlan::Kind::Audio, isAsked);
}

}  // namespace NorvexExport
