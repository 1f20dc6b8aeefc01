#include "Book.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include <map>
#include <set>

#include "BookNames.h"
#include "Judging.h"
#include "common/OtherNames.h"
#include "common/PairFaults.h"
#include "norvex/Norvex.h"
#include "norvex/document/TreeForm.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using Document::PlainFormOf;
using Document::Value;
using P = IPreset;
using F = IFormatFile;
using C = IFormatCodec;
using S = IFormatCodecSubtitle;

/// What people call the ids of a kind.
class OtherNames {
public:
    explicit OtherNames(NorvexApps::Named kind) : m_names(NorvexApps::OtherNamesOf(kind)) {}

    Value Of(const std::string& id) const {
        const auto names = m_names.find(id);
        return names == m_names.end() ? Value::List() : Value::List(names->second.begin(), names->second.end());
    }

private:
    std::map<std::string, std::vector<std::string>> m_names;
};

/// What every helper has.
Value HelperJson(const std::string& kind, const std::string& id, const std::string& name, const IDataHelper& helper,
                 const OtherNames& names) {
    Value json = {
        {"id", id}, {"name", name}, {"otherNames", names.Of(id)}, {"defaults", PlainFormOf(helper.GetDefaults())}};
    json["parameters"] = ParametersJson(kind, id);
    json["constraints"] = ConstraintsJson(kind, helper);
    json["rules"] = RulesJson(kind, helper);
    ObjectList objects;
    helper.GetRequiredObjects(objects);
    json["requires"] = Value::List();
    for (const auto& [classId, implementation] : objects) json["requires"].Append(classId);
    return json;
}

/// What a container carries of one kind of stream, or null.
Value CarriedJson(const std::string& id, const IDataHelper& format, const std::string& streamType,
                  const std::string& codecKey) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const std::string& separator = Property::SEPARATOR;
    const auto codecs =
        constraints.find(P::KEY_STREAMS + P::INDEX + streamType + separator + codecKey + separator + C::TAG_CODEC_ID);
    if (codecs == constraints.end()) return {};
    Property fallback{std::string(), std::string()};
    codecs->second->Fixup(fallback);  // a text that is no codec becomes the default
    Value::List ids;
    Value::Object faults;
    for (const Property& codec : WhatIsAllowed(*codecs->second).values) {
        ids.push_back(PlainFormOf(codec));
        if (codecKey == P::KEY_FILTER_SUBTITLE_CODEC) continue;
        if (const auto fault = NorvexApps::FaultOf(id, codec.GetString())) {
            faults.push_back(
                {codec.GetString(),
                 std::string(fault->whose == std::string("FFmpeg") ? "FFmpeg: " : "the book: ") + fault->why});
        }
    }
    return {{"default", PlainFormOf(fallback)}, {"codecs", ids}, {"faults", std::move(faults)}};
}

Value FormatJson(const std::string& id, const IDataHelper& format, const OtherNames& names) {
    Value json = HelperJson(P::KEY_FORMAT, id, NameForPeople(P::KEY_FORMAT, id), format, names);
    const std::vector<std::string> extensions = FileExtensions(id);
    json["extensions"] = Value::List(extensions.begin(), extensions.end());
    json["globalHeader"] = FormatHasGlobalHeader(id);
    json["limits"] = Value(json["defaults"][F::TAG_LIMITS]);
    json["video"] = CarriedJson(id, format, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC);
    json["audio"] = CarriedJson(id, format, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC);
    json["subtitles"] = CarriedJson(id, format, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC);
    return json;
}

Value EncoderJson(const std::string& id) {
    const Proc::SafeEncoderCodec encoder = EncoderOf(id);
    return encoder ? Value(encoder->name) : Value();
}

/// What the encoder declares and FFmpeg says of the codec, or null where there is no encoder.
Value FactsJson(const std::string& id) {
    const Proc::SafeEncoderCodec encoder = EncoderOf(id);
    if (!encoder) return {};
    const Proc::EncoderFacts facts = Proc::FactsOf(encoder);
    Value formats = Value::Object();
    for (const Proc::PixelFormatFacts& format : facts.pixelFormats) {
        formats[format.name] = {
            {"bits", format.bits}, {"sampling", format.sampling}, {"alpha", format.alpha}, {"float", format.isFloat}};
    }
    Value::List threads;
    if (facts.threadsFrames) threads.push_back("frames");
    if (facts.threadsSlices) threads.push_back("slices");
    if (facts.threadsItself) threads.push_back("own");
    return {{"pixelFormats", formats},
            {"hardware", facts.isHardware},
            {"threads", threads},
            {"experimental", facts.isExperimental},
            {"lossless", facts.isLossless},
            {"lossy", facts.isLossy},
            {"intraOnly", facts.isIntraOnly}};
}

Value CodecsJson(const std::string& kind, NorvexApps::Named named) {
    const OtherNames names(named);
    Value::List list;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
        Value json = HelperJson(kind, id, FullNameForPeople(kind, id), *helper, names);
        json["globalHeader"] = CodecHasGlobalHeader(id);
        json["encoder"] = EncoderJson(id);
        json["facts"] = FactsJson(id);
        list.push_back(std::move(json));
    }
    return list;
}

/// The subtitle codecs that the containers carry. There are no rules for them.
Value SubtitleCodecsJson(const Value& formats) {
    std::set<std::string> ids;
    for (const Value& format : formats.GetList()) {
        const Value* const codecs = format["subtitles"].Find("codecs");
        if (codecs == nullptr) continue;
        for (const Value& id : codecs->GetList()) ids.insert(id.GetText());
    }
    const OtherNames names(NorvexApps::Named::SubtitleCodec);
    Value::List list;
    for (const std::string& id : ids) {
        list.push_back({{"id", id},
                        {"name", FullNameForPeople(P::KEY_FILTER_SUBTITLE_CODEC, id)},
                        {"otherNames", names.Of(id)},
                        {"encoder", EncoderJson(id)}});
    }
    return list;
}

}  // namespace

Proc::SafeEncoderCodec EncoderOf(const std::string& codecId) {
    const std::string& later = codecId == S::CODEC_ID_SRT   ? S::CODEC_ID_SUBRIP
                               : codecId == S::CODEC_ID_SSA ? S::CODEC_ID_ASS
                                                            : codecId;
    return Proc::FindEncoder(later, Proc::ImplNames::FFMPEG);
}

Value MakeBook() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    Value book = {{"norvex-rules", g_bookVersion}, {"library", NORVEX_VERSION}, {"ffmpeg", av_version_info()}};
    book["formats"] = Value::List();
    const OtherNames formatNames(NorvexApps::Named::Format);
    for (const auto& [id, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        book["formats"].Append(FormatJson(id, *helper, formatNames));
    }
    book["videoCodecs"] = CodecsJson(P::KEY_FILTER_VIDEO_CODEC, NorvexApps::Named::VideoCodec);
    book["audioCodecs"] = CodecsJson(P::KEY_FILTER_AUDIO_CODEC, NorvexApps::Named::AudioCodec);
    book["subtitleCodecs"] = SubtitleCodecsJson(book["formats"]);
    book["filters"] = Value::List();
    const OtherNames filterNames(NorvexApps::Named::Filter);
    const std::vector<std::string> filters = NorvexApps::IdsOf(NorvexApps::Named::Filter);
    for (const std::string& id : std::set<std::string>(filters.begin(), filters.end())) {
        book["filters"].Append(
            HelperJson(id, id, NameForPeople(id, std::string()), *CreateDataHelper(id, std::string()), filterNames));
    }
    book["judging"] = JudgingJson();
    book["names"] = NamesJson();
    return book;
}

}  // namespace NorvexRules
