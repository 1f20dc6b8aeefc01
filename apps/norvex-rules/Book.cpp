#include "Book.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include "common/OtherNames.h"
#include "common/PresetJson.h"
#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using Json = nlohmann::ordered_json;
using NorvexApps::ToJson;
using P = IPreset;
using F = IFormatFile;
using C = IFormatCodec;

Json AllowedJson(const IPropertyConstraint& constraint) {
    const Allowed allowed = WhatIsAllowed(constraint);
    Json json = {{"words", allowed.words}};
    if (!allowed.values.empty()) {
        Json values = Json::array();
        for (const Property& value : allowed.values)
            values.push_back({{"name", value.GetName()}, {"value", ToJson(value)}});
        json["values"] = values;
    }
    if (allowed.min) json["min"] = ToJson(*allowed.min);
    if (allowed.max) json["max"] = ToJson(*allowed.max);
    if (allowed.step) json["step"] = ToJson(*allowed.step);
    return json;
}

Json RuleJson(const IValidationRule& rule) {
    Json json = {{"path", rule.GetSecondPath()}, {"allowed", AllowedJson(*rule.GetSecondConstraint())}};
    const auto condition = rule.GetFirstConstraint();
    json["when"] = condition ? Json({{"path", rule.GetFirstPath()}, {"allowed", AllowedJson(*condition)}}) : Json();
    return json;
}

/// What every helper has.
Json HelperJson(const std::string& id, const IDataHelper& helper) {
    Json json = {{"id", id}, {"defaults", ToJson(helper.GetDefaults())}};
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    json["constraints"] = Json::array();
    for (const auto& [path, constraint] : constraints) {
        json["constraints"].push_back({{"path", path}, {"allowed", AllowedJson(*constraint)}});
    }
    RuleList rules;
    helper.GetValidationRules(rules);
    json["rules"] = Json::array();
    for (const auto& [key, rule] : rules) json["rules"].push_back(RuleJson(*rule));
    ObjectList objects;
    helper.GetRequiredObjects(objects);
    json["requires"] = Json::array();
    for (const auto& [classId, implementation] : objects) json["requires"].push_back(classId);
    return json;
}

/// What a container carries of one kind of stream, or null.
Json CarriedJson(const IDataHelper& format, const std::string& streamType, const std::string& codecKey) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const std::string& separator = Property::SEPARATOR;
    const auto codecs =
        constraints.find(P::KEY_STREAMS + P::INDEX + streamType + separator + codecKey + separator + C::TAG_CODEC_ID);
    if (codecs == constraints.end()) return nullptr;
    Property fallback{std::string(), std::string()};
    codecs->second->Fixup(fallback);  // a text that is no codec becomes the default
    Json ids = Json::array();
    for (const Property& codec : WhatIsAllowed(*codecs->second).values) ids.push_back(ToJson(codec));
    return {{"default", ToJson(fallback)}, {"codecs", ids}};
}

Json FormatJson(const std::string& id, const IDataHelper& format) {
    Json json = HelperJson(id, format);
    json["globalHeader"] = FormatHasGlobalHeader(id);
    json["limits"] = json["defaults"][F::TAG_LIMITS];
    json["video"] = CarriedJson(format, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC);
    json["audio"] = CarriedJson(format, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC);
    json["subtitles"] = CarriedJson(format, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC);
    return json;
}

Json CodecJson(const std::string& id, const IDataHelper& codec) {
    Json json = HelperJson(id, codec);
    json["globalHeader"] = CodecHasGlobalHeader(id);
    const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(id, Proc::ImplNames::FFMPEG);
    json["encoder"] = encoder ? Json(encoder->name) : Json();
    return json;
}

Json CodecsJson(const std::string& kind) {
    Json list = Json::array();
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) list.push_back(CodecJson(id, *helper));
    return list;
}

}  // namespace

Json MakeBook() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    Json book = {{"norvex-rules", g_bookVersion}, {"library", NORVEX_VERSION}, {"ffmpeg", av_version_info()}};
    book["formats"] = Json::array();
    for (const auto& [id, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        book["formats"].push_back(FormatJson(id, *helper));
    }
    book["videoCodecs"] = CodecsJson(P::KEY_FILTER_VIDEO_CODEC);
    book["audioCodecs"] = CodecsJson(P::KEY_FILTER_AUDIO_CODEC);
    book["filters"] = Json::array();
    for (const std::string& id : NorvexApps::IdsOf(NorvexApps::Named::Filter)) {
        book["filters"].push_back(HelperJson(id, *CreateDataHelper(id, std::string())));
    }
    return book;
}

}  // namespace NorvexRules
