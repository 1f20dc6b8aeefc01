#include "Subtitles.h"

#include <algorithm>

#include "Containers.h"
#include "norvex-export/Formats.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using P = IPreset;

namespace {

/// The stream of its kind that a player would take, or null.
template <class Source>
const Source* FindMain(const std::vector<Source>& streams) {
    const auto main = std::find_if(streams.begin(), streams.end(), [](const Source& source) { return source.isMain; });
    return main != streams.end() ? &*main : nullptr;
}

}  // namespace

void PlanSubtitles(Plan& plan, const NamedHelper& format, const Property& formatTree) {
    const std::string& kind = P::KEY_FILTER_SUBTITLE_CODEC;
    const bool isChosen = plan.request.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr;
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_SUBTITLES_TEXT);
    const bool isOnlyKind = stream != nullptr && formatTree[P::KEY_STREAMS].Count() == 1;
    if (!isChosen && !isOnlyKind) return;
    if (stream == nullptr) throw RequestError("--subtitles: the format '" + plan.formatId + "' holds none");
    const SubtitleSource* const main = FindMain(plan.input.subtitles);
    if (main == nullptr) throw RequestError("there are no subtitles in the input");
    const SubtitleSource& source = *main;
    if (!source.isText) throw RequestError("the subtitles of the input (" + source.codecId + ") are pictures");

    const std::string codecId = CodecOf(plan.request, *stream, kind);
    RequireEncodable(format, kind, P::STREAM_TYPE_SUBTITLES_TEXT, codecId);
    StreamPlan settled;
    settled.kind = StreamPlan::Kind::Subtitle;
    settled.source = source.codecId;
    settled.settled = Property(std::string("subtitles"));
    settled.settled.SetChildT(C::TAG_CODEC_ID, codecId);
    settled.asked = settled.settled;
    plan.job.subtitles.push_back({source.streamIndex, CodecNameOf(codecId)});
    plan.streams.push_back(std::move(settled));
}

}  // namespace NorvexExport
