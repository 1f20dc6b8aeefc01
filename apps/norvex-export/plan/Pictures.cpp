#include "Pictures.h"

#include <utility>

#include "Containers.h"
#include "Copies.h"
#include "Presets.h"
#include "Sizes.h"
#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex-export/Jobs.h"
#include "norvex-export/Settle.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

namespace {

Property FrameRateSection(const Request& request) {
    return WithChoices(Proc::IFilterFrameRate::MakeSettings(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE),
                       request);
}

Property VideoStreamOf(const VideoSource& source, const std::string& codecId) {
    Property stream(V::TAG_FORMAT_CODEC_VIDEO);
    stream.SetChildT(C::TAG_CODEC_ID, codecId);
    stream.SetChildT(V::TAG_WIDTH, source.width);
    stream.SetChildT(V::TAG_HEIGHT, source.height);
    stream.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
    stream.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    stream.SetChildT(V::TAG_FPS, ToRatio(source.frameRate));
    return stream;
}

/// The picture as it is when it has been turned upright.
VideoSource Upright(VideoSource source) {
    if (!source.orientation.SwapsSides()) return source;
    std::swap(source.width, source.height);
    std::swap(source.sampleAspect.numerator, source.sampleAspect.denominator);
    return source;
}

void TellLosses(Draft& draft, const VideoJob& job, const VideoSource& source) {
    const PixelFormat format = ChoosePixelFormat(job, source.pixelFormat);
    if (format.losses.empty()) return;
    draft.Note("The picture of stream " + std::to_string(source.streamIndex) + " loses " +
               Join(format.losses, " and ") + ": '" + job.codecId + "' has it as " + format.name + " here.");
}

/// Whether a stream of these settings can be coded field by field.
bool CodesFields(const Property& settled) {
    const std::string& codec = settled[C::TAG_CODEC_ID].GetString();
    const std::string profile = Path({C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE});
    // The baseline of H.264 has no fields (ITU-T H.264, A.2.1).
    const bool isBaseline = codec == V::CODEC_ID_H264 && settled.ChildExists(profile) &&
                            settled[profile].GetString() == V::TAG_X264_PROFILE_BASELINE;
    return HoldsFields(codec) && !isBaseline;
}

/// Interlaced pictures stay so where the codec can and their lines stay where they are, and are made whole elsewhere.
void PlanFields(Draft& draft, const Property& settled, const VideoSource& source, VideoJob& job) {
    const Deinterlacing wish = draft.plan.request.deinterlacing;
    const std::string name = "The picture of stream " + std::to_string(source.streamIndex);
    if (wish == Deinterlacing::On) job.fields = Fields::Deinterlace;
    if (!source.isInterlaced || wish == Deinterlacing::Off) return;
    const bool isMoved = job.width != source.width || job.height != source.height || !source.orientation.IsUpright() ||
                         ToRatio(job.frameRate) != ToRatio(source.frameRate) || job.isStill || job.isCover;
    if (wish == Deinterlacing::Auto) {
        job.fields = !isMoved && CodesFields(settled) ? Fields::Keep : Fields::Deinterlace;
    }
    draft.Note(name + (job.fields == Fields::Keep ? " is interlaced, and stays so."
                                                  : " is interlaced, and its fields are made into whole pictures."));
}

/// A picture, or a cover by the rule book, that does not go over as it is.
void EncodePicture(Draft& draft, const VideoSource& stored, const Request& own, bool isCover) {
    const std::string& kind = P::KEY_FILTER_VIDEO_CODEC;
    if (!stored.isDecodable) {
        draft.LeaveOut({stored.streamIndex}, "this build of FFmpeg cannot decode everything");
        return;
    }
    const VideoSource source = Upright(stored);
    const Property& stream = *FindStream(draft.formatTree, P::STREAM_TYPE_VIDEO);
    const NamedHelper codec = FindCodec(draft.format, kind, P::STREAM_TYPE_VIDEO, CodecOf(own, stream, kind));
    const Property resize = ResizeSection(draft, own, codec, source);
    Property frameRate = FrameRateSection(own);
    const Property& size = resize[Proc::IResize::CLASS_ID];
    const EncoderForm* const form = FormOf(codec.id, size[V::TAG_WIDTH].GetInt64(), size[V::TAG_HEIGHT].GetInt64());
    if (form != nullptr && !own.Asks(Proc::IFilterFrameRate::CLASS_ID)) {
        frameRate.SetChildT(V::TAG_FPS, form->frameRate);
    }

    Property values = VideoStreamOf(source, codec.id);
    if (isCover) values.SetChildT(V::TAG_COVER_FLAG, true);
    StreamPlan settled = Settle({draft.format, draft.formatTree, codec, {resize, frameRate}, own}, std::move(values));
    settled.kind = isCover ? StreamKind::Cover : StreamKind::Video;
    settled.source = WordsFor(stored);
    settled.sections = SectionsOf(settled);
    settled.sections.push_back(resize);
    VideoJob job = MakeVideoJob(settled.settled, source, resize);
    job.isCover = isCover;
    job.isStill = IsStill(draft.plan.formatId);
    if (form != nullptr) job.pixelFormats = {form->pixelFormat};
    TellLosses(draft, job, stored);
    PlanFields(draft, settled.settled, stored, job);
    draft.plan.job.video.push_back(std::move(job));
    draft.Add(std::move(settled), stored);
}

}  // namespace

void PlanPicture(Draft& draft, const VideoSource& source) {
    const Request own = draft.plan.request.For(source.streamIndex, P::KEY_FILTER_VIDEO_CODEC);
    if (!IsStill(draft.plan.formatId) && PlanCopy(draft, source, own)) return;
    EncodePicture(draft, source, own, false);
}

void PlanCover(Draft& draft, const VideoSource& source) {
    const Request own = draft.plan.request.For(source.streamIndex, P::KEY_FILTER_VIDEO_CODEC);
    const Property* const stream = FindStream(draft.formatTree, P::STREAM_TYPE_VIDEO);
    if (stream != nullptr && stream->ChildExists(V::TAG_COVER_FLAG)) {
        if (!PlanCoverCopy(draft, source, own)) EncodePicture(draft, source, own, true);
    } else if (!PlanCopy(draft, StreamKind::Cover, source, WordsFor(source))) {
        draft.LeaveOut({source.streamIndex}, "'" + draft.plan.formatId + "' holds no covers of " + source.codecId);
    }
}

}  // namespace NorvexExport
