#include "Copies.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>

#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;

SP<const ICodecData> DataOf(std::size_t size) {
    return size == 0 ? nullptr : CodecData::Create(std::vector<std::uint8_t>(size));
}

/// A stream of the input as one that is carried over unchanged.
Property Unchanged(const StreamSource& source) {
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

bool SaysEnough(const VideoSource& source) {
    return source.width > 0 && source.height > 0;
}
bool SaysEnough(const AudioSource& source) {
    return source.sampleRate > 0 && source.channels > 0;
}

bool KeepsPlace(const Draft& draft, const VideoSource& source) {
    return source.orientation.IsUpright() || HoldsOrientation(draft.plan.formatId);
}
bool KeepsPlace(const Draft& draft, const AudioSource& source) {
    (void)draft, (void)source;
    return true;
}

const StreamFailure* FindUnwritable(const Draft& draft, const StreamSource& source) {
    const auto copy = std::find_if(draft.unwritable.begin(), draft.unwritable.end(),
                                   [&](const auto& c) { return c.streamIndex == source.streamIndex; });
    return copy != draft.unwritable.end() ? &*copy : nullptr;
}

/// A host goes against the rule book where the user says so.
bool GoesOver(const StreamFit& fit, bool isAll) {
    return fit.answer == StreamFit::Answer::AsItIs || (isAll && fit.answer == StreamFit::Answer::Refused);
}

/// Why the stream cannot be carried over unchanged although that was asked; empty where it can.
template <class Source>
std::string WhyNotAsItIs(const Draft& draft, const Source& source, const StreamFit& fit) {
    if (!SaysEnough(source)) return "the input does not say enough of it";
    if (!GoesOver(fit, draft.plan.request.copyAll)) {
        return fit.reason + (fit.answer == StreamFit::Answer::Refused ? "; --copy=all takes it over unchanged" : "");
    }
    if (!KeepsPlace(draft, source)) return "'" + draft.plan.formatId + "' does not keep which way up it is shown";
    if (const StreamFailure* const copy = FindUnwritable(draft, source)) {
        return "FFmpeg does not write " + source.codecId + " to '" + draft.plan.formatId +
               "' as it is: " + copy->reason;
    }
    return {};
}

template <class Source>
bool PlanCopyOf(Draft& draft, StreamKind kind, const Source& source, bool isAsked) {
    const bool isCopyWanted = draft.plan.request.copy;
    const std::string name = "the " + NameOf(kind) + " of stream " + std::to_string(source.streamIndex);
    if (isAsked) {
        if (isCopyWanted) draft.Note("Something was asked of " + name + "; it is encoded.");
        return false;
    }
    const StreamFit fit = FitInto(draft.plan.formatId, {Describe(source)}).streams.front();
    if (!isCopyWanted) {
        if (!SaysEnough(source) || !KeepsPlace(draft, source)) return false;
        if (fit.answer == StreamFit::Answer::AsItIs) draft.copyable.push_back(source.streamIndex);
        if (fit.answer == StreamFit::Answer::Refused) draft.refused.push_back(source.streamIndex);
        return false;
    }
    const std::string reason = WhyNotAsItIs(draft, source, fit);
    if (reason.empty()) {
        draft.AddCopy(kind, source, WordsFor(source));
        return true;
    }
    if (source.isDecodable) draft.Note(Capitalised(name) + " is encoded: " + reason + ".");
    return false;
}

bool AsksOfPicture(const Request& own) {
    const std::string& kind = P::KEY_FILTER_VIDEO_CODEC;
    return own.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr || own.Asks(kind) ||
           own.Asks(Proc::IFilterResize::CLASS_ID) || own.Asks(Proc::IFilterFrameRate::CLASS_ID);
}

}  // namespace

bool PlanCopy(Draft& draft, const VideoSource& source, const Request& own) {
    return PlanCopyOf(draft, StreamKind::Video, source, AsksOfPicture(own));
}

bool PlanCoverCopy(Draft& draft, const VideoSource& source, const Request& own) {
    const bool isFit =
        source.isAttachedPicture && KeepsCover(draft.plan.formatId, source.codecId) && !AsksOfPicture(own);
    if (isFit && !own.copy) draft.copyable.push_back(source.streamIndex);
    return isFit && own.copy && PlanCopy(draft, StreamKind::Cover, source, WordsFor(source));
}

bool PlanCopy(Draft& draft, const AudioSource& source, const Request& own) {
    const std::string& kind = P::KEY_FILTER_AUDIO_CODEC;
    const bool isAsked = own.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr || own.Asks(kind) ||
                         own.Asks(Proc::IFilterResample::CLASS_ID);
    return PlanCopyOf(draft, StreamKind::Audio, source, isAsked);
}

bool PlanCopy(Draft& draft, StreamKind kind, const StreamSource& source, const std::string& words) {
    if (FindUnwritable(draft, source) != nullptr) return false;
    draft.AddCopy(kind, source, words);
    return true;
}

void PlanOthers(Draft& draft, const std::vector<const AttachmentSource*>& attachments,
                const std::vector<const StreamSource*>& data) {
    const std::string holdsNo = "'" + draft.plan.formatId + "' holds no ";
    for (const AttachmentSource* const source : attachments) {
        if (PlanCopy(draft, StreamKind::Attachment, *source, WordsFor(*source))) continue;
        draft.LeaveOut({source->streamIndex}, holdsNo + "attachments of " + source->codecId);
    }
    for (const StreamSource* const source : data) {
        if (PlanCopy(draft, StreamKind::Data, *source, WordsFor(*source))) continue;
        draft.LeaveOut({source->streamIndex}, holdsNo + "data of " + source->codecId);
    }
}

}  // namespace NorvexExport
