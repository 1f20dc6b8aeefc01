#include "Book.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include <map>
#include <set>

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
Value HelperJson(const std::string& id, const IDataHelper& helper, const OtherNames& names) {
    Value json = {{"id", id}, {"otherNames", names.Of(id)}, {"defaults", PlainFormOf(helper.GetDefaults())}};
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

Value FormatJson(const std::string& id, const IDataHelper& format, const OtherNames& names) {
    Value json = HelperJson(id, format, names);
    json["globalHeader"] = FormatHasGlobalHeader(id);
    json["limits"] = Value(json["defaults"][F::TAG_LIMITS]);
    json["video"] = CarriedJson(format, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC);
    json["audio"] = CarriedJson(format, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC);
    json["subtitles"] = CarriedJson(format, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC);
    return json;
}

Value EncoderJson(const std::string& id) {
    const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(id, Proc::ImplNames::FFMPEG);
    return encoder ? Value(encoder->name) : Value();
}

Value CodecsJson(const std::string& kind, NorvexApps::Named named) {
    const OtherNames names(named);
    Value::List list;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
        Value json = HelperJson(id, *helper, names);
        json["globalHeader"] = CodecHasGlobalHeader(id);
        json["encoder"] = EncoderJson(id);
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
        list.push_back({{"id", id}, {"otherNames", names.Of(id)}, {"encoder", EncoderJson(id)}});
    }
    return list;
}

}  // namespace

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
    for (const std::string& id : NorvexApps::IdsOf(NorvexApps::Named::Filter)) {
        book["filters"].Append(HelperJson(id, *CreateDataHelper(id, std::string()), filterNames));
    }
    return book;
}

}  // namespace NorvexRules
