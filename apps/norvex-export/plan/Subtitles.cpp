#include "Subtitles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>

#include "Containers.h"
#include "Copies.h"
#include "Presets.h"
#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using P = IPreset;

const std::string& Kind() {
    return P::KEY_FILTER_SUBTITLE_CODEC;
}

bool IsText(const std::string& codecId) {
    const AVCodecDescriptor* const codec = avcodec_descriptor_get_by_name(CodecNameOf(codecId).c_str());
    return codec != nullptr && (codec->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

template <class T>
bool Holds(const std::vector<T>& list, const T& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

class SubtitlePlanner {
public:
    explicit SubtitlePlanner(Draft& draft)
        : m_draft(draft),
          m_muxer(av_guess_format(draft.plan.job.muxer.c_str(), nullptr, nullptr)),
          m_default(FindStream(draft.formatTree, P::STREAM_TYPE_SUBTITLES_TEXT)),
          m_left(draft.LimitOf(IFormatFile::TAG_LIMITS_SUBTITLE)) {
        ConstraintMap constraints;
        draft.format.helper->GetConstraints(constraints);
        const auto codecs = constraints.find(
            Path({P::KEY_STREAMS + P::INDEX + P::STREAM_TYPE_SUBTITLES_TEXT, Kind(), C::TAG_CODEC_ID}));
        if (codecs == constraints.end()) return;
        for (const Property& value : WhatIsAllowed(*codecs->second).values) m_codecs.push_back(value.GetString());
    }

    void Run(std::vector<const SubtitleSource*> sources) {
        RequireWhatIsAsked(sources);
        // Where there is no room for all, what a player would take comes first; where there is none for pictures, text.
        std::stable_sort(sources.begin(), sources.end(), [](const SubtitleSource* one, const SubtitleSource* two) {
            return std::pair(!one->isText, !one->isMain) < std::pair(!two->isText, !two->isMain);
        });
        std::vector<const SubtitleSource*> texts, pictures, tooMany;
        const int limit = m_left;
        for (const SubtitleSource* const source : sources) {
            const Request own = m_draft.plan.request.For(source->streamIndex, Kind());
            const std::string codecId = source->isText ? CodecFor(*source, own) : std::string();
            const bool isCopyWanted = own.copy && !IsAsked(own);
            const bool goesAsItIs = TakesAsItIs(*source) && (isCopyWanted || (!source->isText && !m_codecs.empty()));
            const bool isEncodable = !codecId.empty() && source->isDecodable;
            if (!goesAsItIs && !isEncodable) {
                (source->isText ? texts : pictures).push_back(source);
            } else if (m_left == 0) {
                tooMany.push_back(source);
            } else if (goesAsItIs && PlanCopy(m_draft, StreamKind::Subtitle, *source, WordsFor(*source))) {
                --m_left;
            } else if (isEncodable) {
                Encode(*source, codecId);
                if (!own.copy && !IsAsked(own) && TakesAsItIs(*source)) {
                    m_draft.copyable.push_back(source->streamIndex);
                }
                --m_left;
            } else {
                (source->isText ? texts : pictures).push_back(source);
            }
        }
        const std::string holds = "'" + m_draft.plan.formatId + "' holds ";
        const bool holdsNone = limit == 0 || m_codecs.empty();
        m_draft.LeaveOut(Sorted(texts), holds + (holdsNone ? "no subtitles" : "no subtitles of text"));
        m_draft.LeaveOut(Sorted(pictures), holds + (holdsNone ? "no subtitles" : "no such subtitles of pictures"));
        m_draft.LeaveOut(Sorted(tooMany), holds + (limit == 0 ? "no subtitles" : "no more subtitles"));
    }

private:
    static bool IsAsked(const Request& own) { return own.Find(Path({Kind(), C::TAG_CODEC_ID})) != nullptr; }

    static std::vector<int> Sorted(const std::vector<const SubtitleSource*>& sources) {
        std::vector<int> streams;
        for (const SubtitleSource* const source : sources) streams.push_back(source->streamIndex);
        std::sort(streams.begin(), streams.end());
        return streams;
    }

    /// Whoever asks for subtitles, by a codec or by a file that holds nothing else, wants some.
    void RequireWhatIsAsked(const std::vector<const SubtitleSource*>& sources) const {
        const Choice* const choice = m_draft.plan.request.Find(Path({Kind(), C::TAG_CODEC_ID}));
        const bool isChosen = choice != nullptr && !choice->isFromPreset;
        const bool isOnlyKind = m_default != nullptr && m_draft.formatTree[P::KEY_STREAMS].Count() == 1;
        if (!isChosen && !isOnlyKind) return;
        if (m_default == nullptr) {
            throw RequestError("--subtitles: the format '" + m_draft.plan.formatId + "' holds none");
        }
        if (sources.empty()) throw RequestError("there are no subtitles in the input");
        const bool hasText = std::any_of(sources.begin(), sources.end(), [](const auto* s) { return s->isText; });
        if (hasText) return;
        throw RequestError("the subtitles of the input (" + sources.front()->codecId + ") are pictures");
    }

    /// The codec that text becomes; empty where the container has none.
    std::string CodecFor(const SubtitleSource& source, const Request& own) const {
        const std::string asked = own.TextAt(Path({Kind(), C::TAG_CODEC_ID}));
        if (!asked.empty() && asked != C::CODEC_ID_AUTO) return asked;
        if (m_default == nullptr) return {};
        const std::string preferred[] = {
            (*m_default)[Kind()][C::TAG_CODEC_ID].GetString(), source.codecId,
            m_muxer != nullptr ? avcodec_get_name(m_muxer->subtitle_codec) : std::string()};
        const auto isFit = [this](const std::string& id) {
            return Holds(m_codecs, id) && IsText(id) &&
                   static_cast<bool>(Proc::FindEncoder(CodecNameOf(id), Proc::ImplNames::FFMPEG));
        };
        const auto best = std::find_if(std::begin(preferred), std::end(preferred), isFit);
        if (best != std::end(preferred)) return *best;
        const auto first = std::find_if(m_codecs.begin(), m_codecs.end(), isFit);
        return first != m_codecs.end() ? *first : std::string();
    }

    /// FFmpeg has the word on what the rule book does not judge; where FFmpeg does not know, the container's list has.
    bool TakesAsItIs(const SubtitleSource& source) const {
        if (m_muxer == nullptr) return false;
        const int answer = avformat_query_codec(m_muxer, CodecIDFromTextID(source.codecId), FF_COMPLIANCE_NORMAL);
        return answer > 0 || (answer < 0 && Holds(m_codecs, source.codecId));
    }

    void Encode(const SubtitleSource& source, const std::string& codecId) {
        RequireEncodable(m_draft.format, Kind(), P::STREAM_TYPE_SUBTITLES_TEXT, codecId);
        StreamPlan settled;
        settled.kind = StreamKind::Subtitle;
        settled.source = WordsFor(source);
        settled.settled = Property(std::string("subtitles"));
        settled.settled.SetChildT(C::TAG_CODEC_ID, codecId);
        settled.asked = settled.settled;
        settled.sections = SectionsOf(settled);
        m_draft.plan.job.subtitles.push_back({source.streamIndex, CodecNameOf(codecId)});
        m_draft.Add(std::move(settled), source);
    }

    Draft& m_draft;
    const AVOutputFormat* m_muxer;
    const Property* m_default;          ///< the container's default stream of subtitles, or null
    std::vector<std::string> m_codecs;  ///< that the rule book lets the container have
    int m_left;                         ///< how many may still go
};

}  // namespace

void PlanSubtitles(Draft& draft, const std::vector<const SubtitleSource*>& sources) {
    SubtitlePlanner(draft).Run(sources);
}

}  // namespace NorvexExport
