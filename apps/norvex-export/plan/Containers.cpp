#include "Containers.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include "common/OtherNames.h"
#include "norvex-export/Formats.h"
#include "norvex-export/Plan.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using P = IPreset;

NamedHelper FindFormat(const std::string& formatId) {
    const auto& formats = GetAvailableDataHelpers(P::KEY_FORMAT);
    const auto format = formats.find(formatId);
    if (format == formats.end()) {
        throw RequestError(formatId.empty()
                               ? "the output has no extension to tell the format by; give --format, such as mp4"
                               : NorvexApps::WhyUnknown(NorvexApps::Named::Format, formatId));
    }
    if (av_guess_format(MuxerOf(formatId).c_str(), nullptr, nullptr) == nullptr) {
        throw RequestError("this build of FFmpeg has no muxer for the format '" + formatId + "'");
    }
    return {P::KEY_FORMAT, formatId, format->second};
}

void RequireEncodable(const NamedHelper& format, const std::string& kind, const std::string& streamType,
                      const std::string& codecId) {
    ConstraintMap constraints;
    format.helper->GetConstraints(constraints);
    const auto allowed = constraints.find(Path({P::KEY_STREAMS + P::INDEX + streamType, kind, C::TAG_CODEC_ID}));
    if (CodecIDFromTextID(CodecNameOf(codecId)) == AV_CODEC_ID_NONE) {
        throw RequestError("unknown codec '" + codecId + "'");
    }
    if (allowed == constraints.end() || !allowed->second->IsValid(Property(std::string(), codecId))) {
        throw RequestError(
            "the format '" + format.id + "' does not carry the codec '" + codecId + "'" +
            (allowed == constraints.end() ? std::string() : "; it carries " + WhatIsAllowed(*allowed->second).words));
    }
    if (!Proc::FindEncoder(CodecNameOf(codecId), Proc::ImplNames::FFMPEG)) {
        throw RequestError("this build of FFmpeg has no encoder for the codec '" + codecId + "'");
    }
}

NamedHelper FindCodec(const NamedHelper& format, const std::string& kind, const std::string& streamType,
                      const std::string& codecId) {
    RequireEncodable(format, kind, streamType, codecId);
    const auto& helpers = GetAvailableDataHelpers(kind);
    const auto helper = helpers.find(codecId);
    if (helper == helpers.end()) throw RequestError("there are no rules for the codec '" + codecId + "'");
    return {kind, codecId, helper->second};
}

const Property* FindStream(const Property& format, const std::string& type) {
    for (const Property& stream : format[P::KEY_STREAMS]) {
        if (stream[P::KEY_TYPE_ID].GetString() == type) return &stream;
    }
    return nullptr;
}

std::string CodecOf(const Request& request, const Property& stream, const std::string& kind) {
    const std::string asked = request.TextAt(Path({kind, C::TAG_CODEC_ID}));
    return asked.empty() || asked == C::CODEC_ID_AUTO ? stream[kind][C::TAG_CODEC_ID].GetString() : asked;
}

}  // namespace NorvexExport
