#include "norvex/Conf/Review/Names.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "norvex/Conf/DataHelpers/Queries/Muxers.h"
#include "norvex/Conf/Review/NameTables.h"
#include "norvex/Conf/Review/PresetParameters.h"
#include "norvex/Conf/Review/Sentences.h"
#include "norvex/foundation/Excerpt.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

// Of a name: %2 tells it from its like. Of values: %1 is the number, %2 the same as a ratio.
const char* const fullNameMessage = "%1 (%2)";
const char* const rateMessage = "%1 fps";
const char* const ratioMessage = "%1 fps (%2)";
const char* const pixelsMessage = "%1 pixels";
const char* const frameMessage = "%1 frame";
const char* const framesMessage = "%1 frames";
const char* const bitsMessage = "%1 bit";
const char* const planarMessage = "%1 bit, planar";
const char* const floatMessage = "%1 bit float";
const char* const planarFloatMessage = "%1 bit float, planar";
const char* const opaqueMessage = "%1, %2 % opaque";
const char* const pixelsWord = "pixels";
const char* const framesWord = "frames";
const char* const yesWord = "yes";
const char* const noWord = "no";
const char* const noneWord = "none";
const char* const blackWord = "black";
const char* const whiteWord = "white";
const char* const sourceWord = "as the source";

/// `value` parts of 10 to the power of `places`: 29970 of 3 places is "29.97".
std::string Decimal(long long value, std::size_t places) {
    std::string digits = std::to_string(value);
    const std::size_t sign = value < 0 ? 1 : 0;
    if (digits.size() - sign <= places) digits.insert(sign, places + 1 + sign - digits.size(), '0');
    digits.insert(digits.size() - places, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
    return digits;
}

std::string BitrateText(long long bitrate) {
    if (std::abs(bitrate) < 1000) return std::to_string(bitrate) + " bit/s";
    const bool isRound = std::abs(bitrate) >= 1000000 && bitrate % 100000 == 0;
    return isRound ? Decimal(bitrate, 6) + " Mbit/s" : Decimal(bitrate, 3) + " kbit/s";
}

std::string FrequencyText(long long rate) {
    if (rate == -1) return Translate(sourceWord);
    return std::abs(rate) < 1000 ? std::to_string(rate) + " Hz" : Decimal(rate, 3) + " kHz";
}

std::string FrameRateText(const Core::Ratio& rate) {
    if (rate == Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE) return Translate(sourceWord);
    const double thousandths = 1000.0 * static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator());
    const std::string ratio = std::to_string(rate.numerator()) + "/" + std::to_string(rate.denominator());
    if (!(std::abs(thousandths) < 1e15)) return Say(rateMessage, {ratio});
    const std::string decimal = Decimal(std::llround(thousandths), 3);
    const bool isExact = 1000 % rate.denominator() == 0;
    return isExact ? Say(rateMessage, {decimal}) : Say(ratioMessage, {decimal, ratio});
}

std::string BytesText(long long bytes) {
    if (std::abs(bytes) < 1000000) return std::to_string(bytes) + " B";
    const bool isGiga = std::abs(bytes) >= 1000000000;
    const double hundredths = static_cast<double>(bytes) / (isGiga ? 1e7 : 1e4);
    return Decimal(std::llround(hundredths), 2) + (isGiga ? " GB" : " MB");
}

std::string ColourText(long long colour) {
    constexpr long long opaque = 0xFF000000;
    if (colour == opaque) return Translate(blackWord);
    if (colour == opaque + 0xFFFFFF) return Translate(whiteWord);
    char hex[8] = "";
    std::snprintf(hex, sizeof hex, "#%06X", static_cast<unsigned>(colour & 0xFFFFFF));
    if ((colour & opaque) == opaque) return hex;
    return Say(opaqueMessage, {hex, std::to_string(((colour >> 24) & 0xFF) * 100 / 0xFF)});
}

std::string FourCCText(long long code) {
    if (code == 0) return Translate(noneWord);
    std::string text;
    for (int i = 0; i < 4; ++i) text += static_cast<char>((code >> (8 * i)) & 0xFF);
    const bool isText = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return isText ? text : std::to_string(code);
}

std::string SampleFormatText(const std::string& name) {
    try {
        const SampleFmtRecord& record = SampleFmtRecord::Find(name);
        const bool isFloat = name[0] == 'f' || name[0] == 'd';
        const char* const message = isFloat         ? record.planar ? planarFloatMessage : floatMessage
                                    : record.planar ? planarMessage
                                                    : bitsMessage;
        return Say(message, {std::to_string(record.bits)});
    } catch (const FormatException&) {
        return Core::Excerpt(name);
    }
}

std::string WithBlanks(std::string tag) {
    std::replace(tag.begin(), tag.end(), '_', ' ');
    return Core::Excerpt(tag);
}

std::string LastTag(const std::string& path) {
    const std::size_t end = path.rfind(Property::SEPARATOR);
    return end == std::string::npos ? path : path.substr(end + Property::SEPARATOR.size());
}

/// The kind of a codec by the section in which its id stands; of one in a flat stream, the first that has it.
std::string KindOfCodec(const std::string& path, const std::string& id) {
    const std::size_t end = path.rfind(Property::SEPARATOR);
    const std::string section = end == std::string::npos ? std::string() : LastTag(path.substr(0, end));
    for (const auto* const kind :
         {&P::KEY_FILTER_VIDEO_CODEC, &P::KEY_FILTER_AUDIO_CODEC, &P::KEY_FILTER_SUBTITLE_CODEC}) {
        if (section == *kind || (section.empty() && FindIdName(*kind, id) != nullptr)) return *kind;
    }
    return id == C::CODEC_ID_AUTO ? P::KEY_FILTER_AUDIO_CODEC : section;
}

std::string IntegerText(Unit unit, long long value) {
    switch (unit) {
        case Unit::BitsPerSecond:
            return BitrateText(value);
        case Unit::Hertz:
            return FrequencyText(value);
        case Unit::Pixels:
            return Say(pixelsMessage, {std::to_string(value)});
        case Unit::Frames:
            return Say(value == 1 ? frameMessage : framesMessage, {std::to_string(value)});
        case Unit::Bits:
            return Say(bitsMessage, {std::to_string(value)});
        case Unit::Bytes:
            return BytesText(value);
        case Unit::Microseconds:
            return Decimal(value, 3) + " ms";
        case Unit::PerCent:
            return std::to_string(value) + " %";
        case Unit::Colour:
            return ColourText(value);
        case Unit::FourCC:
            return FourCCText(value);
        default:
            return std::to_string(value);
    }
}

std::string TextText(Unit unit, const std::string& path, const std::string& text) {
    switch (unit) {
        case Unit::Codec:
            return FullNameForPeople(KindOfCodec(path, text), text);
        case Unit::Container:
            return FullNameForPeople(P::KEY_FORMAT, text);
        case Unit::SampleFormat:
            return SampleFormatText(text);
        case Unit::Milliseconds:
            return Core::Excerpt(text) + " ms";
        case Unit::FramesPerSecond:
            if (const auto rate = ParseFrameRate(text)) return FrameRateText(*rate);
            return Core::Excerpt(text);
        case Unit::Layout:
            return Core::Excerpt(text);  // "5.1(side)" is what people write
        default:
            return WithBlanks(text);
    }
}

std::string NodeText(const Property& value) {
    if (!value.ChildExists(V::TAG_WIDTH) || !value.ChildExists(V::TAG_HEIGHT)) return {};
    return Core::PropertyValueToString(value[V::TAG_WIDTH]) + "x" + Core::PropertyValueToString(value[V::TAG_HEIGHT]);
}

}  // namespace

std::string NameForPeople(const std::string& kind, const std::string& id) {
    if (const IdName* const row = FindIdName(kind, id)) return Translate(row->name);
    if (kind == P::KEY_FORMAT) {
        const AVOutputFormat* const muxer = FindMuxer(id);
        if (muxer != nullptr && muxer->long_name != nullptr) return muxer->long_name;
    } else if (const AVCodecDescriptor* const codec = avcodec_descriptor_get(CodecIDFromTextID(id))) {
        if (codec->long_name != nullptr) return codec->long_name;
    }
    // A filter, which its kind names, or what only a host knows.
    const TagName* const filter = FindTagName(kind);
    const bool isSection = filter != nullptr && filter->unit == Unit::Section;
    return isSection && id.empty() ? Translate(filter->name) : WithBlanks(id.empty() ? kind : id);
}

std::string FullNameForPeople(const std::string& kind, const std::string& id) {
    const std::string name = NameForPeople(kind, id);
    const IdName* const row = FindIdName(kind, id);
    std::string more = row != nullptr && *row->more != '\0' ? Translate(row->more) : std::string();
    if (kind == P::KEY_FORMAT) {
        const std::vector<std::string> extensions = FileExtensions(id);
        more = extensions.empty() ? std::string() : "." + extensions.front();
    }
    return more.empty() ? name : Say(fullNameMessage, {name, more});
}

std::vector<std::string> FileExtensions(const std::string& formatId) {
    std::string list;
    if (const IdName* const row = FindIdName(P::KEY_FORMAT, formatId)) {
        list = row->more;
    } else if (const AVOutputFormat* const muxer = FindMuxer(formatId)) {
        list = muxer->extensions != nullptr ? muxer->extensions : "";
        std::replace(list.begin(), list.end(), ',', ' ');
    }
    std::vector<std::string> words;
    for (std::size_t begin = 0; (begin = list.find_first_not_of(' ', begin)) != std::string::npos;) {
        const std::size_t end = std::min(list.find(' ', begin), list.size());
        words.push_back(list.substr(begin, end - begin));
        begin = end;
    }
    return words;
}

std::string ParameterForPeople(const std::string& path) {
    const std::string tag = LastTag(path);
    const TagName* const row = FindTagName(tag);
    return row != nullptr ? Translate(row->name) : WithBlanks(tag);
}

std::string UnitForPeople(const std::string& path) {
    const TagName* const row = FindTagName(LastTag(path));
    switch (row != nullptr ? row->unit : Unit::Text) {
        case Unit::BitsPerSecond:
            return "bit/s";
        case Unit::Hertz:
            return "Hz";
        case Unit::FramesPerSecond:
            return "fps";
        case Unit::Pixels:
            return Translate(pixelsWord);
        case Unit::Frames:
            return Translate(framesWord);
        case Unit::Bits:
            return "bit";
        case Unit::Bytes:
            return "B";
        case Unit::Microseconds:
            return "µs";
        case Unit::Milliseconds:
            return "ms";
        case Unit::PerCent:
            return "%";
        default:
            return {};
    }
}

std::string ValueForPeople(const std::string& path, const Property& value) {
    const std::string tag = LastTag(path);
    const TagName* const row = FindTagName(tag);
    const Unit unit = row != nullptr ? row->unit : Unit::Text;
    switch (value.GetType()) {
        case PT_NONE:
            return {};
        case PT_BOOL:
            return Translate(value.GetBool() ? yesWord : noWord);
        case PT_NODE:
            return NodeText(value);
        case PT_RATIO:
            if (unit == Unit::FramesPerSecond) return FrameRateText(value.GetRatio());
            break;
        case PT_DOUBLE:
            if (unit == Unit::Factor && std::abs(value.GetDouble()) < 1e9)
                return Decimal(std::llround(value.GetDouble() * 1e4), 2) + " %";
            break;
        case PT_INT64:
        case PT_STRING: {
            const std::string text = Core::PropertyValueToString(value);
            if (const char* const name = FindValueName(tag, text)) return Translate(name);
            return value.GetType() == PT_INT64 ? IntegerText(unit, value.GetInt64()) : TextText(unit, path, text);
        }
    }
    return Core::Excerpt(Core::PropertyValueToString(value));
}

}  // namespace Norvex::Conf
