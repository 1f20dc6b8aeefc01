#include "Selection.h"

#include <algorithm>
#include <iterator>

#include "Containers.h"
#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using F = IFormatFile;
using P = IPreset;
using V = IFormatCodecVideo;

StreamKind KindOf(const VideoSource& source) {
    return source.isAttachedPicture ? StreamKind::Cover : StreamKind::Video;
}
StreamKind KindOf(const AudioSource& source) {
    (void)source;
    return StreamKind::Audio;
}
StreamKind KindOf(const SubtitleSource& source) {
    (void)source;
    return StreamKind::Subtitle;
}
StreamKind KindOf(const AttachmentSource& source) {
    (void)source;
    return StreamKind::Attachment;
}
StreamKind KindOf(const StreamSource& source) {
    (void)source;
    return StreamKind::Data;
}

bool Fits(const StreamChoice& choice, const StreamSource& source, StreamKind kind) {
    return (!choice.stream || *choice.stream == source.streamIndex) && (!choice.kind || *choice.kind == kind) &&
           (choice.language.empty() || choice.language == source.language);
}

class Selector {
public:
    explicit Selector(Draft& draft)
        : m_draft(draft),
          m_request(draft.plan.request),
          m_format("'" + draft.plan.formatId + "' holds "),
          m_others(draft.LimitOf(F::TAG_LIMITS_OTHER)) {}

    Selection Run() {
        const InputInfo& input = m_draft.plan.input;
        Selection selection;
        for (const VideoSource* const source : Wanted(input.video, !m_request.noVideo)) {
            (source->isAttachedPicture ? selection.covers : selection.pictures).push_back(source);
        }
        selection.sounds = Wanted(input.audio, !m_request.noAudio);
        selection.subtitles = Wanted(input.subtitles, !m_request.noSubtitles);
        selection.attachments = Wanted(input.attachments, true);
        selection.data = Wanted(input.data, true);
        RequireAllChosen();
        LeaveOutUnwanted();
        LimitPictures(selection);
        LimitSounds(selection.sounds);
        if (!KeepsAttachments(m_draft.plan.formatId)) LeaveOut(selection.attachments, "no attachments");
        if (!m_request.copy) {
            m_draft.LeaveOut(selection.data, "data goes over with --copy alone");
            selection.data.clear();
        }
        KeepOthers("attachments", selection.attachments);
        KeepOthers("data streams", selection.data);
        return selection;
    }

private:
    /// The streams of a list that the user wants; without a word of the user, those of the main programme.
    template <class Source>
    std::vector<const Source*> Wanted(const std::vector<Source>& sources, bool isKindWanted) {
        std::vector<const Source*> wanted;
        for (const Source& source : sources) {
            bool isWanted = m_request.streams.empty();
            for (const StreamChoice& choice : m_request.streams) {
                if (!Fits(choice, source, KindOf(source))) continue;
                isWanted = true;
                m_chosen.push_back(&choice);
            }
            if (!isWanted || !isKindWanted) continue;
            const bool isElsewhere = m_request.streams.empty() && !source.isInMainProgramme;
            // What is decoded is pictures, sound, and text; the rest goes over as it is or not at all.
            const StreamKind kind = KindOf(source);
            const bool mustDecode = !m_request.copy && (kind == StreamKind::Video || kind == StreamKind::Audio);
            const bool isBroken = mustDecode && !source.isDecodable;
            if (isElsewhere || isBroken) {
                (isElsewhere ? m_elsewhere : m_broken).push_back(source.streamIndex);
            } else {
                wanted.push_back(&source);
            }
        }
        return wanted;
    }

    void LeaveOutUnwanted() {
        for (std::vector<int>* const streams : {&m_elsewhere, &m_broken}) std::sort(streams->begin(), streams->end());
        m_draft.LeaveOut(m_elsewhere, "only one programme of the input is taken where --streams says nothing else");
        m_draft.LeaveOut(m_broken, "this build of FFmpeg cannot decode everything");
    }

    void RequireAllChosen() const {
        for (const StreamChoice& choice : m_request.streams) {
            if (std::find(m_chosen.begin(), m_chosen.end(), &choice) != m_chosen.end()) continue;
            throw RequestError("--streams: '" + choice.text + "' is no stream of the input; it has " + AllStreams());
        }
    }

    /// "0 picture, 1 sound eng, 2 subtitles".
    std::string AllStreams() const {
        std::vector<std::pair<int, std::string>> streams;
        const auto add = [&streams](const auto& list) {
            for (const auto& source : list) {
                streams.emplace_back(source.streamIndex,
                                     NameOf(KindOf(source)) + (source.language.empty() ? "" : " " + source.language));
            }
        };
        const InputInfo& input = m_draft.plan.input;
        add(input.video), add(input.audio), add(input.subtitles), add(input.attachments), add(input.data);
        std::sort(streams.begin(), streams.end());
        std::vector<std::string> words;
        for (const auto& [index, name] : streams) words.push_back(std::to_string(index) + " " + name);
        return Join(words);
    }

    template <class Source>
    void LeaveOut(std::vector<const Source*>& streams, const std::string& whatItHolds) {
        m_draft.LeaveOut(streams, m_format + whatItHolds);
        streams.clear();
    }

    void LimitPictures(Selection& selection) {
        const Core::Property* const stream = FindStream(m_draft.formatTree, P::STREAM_TYPE_VIDEO);
        const std::string codecPath = Path({P::KEY_FILTER_VIDEO_CODEC, IFormatCodec::TAG_CODEC_ID});
        const bool isCodecChosen = m_request.Find(codecPath) != nullptr;
        const int limit = m_draft.LimitOf(F::TAG_LIMITS_VIDEO);
        if (stream != nullptr && stream->ChildExists(V::TAG_COVER_FLAG)) {
            // Its pictures are covers by definition.
            if (!isCodecChosen && !selection.pictures.empty()) {
                LeaveOut(selection.pictures, "sound, and takes a picture for its cover where --video is given");
            }
            if (selection.covers.empty()) selection.covers.swap(selection.pictures);
            LeaveOut(selection.pictures, "no picture beside its cover");
            KeepWithin(limit, selection.covers, "cover");
            return;
        }
        const bool isOnlyKind = stream != nullptr && m_draft.formatTree[P::KEY_STREAMS].Count() == 1;
        if (selection.pictures.empty() && stream != nullptr && (isOnlyKind || isCodecChosen)) {
            selection.pictures.swap(selection.covers);
        }
        if (stream == nullptr) {
            LeaveOut(selection.pictures, "no pictures");
        } else {
            KeepWithin(limit, selection.pictures, "picture");
        }
        LimitCovers(selection.covers);
    }

    void LimitCovers(std::vector<const VideoSource*>& covers) {
        const auto isUnknown = [this](const VideoSource* cover) {
            return !KeepsCover(m_draft.plan.formatId, cover->codecId);
        };
        const auto firstUnknown =
            std::stable_partition(covers.begin(), covers.end(), [&](const auto* cover) { return !isUnknown(cover); });
        std::vector<const VideoSource*> unknown(firstUnknown, covers.end());
        covers.erase(firstUnknown, covers.end());
        const bool holdsSome = KeepsCover(m_draft.plan.formatId, "mjpeg");
        LeaveOut(unknown, holdsSome && !unknown.empty() ? "no covers of " + unknown.front()->codecId : "no covers");
        KeepOthers("covers", covers);
    }

    void LimitSounds(std::vector<const AudioSource*>& sounds) {
        if (FindStream(m_draft.formatTree, P::STREAM_TYPE_AUDIO) == nullptr) {
            LeaveOut(sounds, "no sound");
        } else {
            KeepWithin(m_draft.LimitOf(F::TAG_LIMITS_AUDIO), sounds, "sound");
        }
    }

    /// Keeps as many streams as the limit allows, the main one among them.
    template <class Source>
    void KeepWithin(int limit, std::vector<const Source*>& streams, const std::string& name) {
        std::vector<const Source*> left;
        while (streams.size() > static_cast<std::size_t>(limit)) {
            const auto last = std::find_if(streams.rbegin(), streams.rend(),
                                           [&](const Source* source) { return !source->isMain || limit == 0; });
            left.insert(left.begin(), *last);
            streams.erase(std::next(last).base());
        }
        LeaveOut(left, limit == 0 ? "no " + name : std::to_string(limit) + " " + name + (limit == 1 ? "" : "s"));
    }

    /// The same for what shares the limit of other streams.
    template <class Source>
    void KeepOthers(const std::string& names, std::vector<const Source*>& streams) {
        std::vector<const Source*> left;
        while (streams.size() > static_cast<std::size_t>(m_others)) {
            left.insert(left.begin(), streams.back());
            streams.pop_back();
        }
        m_others -= static_cast<int>(streams.size());
        LeaveOut(left, "no " + (streams.empty() && m_others == 0 ? names : "more " + names));
    }

    Draft& m_draft;
    const Request& m_request;
    std::string m_format;
    int m_others;  ///< how many covers, attachments and streams of data may still go
    std::vector<const StreamChoice*> m_chosen;
    std::vector<int> m_elsewhere;  ///< of other programmes
    std::vector<int> m_broken;     ///< that cannot be decoded
};

}  // namespace

Selection SelectStreams(Draft& draft) {
    return Selector(draft).Run();
}

}  // namespace NorvexExport
