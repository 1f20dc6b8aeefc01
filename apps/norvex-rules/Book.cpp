#include "Book.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include "common/OtherNames.h"
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

Value AllowedJson(const IPropertyConstraint& constraint) {
    const Allowed allowed = WhatIsAllowed(constraint);
    Value json = {{"words", allowed.words}};
    if (!allowed.values.empty()) {
        for (const Property& value : allowed.values) {
            json["values"].Append({{"name", value.GetName()}, {"value", PlainFormOf(value)}});
        }
    }
    if (allowed.min) json["min"] = PlainFormOf(*allowed.min);
    if (allowed.max) json["max"] = PlainFormOf(*allowed.max);
    if (allowed.step) json["step"] = PlainFormOf(*allowed.step);
    return json;
}

Value RuleJson(const IValidationRule& rule) {
    Value json = {{"path", DocumentPathOf(rule.GetSecondPath())},
                  {"allowed", AllowedJson(*rule.GetSecondConstraint())},
                  {"when", Value()}};
    if (const auto condition = rule.GetFirstConstraint()) {
        json["when"] = {{"path", DocumentPathOf(rule.GetFirstPath())}, {"allowed", AllowedJson(*condition)}};
    }
    return json;
}

/// What every helper has.
Value HelperJson(const std::string& id, const IDataHelper& helper) {
    Value json = {{"id", id}, {"defaults", PlainFormOf(helper.GetDefaults())}};
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    json["constraints"] = Value::List();
    for (const auto& [path, constraint] : constraints) {
        json["constraints"].Append({{"path", path}, {"allowed", AllowedJson(*constraint)}});
    }
    RuleList rules;
    helper.GetValidationRules(rules);
    json["rules"] = Value::List();
    for (const auto& [key, rule] : rules) json["rules"].Append(RuleJson(*rule));
    ObjectList objects;
    helper.GetRequiredObjects(objects);
    json["requires"] = Value::List();
    for (const auto& [classId, implementation] : objects) json["requires"].Append(classId);
    return json;
}

/// What a container carries of one kind of stream, or null.
Value CarriedJson(const IDataHelper& format, const std::string& streamType, const std::string& codecKey) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const std::string& separator = Property::SEPARATOR;
    const auto codecs =
        constraints.find(P::KEY_STREAMS + P::INDEX + streamType + separator + codecKey + separator + C::TAG_CODEC_ID);
    if (codecs == constraints.end()) return {};
    Property fallback{std::string(), std::string()};
    codecs->second->Fixup(fallback);  // a text that is no codec becomes the default
    Value::List ids;
    for (const Property& codec : WhatIsAllowed(*codecs->second).values) ids.push_back(PlainFormOf(codec));
    return {{"default", PlainFormOf(fallback)}, {"codecs", ids}};
}

Value FormatJson(const std::string& id, const IDataHelper& format) {
    Value json = HelperJson(id, format);
    json["globalHeader"] = FormatHasGlobalHeader(id);
    json["limits"] = Value(json["defaults"][F::TAG_LIMITS]);
    json["video"] = CarriedJson(format, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC);
    json["audio"] = CarriedJson(format, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC);
    json["subtitles"] = CarriedJson(format, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC);
    return json;
}

Value CodecJson(const std::string& id, const IDataHelper& codec) {
    Value json = HelperJson(id, codec);
    json["globalHeader"] = CodecHasGlobalHeader(id);
    const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(id, Proc::ImplNames::FFMPEG);
    json["encoder"] = encoder ? Value(encoder->name) : Value();
    return json;
}

Value CodecsJson(const std::string& kind) {
    Value::List list;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) list.push_back(CodecJson(id, *helper));
    return list;
}

/// Subtitle codecs have no helpers: there is nothing to set.
Value SubtitleCodecsJson() {
    Value::List list;
    for (const std::string& id : NorvexApps::IdsOf(NorvexApps::Named::SubtitleCodec)) {
        // Encoders go by the later name where FFmpeg has two.
        const std::string name = id == IFormatCodecSubtitle::CODEC_ID_SRT   ? IFormatCodecSubtitle::CODEC_ID_SUBRIP
                                 : id == IFormatCodecSubtitle::CODEC_ID_SSA ? IFormatCodecSubtitle::CODEC_ID_ASS
                                                                            : id;
        const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(name, Proc::ImplNames::FFMPEG);
        list.push_back({{"id", id}, {"encoder", encoder ? Value(encoder->name) : Value()}});
    }
    return list;
}

}  // namespace

Value MakeBook() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    Value book = {{"norvex-rules", g_bookVersion}, {"library", NORVEX_VERSION}, {"ffmpeg", av_version_info()}};
    book["formats"] = Value::List();
    for (const auto& [id, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        book["formats"].Append(FormatJson(id, *helper));
    }
    book["videoCodecs"] = CodecsJson(P::KEY_FILTER_VIDEO_CODEC);
    book["audioCodecs"] = CodecsJson(P::KEY_FILTER_AUDIO_CODEC);
    book["subtitleCodecs"] = SubtitleCodecsJson();
    book["filters"] = Value::List();
    for (const std::string& id : NorvexApps::IdsOf(NorvexApps::Named::Filter)) {
        book["filters"].Append(HelperJson(id, *CreateDataHelper(id, std::string())));
    }
    return book;
}

}  // namespace NorvexRules
