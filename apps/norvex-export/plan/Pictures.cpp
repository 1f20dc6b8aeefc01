#include "Pictures.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "Containers.h"
#include "Copies.h"
#include "Presets.h"
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
using Proc::IResize;

namespace {

Property FrameRateSection(const Request& request) {
    return WithChoices(Proc::IFilterFrameRate::MakeSettings(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE),
                       request);
}

void UseSize(Property& section, long long width, long long height) {
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_CUSTOM);
    resize.SetChildT(V::TAG_WIDTH, width);
    resize.SetChildT(V::TAG_HEIGHT, height);
}

/// The frame sizes that a codec's rules offer for what is asked of it; empty where any will do.
std::vector<std::pair<long long, long long>> SizesOf(const IDataHelper& codec, const Request& request) {
    const Property preset = AssemblePreset({WithChoices(codec.GetDefaults(), request)});
    RuleList rules;
    codec.GetValidationRules(rules);
    const std::string sizePath = Path({Proc::IFilterResize::CLASS_ID, IResize::CLASS_ID, IResize::FRAME_SIZE_MODE});
    std::vector<std::pair<long long, long long>> sizes;
    for (const auto& [key, rule] : rules) {
        if (rule->GetSecondPath() != sizePath || !preset.ChildExists(rule->GetFirstPath()) ||
            !rule->GetFirstConstraint()->IsValid(preset[rule->GetFirstPath()])) {
            continue;
        }
        for (const Property& size : WhatIsAllowed(*rule->GetSecondConstraint()).values) {
            sizes.emplace_back(size[V::TAG_WIDTH].GetInt64(), size[V::TAG_HEIGHT].GetInt64());
        }
    }
    return sizes;
}

/// Of the sizes, the one whose encoder takes a frame rate near the source's, and of those the nearest in area.
std::pair<long long, long long> NearestSize(const std::vector<std::pair<long long, long long>>& sizes,
                                            const std::string& codecId, const VideoSource& source) {
    const auto distance = [&](const std::pair<long long, long long>& size) {
        const EncoderForm* const form = FormOf(codecId, size.first, size.second);
        const double ofRate = form == nullptr ? 0.0
                                              : std::abs(boost::rational_cast<double>(form->frameRate) -
                                                         boost::rational_cast<double>(ToRatio(source.frameRate)));
        const long long area = 1LL * source.width * source.height;
        return std::pair(ofRate, std::llabs(size.first * size.second - area));
    };
    return *std::min_element(sizes.begin(), sizes.end(),
                             [&](const auto& one, const auto& two) { return distance(one) < distance(two); });
}

void RequireLegal(const Property& section, const Request& request) {
    const NamedHelper helper = FindHelper(section.GetName(), std::string());
    for (const Finding& finding : CheckPreset(AssemblePreset({section}), {helper})) {
        const Choice* const choice = request.Find(finding.path);
        throw RequestError((choice != nullptr ? choice->option : finding.path) + ": '" +
                           Core::PropertyValueToString(section[finding.path.substr(section.GetName().size() + 1)]) +
                           "' is not legal here; allowed: " + finding.allowed.words);
    }
}

Property ResizeSection(Draft& draft, const Request& request, const NamedHelper& codec, const VideoSource& source) {
    Property section = CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetDefaults();
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_ORIGINAL);
    section = WithChoices(std::move(section), request);
    const bool isChosen = request.Asks(Proc::IFilterResize::CLASS_ID);
    const auto sizes = SizesOf(*codec.helper, request);
    if (!sizes.empty()) {
        const Property& chosen = section[IResize::CLASS_ID];
        const auto size = std::pair(chosen[V::TAG_WIDTH].GetInt64(), chosen[V::TAG_HEIGHT].GetInt64());
        if (!isChosen) {
            const auto nearest = NearestSize(sizes, codec.id, source);
            UseSize(section, nearest.first, nearest.second);
            draft.Note("'" + codec.id + "' has its own frame sizes; the picture is brought to " +
                       SizeText(nearest.first, nearest.second) + ".");
        } else if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) {
            std::vector<std::string> names;
            names.reserve(sizes.size());
            for (const auto& [width, height] : sizes) names.push_back(SizeText(width, height));
            throw RequestError("--size: '" + SizeText(size.first, size.second) +
                               "' is not legal here; allowed: one of " + Join(names));
        }
    } else if (const auto [width, height] = FittingSize(codec.id, source.width, source.height);
               !isChosen && (width != source.width || height != source.height)) {
        UseSize(section, width, height);
        Property& even = section[IResize::CLASS_ID];
        even.SetChildT(IResize::MODE, IResize::MODE_STRETCH);
        even.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
        even.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    }
    RequireLegal(section, request);
    return section;
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
    const Property& size = resize[IResize::CLASS_ID];
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
    if (form != nullptr) job.pixelFormat = form->pixelFormat;
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
