#include "norvex/Conf/Review/Fit.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/Conf/DataHelpers/Queries/Census.h"
#include "norvex/Conf/DataHelpers/Queries/CodecIsSupported.h"
#include "norvex/Conf/DataHelpers/Queries/FormatMuxers.h"
#include "norvex/Conf/DataHelpers/Queries/Muxers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/Conf/Review/Refusal.h"
#include "norvex/Conf/Review/Sentences.h"
#include "norvex/interfaces/Conf/FormatDescriptions.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using F = IFormatFile;
using P = IPreset;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;
using Answer = StreamFit::Answer;

// ------------------------------------------------------------------------------------------------------- words

// gettext messages. The marks stand for: %1 the stream's codec, %2 the container, %3 more.
const char* const asItIsMessage = "%2 takes %1 as it is";
const char* const refusedMessage = "FFmpeg carries %1 in %2, but the rule book refuses it: %3";
const char* const notCarriedMessage = "%2 does not carry %1";
const char* const notWrittenMessage = "the rule book lets %1 into %2, but FFmpeg does not write it";
const char* const onePictureMessage = "%2 holds one picture";
const char* const cannotEncodeMessage = "%2 does not carry %1, and nothing that it carries can be made of it here";
const char* const cannotDecodeMessage = "%2 does not carry %1, and this FFmpeg cannot decode it";
const char* const pictureSubtitlesMessage = "%2 does not carry %1, and subtitles that are pictures are not encoded";
const char* const noMuxerMessage = "this FFmpeg does not write %2";
const char* const noVideoMessage = "%2 holds no pictures";
const char* const coverOnlyMessage = "%2 holds pictures as covers alone";
const char* const noAudioMessage = "%2 holds no sound";
const char* const noSubtitlesMessage = "%2 holds no subtitles";
const char* const noCoverMessage = "%2 keeps no cover of %1";
const char* const noOtherMessage = "%2 keeps no attachments or data of %1";
const char* const tooManyMessage = "%2 holds no more than %3 of them";
const char* const unknownMessage = "nothing is known of the stream";

// What FFmpeg writes and nobody can read, or not as what it is. docs/sweep.md tells how that was found.
constexpr const char* unreadableMessage = "FFmpeg writes %1 to %2 so that the packets cannot be told apart";
constexpr const char* unwrittenMessage = "FFmpeg says that %2 carries %1, and does not write it";
constexpr const char* namelessMessage = "FFmpeg writes %1 to %2 so that players cannot tell what it is";
constexpr const char* otherBytesMessage = "FFmpeg writes %1 to %2, where players take it for the other order of bytes";
constexpr const char* otherNumberMessage = "FFmpeg writes %1 to %2 under a number that players take for MP3";
constexpr const char* ratesMessage = "FFmpeg writes %1 to %2 at %3 Hz alone";
constexpr const char* webpFilmMessage = "FFmpeg writes films of WebP and does not read them";

struct Fault {
    const char* container;  ///< its id, or FFmpeg's name of its muxer
    const char* codecs;     ///< FFmpeg's names, between spaces
    const char* message;
    const char* rates = nullptr;  ///< in Hz: at any other rate alone; null for every stream
};

// clang-format off
constexpr Fault g_faults[] = {
    {"wav",      " aac ",                                unreadableMessage},
    {"w64",      " aac adpcm_swf dfpwm speex vorbis ",   unreadableMessage},
    {"caf",      " flac ",                               unreadableMessage},
    {"flv",      " mpeg4 ",                              unreadableMessage},
    {"aiff",     " adpcm_g722 ",                         unwrittenMessage},
    {"avi",      " flac ",                               unwrittenMessage},
    {"caf",      " aac ",                                unwrittenMessage},
    {"matroska", " rv10 rv20 ",                          unwrittenMessage},
    {"mov",      " av1 flac opus truehd vp8 vp9 ",       unwrittenMessage},
    {"ogv",      " vp9 ",                                unwrittenMessage},
    {"flv",      " h263 ",                               namelessMessage},  // another H.263 has its number
    {"mpeg2ts",  " dirac mpeg4 ",                        namelessMessage},
    {"flv",      " pcm_s16be ",                          otherBytesMessage},
    {"mp4",      " mp2 ",                                otherNumberMessage},
    {"flv",      " pcm_s16le pcm_u8 ",                   ratesMessage, "44100, 22050, 11025"},
    {"flv",      " pcm_alaw pcm_mulaw ",                 ratesMessage, "8000"},
    {"flv",      " speex ",                              ratesMessage, "16000"},
    {"flv",      " mp3 ",                                ratesMessage, "48000, 44100, 22050, 11025"},
    {"swf",      " mp3 ",                                ratesMessage, "44100, 22050, 11025"},
};
// clang-format on

bool Contains(std::string_view list, const std::string& word) {
    return list.find(word) != std::string_view::npos;
}

/// What is wrong with sound of this rate, or with a stream whose rate is 0, for none or one that can be chosen.
const Fault* FaultOf(const std::string& formatId, const std::string& muxer, const std::string& codecId,
                     long long rate) {
    const auto* const fault = std::find_if(std::begin(g_faults), std::end(g_faults), [&](const Fault& row) {
        const bool isHere = formatId == row.container || muxer == row.container;
        if (!isHere || !Contains(row.codecs, " " + codecId + " ")) return false;
        if (row.rates == nullptr) return true;
        return rate != 0 && !Contains(" " + std::string(row.rates) + ",", " " + std::to_string(rate) + ",");
    });
    return fault != std::end(g_faults) ? fault : nullptr;
}

// ------------------------------------------------------------------------------------------------- descriptions

/// A host's description, with settings of our own in the place of its own.
class UnchangedAudio final : public RefCounted<IFormatCodecAudio> {
public:
    UnchangedAudio(Property settings, const IFormatCodecAudio& original)
        : m_settings(std::move(settings)), m_original(&original) {}

    const Property& GetProperty() const override { return m_settings; }
    MediaType GetMediaType() const override { return MediaType::Audio; }
    SP<const ICodecData> GetCodecData() const override { return m_original->GetCodecData(); }
    ChannelLayout GetChannelLayout() const override { return m_original->GetChannelLayout(); }

private:
    const Property m_settings;
    const SP<const IFormatCodecAudio> m_original;
};

/// What is read of a description, once for all containers.
struct Stream {
    StreamKind kind = StreamKind::Other;
    std::string codecId;
    AVCodecID codec = AV_CODEC_ID_NONE;
    AVMediaType type = AVMEDIA_TYPE_UNKNOWN;
    long long tag = 0;
    long long sampleRate = 0;  ///< Hz; 0 where unknown
    bool isKnown = false;
    bool isDecodable = false;
    SP<const IFormatCodec> unchanged;  ///< the description marked as going over unchanged; null where it cannot be
    Property values;                   ///< what encoding starts from: the source's values under the flat node's name
};

/// The value of a description if it is there and of that type.
const Property* Find(const Property& settings, const std::string& tag, PropertyTypes type) {
    const auto child = settings.FindChild(tag);
    return child != settings.end() && child->GetType() == type ? &*child : nullptr;
}

SP<const IFormatCodec> MarkUnchanged(const IFormatCodec& description) {
    Property settings = description.GetProperty();
    settings.SetChildT(C::TAG_LOSSLESS, true);
    settings.SetChildT(C::TAG_MAIN_STREAM, true);
    if (!settings.ChildExists(C::TAG_FOURCC)) settings.SetChildT(C::TAG_FOURCC, 0);
    switch (description.GetMediaType()) {
        case MediaType::Video:
            return FormatCodecVideo::Create(std::move(settings),
                                            dynamic_cast<const IFormatCodecVideo&>(description).GetPixelFormat(),
                                            description.GetCodecData());
        case MediaType::Audio:
            return SP<const IFormatCodec>(
                new UnchangedAudio(std::move(settings), dynamic_cast<const IFormatCodecAudio&>(description)));
        case MediaType::None:
            break;
    }
    return FormatCodecSubtitle::Create(std::move(settings));
}

StreamKind KindOf(MediaType type, AVMediaType ofCodec, bool isCover) {
    if (type == MediaType::Video) return isCover ? StreamKind::Cover : StreamKind::Video;
    if (type == MediaType::Audio) return StreamKind::Audio;
    return ofCodec == AVMEDIA_TYPE_SUBTITLE ? StreamKind::Subtitle : StreamKind::Other;
}

/// The source's values as a stream that is to be encoded. What correction cannot do without, and the description does
/// not tell, gets a value that most encoders take.
Property ValuesOf(const Property& settings, MediaType type) {
    const bool isVideo = type == MediaType::Video;
    Property values(isVideo ? V::TAG_FORMAT_CODEC_VIDEO : A::TAG_FORMAT_CODEC_AUDIO);
    values.SetChildT(C::TAG_CODEC_ID, std::string());
    if (!isVideo) {
        values.SetChildT(A::TAG_SAMPLE_RATE, 48000);
        values.SetChildT(A::TAG_SAMPLE_FORMAT, "s16");
        values.SetChildT(A::TAG_LAYOUT, A::TAG_CH_LAYOUT_STEREO);
    }
    const std::pair<const std::string&, PropertyTypes> tags[] = {
        {V::TAG_WIDTH, PT_INT64},       {V::TAG_HEIGHT, PT_INT64},         {V::TAG_FPS, PT_RATIO},
        {A::TAG_SAMPLE_RATE, PT_INT64}, {A::TAG_SAMPLE_FORMAT, PT_STRING}, {A::TAG_LAYOUT, PT_STRING},
    };
    for (const auto& [tag, valueType] : tags) {
        if (const Property* const value = Find(settings, tag, valueType)) values.SetChild(tag, *value);
    }
    return values;
}

/// Whatever a description throws, the stream is one of which less is known.
Stream Read(const SP<const IFormatCodec>& description) {
    Stream stream;
    if (!description) return stream;
    try {
        const Property& settings = description->GetProperty();
        const MediaType type = description->GetMediaType();
        if (const Property* const id = Find(settings, C::TAG_CODEC_ID, PT_STRING)) stream.codecId = id->GetString();
        if (const Property* const tag = Find(settings, C::TAG_FOURCC, PT_INT64)) stream.tag = tag->GetInt64();
        if (const Property* const rate = Find(settings, A::TAG_SAMPLE_RATE, PT_INT64)) {
            stream.sampleRate = rate->GetInt64();
        }
        stream.codec = CodecIDFromTextID(stream.codecId);
        stream.type = avcodec_get_type(stream.codec);
        const Property* const cover = Find(settings, V::TAG_COVER_FLAG, PT_BOOL);
        stream.kind = KindOf(type, stream.type, cover != nullptr && cover->GetBool());
        stream.values = ValuesOf(settings, type);
        stream.isKnown = stream.codec != AV_CODEC_ID_NONE;
        stream.isDecodable = HasDecoder(stream.codec);
        stream.unchanged = MarkUnchanged(*description);
    } catch (...) {
        // What was read so far stands.
    }
    return stream;
}

// --------------------------------------------------------------------------------------------------- containers

/// Subtitle codecs have an older name each, and lists hold one of the two.
const std::string& OtherNameOf(const std::string& codecId) {
    static const std::pair<const std::string&, const std::string&> names[] = {
        {S::CODEC_ID_SRT, S::CODEC_ID_SUBRIP},
        {S::CODEC_ID_SUBRIP, S::CODEC_ID_SRT},
        {S::CODEC_ID_SSA, S::CODEC_ID_ASS},
        {S::CODEC_ID_ASS, S::CODEC_ID_SSA},
    };
    const auto* const row =
        std::find_if(std::begin(names), std::end(names), [&](const auto& name) { return name.first == codecId; });
    return row != std::end(names) ? row->second : codecId;
}

/// FFmpeg's number of a codec, of its later name where it has two: encoders go by that.
AVCodecID NumberOf(const std::string& codecId) {
    const bool isOld = codecId == S::CODEC_ID_SRT || codecId == S::CODEC_ID_SSA;
    return CodecIDFromTextID(isOld ? OtherNameOf(codecId) : codecId);
}

/// FFmpeg counts fonts as data; in a container they are attachments.
bool IsFont(AVCodecID codec) {
    return codec == AV_CODEC_ID_TTF || codec == AV_CODEC_ID_OTF;
}

bool IsText(AVCodecID codec) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

/// Where the catalogue and the trees have what is about a kind of stream.
struct Place {
    const std::string& streamType;
    const std::string& codecKey;
    const std::string& limit;
};

const Place& PlaceOf(StreamKind kind) {
    static const Place video = {P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, F::TAG_LIMITS_VIDEO};
    static const Place audio = {P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, F::TAG_LIMITS_AUDIO};
    static const Place text = {P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC, F::TAG_LIMITS_SUBTITLE};
    if (kind == StreamKind::Audio) return audio;
    return kind == StreamKind::Subtitle ? text : video;
}

/// A container, as far as it is asked whether codecs may go into it.
class Container {
public:
    Container(const std::string& formatId, SP<const IDataHelper> format)
        : id(formatId), helper(std::move(format)), muxerName(MuxerOf(formatId)), muxer(FindMuxer(muxerName)) {
        Property defaults = helper->GetDefaults();
        helper->GetConstraints(m_constraints);
        limits.video = LimitOf(defaults, F::TAG_LIMITS_VIDEO);
        limits.audio = LimitOf(defaults, F::TAG_LIMITS_AUDIO);
        limits.subtitle = LimitOf(defaults, F::TAG_LIMITS_SUBTITLE);
        limits.other = LimitOf(defaults, F::TAG_LIMITS_OTHER);
        holdsOnePicture = HoldsOnePicture(formatId);
        holdsCover = HasCover(defaults);
        description = FormatFile::Create(std::move(defaults));
    }

    /// The id under which the container offers the codec; empty where it does not.
    std::string Offers(StreamKind kind, const std::string& codecId) const {
        const IPropertyConstraint* const codecs = CodecsOf(kind);
        if (codecs == nullptr) return {};
        for (const std::string& name : {codecId, OtherNameOf(codecId)}) {
            if (codecs->IsValid(Property(std::string(), name))) return name;
        }
        return {};
    }

    std::string DefaultOf(StreamKind kind) const {
        const IPropertyConstraint* const codecs = CodecsOf(kind);
        Property codecId{std::string(), std::string()};
        // A text that is no codec becomes the default.
        if (codecs != nullptr) codecs->Fixup(codecId);
        return codecId.GetString();
    }

    std::vector<Property> AllOf(StreamKind kind) const {
        const IPropertyConstraint* const codecs = CodecsOf(kind);
        return codecs != nullptr ? WhatIsAllowed(*codecs).values : std::vector<Property>();
    }

    bool HasKind(StreamKind kind) const { return CodecsOf(kind) != nullptr; }

    /// FFmpeg's word: 1 that the muxer carries the codec, 0 that it does not, negative that it does not know.
    int AskMuxer(AVCodecID codec) const { return avformat_query_codec(muxer, codec, FF_COMPLIANCE_NORMAL); }

    const std::string& id;
    const SP<const IDataHelper> helper;
    const std::string muxerName;
    const AVOutputFormat* const muxer;
    StreamLimits limits;
    bool holdsOnePicture = false;
    bool holdsCover = false;  ///< its pictures are covers
    SP<const IFormatFile> description;

private:
    static int LimitOf(const Property& defaults, const std::string& tag) {
        const std::string path = Path(F::TAG_LIMITS, tag);
        return defaults.ChildExists(path) ? static_cast<int>(defaults[path].GetInt64()) : 0;
    }

    static bool HasCover(const Property& defaults) {
        if (!defaults.ChildExists(P::KEY_STREAMS)) return false;
        const Property& streams = defaults[P::KEY_STREAMS];
        return std::any_of(streams.begin(), streams.end(),
                           [](const Property& stream) { return stream.ChildExists(V::TAG_COVER_FLAG); });
    }

    const IPropertyConstraint* CodecsOf(StreamKind kind) const {
        const Place& place = PlaceOf(kind);
        const auto codecs = m_constraints.find(StreamCodecPattern(place.streamType, place.codecKey));
        return codecs != m_constraints.end() ? codecs->second.get() : nullptr;
    }

    ConstraintMap m_constraints;
};

// ------------------------------------------------------------------------------------------------------ fitting

/// A frame size, in pixels.
using Size = std::pair<long long, long long>;

/// What is worth keeping between containers.
class Fitter {
public:
    explicit Fitter(const std::vector<SP<const IFormatCodec>>& streams) {
        m_streams.reserve(streams.size());
        std::transform(streams.begin(), streams.end(), std::back_inserter(m_streams), Read);
    }

    FormatFit Into(const std::string& formatId, const SP<const IDataHelper>& helper) {
        const Container container(formatId, helper);
        FormatFit fit;
        fit.formatId = formatId;
        fit.limits = container.limits;
        StreamLimits left = container.limits;
        for (const Stream& stream : m_streams) fit.streams.push_back(FitStream(container, stream, left));
        return fit;
    }

private:
    /// How many streams of the kind the container still takes.
    static int& RoomFor(StreamKind kind, const Container& container, StreamLimits& left) {
        switch (kind) {
            case StreamKind::Video:
                return left.video;
            case StreamKind::Audio:
                return left.audio;
            case StreamKind::Subtitle:
                return left.subtitle;
            case StreamKind::Cover:
                return container.holdsCover || container.holdsOnePicture ? left.video : left.other;
            case StreamKind::Other:
                break;
        }
        return left.other;
    }

    static int LimitFor(StreamKind kind, const Container& container) {
        StreamLimits limits = container.limits;
        return RoomFor(kind, container, limits);
    }

    StreamFit FitStream(const Container& container, const Stream& stream, StreamLimits& left) {
        StreamFit fit;
        fit.kind = stream.kind;
        fit.codecId = stream.codecId;
        const auto conclude = [&](const char* message, const std::string& more = {}) {
            fit.reason = Say(message, {stream.codecId, container.id, more});
            return fit;
        };
        if (!stream.isKnown) return conclude(unknownMessage);
        if (container.muxer == nullptr) return conclude(noMuxerMessage);
        if (const char* const message = WhyNoRoom(container, stream)) return conclude(message);
        int& room = RoomFor(stream.kind, container, left);
        if (room == 0) return conclude(tooManyMessage, std::to_string(LimitFor(stream.kind, container)));

        const Judgement judgement = JudgeUnchanged(container, stream);
        const Refusal refusal = judgement.refusal;
        if (judgement.message == asItIsMessage) {
            fit.answer = Answer::AsItIs;
            --room;
            return conclude(asItIsMessage);
        }
        const char* const obstacle = Encode(container, stream, fit);
        if (refusal != Refusal::None) {
            fit.answer = Answer::Refused;
        } else if (obstacle == nullptr) {
            fit.answer = Answer::Encoded;
        } else {
            return conclude(obstacle);
        }
        fit.isEncoded = obstacle == nullptr;
        --room;
        return conclude(judgement.message, refusal != Refusal::None
                                               ? WordsFor(refusal, container.id, stream.codecId, stream.tag)
                                               : judgement.rates);
    }

    /// Why the container has no place for such a stream at all, or null.
    static const char* WhyNoRoom(const Container& container, const Stream& stream) {
        const bool hasRoom = LimitFor(stream.kind, container) > 0;
        switch (stream.kind) {
            case StreamKind::Video:
                if (container.holdsCover) return coverOnlyMessage;
                return hasRoom && container.HasKind(stream.kind) ? nullptr : noVideoMessage;
            case StreamKind::Audio:
                return hasRoom && container.HasKind(stream.kind) ? nullptr : noAudioMessage;
            case StreamKind::Subtitle:
                return hasRoom ? nullptr : noSubtitlesMessage;
            case StreamKind::Cover:
                if (hasRoom && (container.holdsCover || container.holdsOnePicture)) return nullptr;
                return hasRoom && KeepsCover(container.id, stream.codecId) ? nullptr : noCoverMessage;
            case StreamKind::Other:
                break;
        }
        return hasRoom ? nullptr : noOtherMessage;
    }

    /// Whether a stream goes over as it is: then with asItIsMessage.
    struct Judgement {
        const char* message = notCarriedMessage;
        Refusal refusal = Refusal::None;  ///< the clause where the book alone refuses it
        std::string rates = {};           ///< of which the message tells
    };

    static Judgement JudgeUnchanged(const Container& container, const Stream& stream) {
        if (container.holdsOnePicture) return {onePictureMessage};
        if (container.id == ModernFormats::FORMAT_WEBP_ANIM) return {webpFilmMessage};
        if (stream.kind == StreamKind::Cover) {  // of which CodecIsSupported knows nothing
            return {KeepsCover(container.id, stream.codecId) ? asItIsMessage : notCarriedMessage};
        }
        if (IsFont(stream.codec) && KeepsAttachments(container.id)) return {asItIsMessage};
        if (const Fault* const fault = FaultOf(container.id, container.muxerName, stream.codecId, stream.sampleRate)) {
            return {fault->message, Refusal::None, fault->rates != nullptr ? fault->rates : ""};
        }
        const int word = container.AskMuxer(stream.codec);
        const Refusal refusal = AskBook(container, stream);
        if (refusal == Refusal::None) return {word != 0 ? asItIsMessage : notWrittenMessage};
        // Where FFmpeg does not know, the container's list has the word.
        const bool isCarried = word > 0 || (word < 0 && !container.Offers(stream.kind, stream.codecId).empty());
        return isCarried ? Judgement{refusedMessage, refusal} : Judgement();
    }

    static Refusal AskBook(const Container& container, const Stream& stream) {
        if (!stream.unchanged) return Refusal::Unreadable;
        try {
            if (CodecIsSupported(container.description, stream.unchanged)) return Refusal::None;
            return WhyRefused(container.id, *stream.unchanged);
        } catch (...) {
            return Refusal::Unreadable;
        }
    }

    /// Settles what the stream is encoded to. Returns why it cannot be, or null.
    const char* Encode(const Container& container, const Stream& stream, StreamFit& fit) {
        if (stream.kind == StreamKind::Other) return noOtherMessage;
        if (!stream.isDecodable) return cannotDecodeMessage;
        if (!container.HasKind(stream.kind)) {
            return stream.kind == StreamKind::Subtitle ? noSubtitlesMessage : noCoverMessage;
        }
        if (stream.kind == StreamKind::Cover && !container.holdsCover && !container.holdsOnePicture) {
            return noCoverMessage;
        }
        if (stream.kind == StreamKind::Subtitle && !IsText(stream.codec)) return pictureSubtitlesMessage;
        fit.isOnePicture = stream.kind == StreamKind::Video && container.holdsOnePicture;
        if (CensusIsEmpty()) return nullptr;
        fit.encodedTo = TargetOf(container, stream);
        if (!fit.encodedTo.empty()) {
            if (stream.kind != StreamKind::Subtitle) fit.changes = ChangesFor(container, stream, fit.encodedTo);
            return nullptr;
        }
        return cannotEncodeMessage;
    }

    static bool IsEncodable(const Container& container, const Stream& stream, const std::string& codecId) {
        const AVCodecID number = NumberOf(codecId);
        if (number == AV_CODEC_ID_NONE || !CensusHas(number)) return false;
        // A still picture is written by a muxer that takes any.
        if (!container.holdsOnePicture && container.AskMuxer(number) == 0) {
            const bool isCover = container.holdsCover && stream.kind == StreamKind::Cover;
            if (!isCover || !KeepsCover(container.id, codecId)) return false;
        }
        if (stream.kind == StreamKind::Subtitle) return IsText(number);
        return GetAvailableDataHelpers(PlaceOf(stream.kind).codecKey).count(codecId) > 0;
    }

    static std::string TargetOf(const Container& container, const Stream& stream) {
        const std::string same = container.Offers(stream.kind, stream.codecId);
        if (!same.empty() && FaultOf(container.id, container.muxerName, same, 0) == nullptr &&
            IsEncodable(container, stream, same)) {
            return same;
        }
        const std::string byDefault = container.DefaultOf(stream.kind);
        if (IsEncodable(container, stream, byDefault)) return byDefault;
        // The default may be pictures.
        if (stream.kind != StreamKind::Subtitle) return {};
        for (const Property& codec : container.AllOf(stream.kind)) {
            if (IsEncodable(container, stream, codec.GetString())) return codec.GetString();
        }
        return {};
    }

    /// What the helpers make of the source's values.
    std::vector<ChangedSetting> ChangesFor(const Container& container, const Stream& stream,
                                           const std::string& codecId) {
        const auto& helpers = GetAvailableDataHelpers(PlaceOf(stream.kind).codecKey);
        const IDataHelper& codec = *helpers.at(codecId);
        Property settled = stream.values;
        settled.SetChildT(C::TAG_CODEC_ID, codecId);
        try {
            container.helper->CorrectFormatCodec(settled);
            codec.CorrectFormatCodec(settled);
        } catch (...) {
            // What was corrected before stays so; what cannot be corrected was never legal.
        }
        if (stream.kind != StreamKind::Audio) Resize(codecId, codec, settled);
        std::vector<ChangedSetting> changes;
        const Property& described = stream.unchanged ? stream.unchanged->GetProperty() : stream.values;
        for (const Property& before : stream.values) {
            const std::string& tag = before.GetName();
            const auto after = settled.FindChild(tag);
            if (tag == C::TAG_CODEC_ID || !described.ChildExists(tag) || after == settled.end()) continue;
            if (*after != before && !IsMark(*after)) changes.push_back({tag, before, *after});
        }
        return changes;
    }

    /// The mark of the source's own frame rate says that nothing changes.
    static bool IsMark(const Property& value) {
        return value.GetName() == V::TAG_FPS && value.GetType() == PT_RATIO && value.GetRatio() == Core::Ratio(0, 1);
    }

    /// Sizes must be even, and a few codecs have sizes of their own.
    void Resize(const std::string& codecId, const IDataHelper& codec, Property& settled) {
        if (!settled.ChildExists(V::TAG_WIDTH) || !settled.ChildExists(V::TAG_HEIGHT)) return;
        Property& width = settled[V::TAG_WIDTH];
        Property& height = settled[V::TAG_HEIGHT];
        const std::vector<Size>& sizes = SizesOf(codecId, codec);
        const Size size = {width.GetInt64(), height.GetInt64()};
        if (sizes.empty()) {
            width = std::max(2LL, size.first / 2 * 2);
            height = std::max(2LL, size.second / 2 * 2);
        } else if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) {
            const auto distance = [&size](const Size& one) {
                return std::abs(static_cast<double>(one.first) * static_cast<double>(one.second) -
                                static_cast<double>(size.first) * static_cast<double>(size.second));
            };
            const Size nearest =
                *std::min_element(sizes.begin(), sizes.end(),
                                  [&distance](const auto& a, const auto& b) { return distance(a) < distance(b); });
            width = nearest.first;
            height = nearest.second;
        }
    }

    /// The frame sizes that a codec offers at its defaults; empty where any will do.
    const std::vector<Size>& SizesOf(const std::string& codecId, const IDataHelper& codec) {
        const auto known = m_sizes.find(codecId);
        if (known != m_sizes.end()) return known->second;
        std::vector<Size>& sizes = m_sizes[codecId];
        Property preset(std::string("preset"));
        preset.SetChild(P::KEY_FILTER_VIDEO_CODEC, codec.GetDefaults());
        RuleList rules;
        codec.GetValidationRules(rules);
        for (const auto& [key, rule] : rules) {
            if (!rule || rule->GetSecondPath() != FrameSizeModePath()) continue;
            const auto condition = rule->GetFirstConstraint();
            const std::string path = rule->GetFirstPath();
            if (condition && (!preset.ChildExists(path) || !condition->IsValid(preset[path]))) continue;
            for (const Property& size : WhatIsAllowed(*rule->GetSecondConstraint()).values) {
                if (!size.ChildExists(V::TAG_WIDTH) || !size.ChildExists(V::TAG_HEIGHT)) continue;
                sizes.emplace_back(size[V::TAG_WIDTH].GetInt64(), size[V::TAG_HEIGHT].GetInt64());
            }
        }
        return sizes;
    }

    std::vector<Stream> m_streams;
    std::map<std::string, std::vector<Size>> m_sizes;
};

}  // namespace

namespace {

/// What most players open comes first where nothing else tells containers apart.
std::size_t PlaceAmongEquals(const std::string& formatId) {
    static const std::string* const known[] = {&F::FORMAT_MP4, &F::FORMAT_MATROSKA, &F::FORMAT_WEBM, &F::FORMAT_MOV,
                                               &F::FORMAT_M4A, &F::FORMAT_MP3,      &F::FORMAT_FLAC, &F::FORMAT_WAV,
                                               &F::FORMAT_PNG, &F::FORMAT_JPEG,     &F::FORMAT_SRT};
    const auto* const place =
        std::find_if(std::begin(known), std::end(known), [&](const std::string* id) { return *id == formatId; });
    return static_cast<std::size_t>(place - std::begin(known));
}

}  // namespace

int FormatFit::CountLost() const noexcept {
    return static_cast<int>(std::count_if(streams.begin(), streams.end(), [](const StreamFit& stream) {
        const bool isRefused = stream.answer == Answer::Refused && !stream.isEncoded;
        return stream.answer == Answer::LeftOut || isRefused || stream.isOnePicture;
    }));
}

int FormatFit::CountEncoded() const noexcept {
    return static_cast<int>(
        std::count_if(streams.begin(), streams.end(), [](const StreamFit& stream) { return stream.isEncoded; }));
}

int FormatFit::CountChanges() const noexcept {
    int count = 0;
    for (const StreamFit& stream : streams) count += static_cast<int>(stream.changes.size());
    return count;
}

FormatFit FitInto(const std::string& formatId, const std::vector<SP<const IFormatCodec>>& streams) {
    return Fitter(streams).Into(formatId, CreateDataHelper(P::KEY_FORMAT, formatId));
}

std::vector<FormatFit> FitIntoAll(const std::vector<SP<const IFormatCodec>>& streams) {
    const auto& formats = GetAvailableDataHelpers(P::KEY_FORMAT);
    Fitter fitter(streams);
    std::vector<FormatFit> fits;
    fits.reserve(formats.size());
    for (const auto& [id, helper] : formats) fits.push_back(fitter.Into(id, helper));
    const auto rank = [](const FormatFit& fit) {
        return std::tuple(fit.CountLost(), fit.CountEncoded(), fit.CountChanges(), PlaceAmongEquals(fit.formatId));
    };
    std::stable_sort(fits.begin(), fits.end(),
                     [&rank](const FormatFit& one, const FormatFit& two) { return rank(one) < rank(two); });
    return fits;
}

std::vector<HoldingFormat> ContainersFor(const WantedCodecs& wanted) {
    const std::tuple<StreamKind, const std::vector<std::string>&, int StreamLimits::*> kinds[] = {
        {StreamKind::Video, wanted.video, &StreamLimits::video},
        {StreamKind::Audio, wanted.audio, &StreamLimits::audio},
        {StreamKind::Subtitle, wanted.subtitles, &StreamLimits::subtitle},
    };
    std::vector<HoldingFormat> holding;
    for (const auto& [id, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        const Container container(id, helper);
        HoldingFormat format = {id, container.limits, container.muxer != nullptr};
        bool holds = true;
        for (const auto& [kind, codecs, limit] : kinds) {
            holds = holds && static_cast<std::size_t>(container.limits.*limit) >= codecs.size();
            for (const std::string& codec : codecs) {
                const std::string offered = container.Offers(kind, codec);
                holds = holds && !offered.empty();
                format.isEncodable = format.isEncodable && CensusHas(NumberOf(offered));
            }
        }
        if (holds) holding.push_back(std::move(format));
    }
    std::stable_partition(holding.begin(), holding.end(), [](const HoldingFormat& one) { return one.isEncodable; });
    return holding;
}

}  // namespace Norvex::Conf
