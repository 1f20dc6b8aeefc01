#include "norvex/Conf/Review/PresetParameters.h"

#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using Core::Ratio;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

bool BeginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

void AddDefaults(const Property& node, const std::string& path, ParameterMap& parameters) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : Path(path, child.GetName());
        if (below == P::KEY_STREAMS) continue;
        parameters[below].type = child.GetType();
        AddDefaults(child, below, parameters);
    }
}

/// What every codec of the kind may have, whether its helper speaks of it or not.
void AddCommon(const std::string& kind, ParameterMap& parameters) {
    const auto add = [&parameters](PropertyTypes type, std::initializer_list<std::string> tags) {
        for (const std::string& tag : tags) parameters[tag].type = type;
    };
    const bool isVideo = kind == P::KEY_FILTER_VIDEO_CODEC;
    if (isVideo || kind == P::KEY_FILTER_AUDIO_CODEC) {
        add(PT_STRING, {C::TAG_CODEC_ID, C::TAG_BITRATE_MODE});
        add(PT_INT64, {C::TAG_BITRATE, C::TAG_QUALITY, C::TAG_THREAD_NUMBER});
        add(PT_NODE, {C::TAG_CODEC_OPTIONS_ENCODE});
        add(PT_BOOL, {C::TAG_GLOBAL_HEADER, Path(C::TAG_CODEC_OPTIONS_ENCODE, V::TAG_APPROVED_VBR_MODE_ONLY)});
    }
    if (isVideo) {
        add(PT_RATIO, {V::TAG_FPS});
        add(PT_INT64, {V::TAG_MAX_B_FRAME_SEQUENCE, V::TAG_MAX_I_FRAME_INTERVAL, V::TAG_BITS_PER_PIXEL});
        add(PT_STRING, {V::TAG_MULTIPASS_ENCODING});
        add(PT_BOOL, {V::TAG_COVER_FLAG});
    }
    if (kind == P::KEY_FILTER_SUBTITLE_CODEC) add(PT_STRING, {C::TAG_CODEC_ID});
    if (kind == Proc::IFilterResample::CLASS_ID) add(PT_STRING, {A::TAG_SAMPLE_FORMAT});
}

void AddConstraints(const IDataHelper& helper, ParameterMap& parameters) {
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    for (const auto& [key, constraint] : constraints) {
        // Others are about streams, or stand in a filter's section.
        const bool isWithin =
            !BeginsWith(key, P::KEY_STREAMS) && !BeginsWith(key, Proc::IFilterResample::CLASS_ID + Property::SEPARATOR);
        if (!isWithin || !constraint) continue;
        Parameter& parameter = parameters[key];
        parameter.constraint = constraint;
        if (parameter.type != PT_NONE) continue;
        for (const Property& value : WhatIsAllowed(*constraint).values) parameter.type = value.GetType();
    }
}

void AddAutomatic(const std::string& kind, ParameterMap& parameters) {
    const auto add = [&parameters](const std::string& tag, const auto& value) {
        const auto parameter = parameters.find(tag);
        if (parameter != parameters.end()) parameter->second.automatic = Property(std::string(), value);
    };
    const Ratio& keepRate = Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE;
    if (kind == Proc::IFilterResample::CLASS_ID) {
        add(Path(Proc::IResample::CLASS_ID, A::TAG_SAMPLE_RATE), -1);
        add(Path(Proc::IResample::CLASS_ID, A::TAG_LAYOUT), A::TAG_CH_LAYOUT_UNKNOWN);
    } else if (kind == Proc::IFilterFrameRate::CLASS_ID) {
        add(V::TAG_FPS, keepRate);
    } else if (kind == P::KEY_FILTER_VIDEO_CODEC || kind == P::KEY_FILTER_AUDIO_CODEC) {
        add(V::TAG_FPS, keepRate);
        add(C::TAG_BITRATE_MODE, C::TAG_BITRATE_MODE_CBR_AUTO);
        if (kind == P::KEY_FILTER_AUDIO_CODEC) add(C::TAG_CODEC_ID, C::CODEC_ID_AUTO);
    }
}

/// A number that is the whole text.
template <class T>
std::optional<T> ParseWhole(std::string_view text) {
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// The shortest text that is read as the same number.
std::string Shortest(double number) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string TextOf(const Property& value) {
    return value.GetType() == PT_DOUBLE ? Shortest(value.GetDouble()) : Core::PropertyValueToString(value);
}

std::optional<long long> WholeNumber(double number) {
    constexpr double beyond = 9223372036854775808.0;
    if (!(number > -beyond && number < beyond) || std::floor(number) != number) return std::nullopt;
    return static_cast<long long>(number);
}

/// The same value in that type.
template <class T>
void Take(Property& value, const std::optional<T>& converted) {
    if (converted) value = *converted;
}

void Convert(Property& value, PropertyTypes type) {
    const PropertyTypes given = value.GetType();
    const bool isText = given == PT_STRING;
    switch (type) {
        case PT_BOOL:
            if (isText && (value.GetString() == "true" || value.GetString() == "false")) {
                value = value.GetString() == "true";
            }
            break;
        case PT_DOUBLE:
            if (given == PT_INT64) value = value.GetDouble();
            if (isText) Take(value, ParseWhole<double>(value.GetString()));
            break;
        case PT_INT64:
            if (given == PT_DOUBLE) Take(value, WholeNumber(value.GetDouble()));
            if (isText) Take(value, ParseWhole<long long>(value.GetString()));
            break;
        case PT_RATIO:
            if (isText || given == PT_INT64 || given == PT_DOUBLE) Take(value, ParseFrameRate(TextOf(value)));
            break;
        case PT_NONE:
        case PT_STRING:
        case PT_NODE:
            break;
    }
}

/// The helper of the catalogue, or null.
SP<const IDataHelper> FindKnown(const std::string& kind, const std::string& id) {
    Property preset(std::string("preset"));
    preset.SetChild(kind).SetChildT(kind == P::KEY_FORMAT ? IFormatFile::TAG_CONTAINER : C::TAG_CODEC_ID, id);
    const std::vector<NamedHelper> known = HelpersOf(preset);
    return known.empty() ? nullptr : known.front().helper;
}

}  // namespace

ParameterMap ParametersOf(const std::string& kind, const std::string& id) {
    ParameterMap parameters;
    AddCommon(kind, parameters);
    if (const SP<const IDataHelper> helper = FindKnown(kind, id)) {
        AddDefaults(helper->GetDefaults(), std::string(), parameters);
        AddConstraints(*helper, parameters);
    }
    AddAutomatic(kind, parameters);
    return parameters;
}

std::optional<Ratio> ParseFrameRate(std::string_view text) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) {
        const auto ratio = Core::ParseRatio(text);
        return ratio && ratio->numerator() > 0 ? ratio : std::nullopt;
    }
    // No rate is so long, and what is can overflow nothing.
    const std::string_view whole = text.substr(0, point);
    const std::string_view decimals = text.substr(point + 1);
    if (whole.empty() || whole.size() > 6 || decimals.empty() || decimals.size() > 9) return std::nullopt;
    const auto digits = ParseWhole<unsigned long long>(std::string(whole).append(decimals));
    if (!digits || *digits == 0) return std::nullopt;
    long long scale = 1;
    for (std::size_t i = 0; i < decimals.size(); ++i) scale *= 10;
    const auto number = static_cast<long long>(*digits);
    if (decimals.size() >= 2 && number % scale != 0) {
        const long long nominal = number / scale + 1;
        const long long cut = nominal * 1000 * scale / 1001;
        const long long rest = nominal * 1000 * scale % 1001;
        if (number == cut || (number == cut + 1 && rest * 2 >= 1001)) return Ratio(nominal * 1000, 1001);
    }
    return Ratio(number, scale);
}

void Interpret(Property& value, const Parameter& parameter) {
    if (value.GetType() == PT_NODE || value.GetType() == PT_NONE || parameter.type == PT_NODE) return;
    if (parameter.constraint && value.GetType() == parameter.type && IsLegal(value, *parameter.constraint)) return;
    const std::string text = TextOf(value);
    if (parameter.automatic && value == *parameter.automatic) return;
    if (parameter.automatic && (text == "Auto" || text == "auto")) return value.CopyDataFrom(*parameter.automatic);
    if (parameter.constraint) {
        // The display name of a number is its digits, by which it means itself.
        const bool isNumber = value.GetType() == parameter.type && value.GetType() != PT_STRING;
        for (const Property& allowed : WhatIsAllowed(*parameter.constraint).values) {
            if (isNumber || allowed.GetType() != parameter.type || allowed.GetName() != text) continue;
            return value.CopyDataFrom(allowed);
        }
    }
    Convert(value, parameter.type);
}

}  // namespace Norvex::Conf
