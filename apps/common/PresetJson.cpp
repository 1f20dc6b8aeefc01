#include "PresetJson.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "norvex/Norvex.h"

namespace NorvexApps {

namespace {

using namespace Norvex;
using Core::Property;
using Json = nlohmann::ordered_json;

constexpr const char* g_versionKey = "norvex-preset";
constexpr const char* g_presetKey = "preset";
/// No preset is near it, and a document that is deeper could exhaust the stack.
constexpr int g_deepest = 100;

std::string Join(const std::string& path, const std::string& tag) {
    return path.empty() ? tag : path + Property::SEPARATOR + tag;
}

bool IsUtf8(const std::string& text) {
    try {
        (void)Json(text).dump();
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

bool LooksLikeRatio(const std::string& text) {
    return text.find('/') != std::string::npos && Core::ParseRatio(text).has_value();
}

// ------------------------------------------------------------------------------------------------------ writing

// `room` is how many objects and lists may still be opened in one another, so that what is written can be read again,
// and no tree is too deep for the stack.

void RequireRoom(int room) {
    if (room < 1) throw PresetError("the preset is too deep to be written");
}

Json Special(const char* name, Json value, int room) {
    RequireRoom(room);
    Json object = Json::object();
    object[name] = std::move(value);
    return object;
}

Json TextToJson(const std::string& text, int room) {
    if (!IsUtf8(text)) {
        constexpr char digits[] = "0123456789abcdef";
        std::string hex;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            hex += digits[byte >> 4];
            hex += digits[byte & 15];
        }
        return Special("$bytes", hex, room);
    }
    return LooksLikeRatio(text) ? Special("$text", text, room) : Json(text);
}

Json DoubleToJson(double value, int room) {
    if (std::isnan(value)) return Special("$double", "nan", room);
    if (std::isinf(value)) return Special("$double", value > 0 ? "inf" : "-inf", room);
    return value;
}

std::string RatioText(const Core::Ratio& ratio) {
    return std::to_string(ratio.numerator()) + '/' + std::to_string(ratio.denominator());
}

Json Write(const Property& node, int room);

Json ChildrenToJson(const Property& node, int room) {
    RequireRoom(room);
    std::set<std::string> names;
    const bool isPlain = std::all_of(node.begin(), node.end(), [&names](const Property& child) {
        const std::string& name = child.GetName();
        return names.insert(name).second && name.substr(0, 1) != "$" && IsUtf8(name);
    });
    if (isPlain) {
        Json object = Json::object();
        for (const Property& child : node) object[child.GetName()] = Write(child, room - 1);
        return object;
    }
    constexpr int levels = 3;  // the object, the list and the pair
    RequireRoom(room - levels + 1);
    const int within = room - levels;
    Json list = Json::array();
    for (const Property& child : node) {
        list.push_back(Json::array({TextToJson(child.GetName(), within), Write(child, within)}));
    }
    return Special("$children", list, room);
}

Json Write(const Property& node, int room) {
    switch (node.GetType()) {
        case PT_NONE:
            return Special("$none", true, room);
        case PT_BOOL:
            return node.GetBool();
        case PT_DOUBLE:
            return DoubleToJson(node.GetDouble(), room);
        case PT_INT64:
            return node.GetInt64();
        case PT_STRING:
            return TextToJson(node.GetString(), room);
        case PT_RATIO:
            return RatioText(node.GetRatio());
        case PT_NODE:
            break;
    }
    return ChildrenToJson(node, room);
}

// ------------------------------------------------------------------------------------------------------ reading

/// A JSON value that knows its line.
struct Value {
    enum class Kind { Null, Bool, Integer, Double, Text, List, Object };

    Kind kind = Kind::Null;
    bool flag = false;
    long long integer = 0;
    double number = 0;
    std::string text;
    std::vector<std::pair<std::string, Value>> members;  ///< of a list, without names
    int line = 1;
};

[[noreturn]] void Fail(int line, const std::string& words) {
    throw PresetError("line " + std::to_string(line) + ": " + words);
}

/// A character of the text, counting lines as the parser takes them.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* position, int* line) : m_position(position), m_line(line) {}

    reference operator*() const { return *m_position; }
    CountingIterator& operator++() {
        // The end of a line counts with what follows it: the parser reads one character past a number before it
        // tells of it.
        if (m_isLineOver) ++*m_line;
        m_isLineOver = *m_position == '\n';
        ++m_position;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return m_position == other.m_position; }
    bool operator!=(const CountingIterator& other) const { return m_position != other.m_position; }

private:
    const char* m_position;
    int* m_line;
    bool m_isLineOver = false;
};

/// Builds values from the parser's events.
class Builder {
public:
    explicit Builder(const int& line) : m_line(line) {}

    Value Take() { return std::move(m_root); }

    bool null() {
        return Add(Value::Kind::Null, [](Value&) {});
    }
    bool boolean(bool flag) {
        return Add(Value::Kind::Bool, [flag](Value& value) { value.flag = flag; });
    }
    bool number_integer(Json::number_integer_t number) {
        return Add(Value::Kind::Integer, [number](Value& value) { value.integer = number; });
    }
    bool number_unsigned(Json::number_unsigned_t number) {
        if (number > static_cast<Json::number_unsigned_t>(std::numeric_limits<long long>::max())) {
            Fail(m_line, "the number " + std::to_string(number) + " is too large");
        }
        return number_integer(static_cast<Json::number_integer_t>(number));
    }
    bool number_float(Json::number_float_t number, const std::string& text) {
        // An integer of more than 64 bits comes as a floating point number.
        if (text.find_first_of(".eE") == std::string::npos) Fail(m_line, "the number " + text + " is too large");
        return Add(Value::Kind::Double, [number](Value& value) { value.number = number; });
    }
    bool string(std::string& text) {
        return Add(Value::Kind::Text, [&text](Value& value) { value.text = text; });
    }
    bool binary(Json::binary_t& /*bytes*/) { return false; }  // JSON texts have none
    bool start_object(std::size_t /*size*/) { return Open(Value::Kind::Object); }
    bool key(std::string& name) {
        m_name = name;
        return true;
    }
    bool end_object() { return Close(); }
    bool start_array(std::size_t /*size*/) { return Open(Value::Kind::List); }
    bool end_array() { return Close(); }
    bool parse_error(std::size_t /*position*/, const std::string& token, const nlohmann::detail::exception& error) {
        constexpr int outOfRange = 406;
        if (error.id == outOfRange) Fail(m_line, "the number " + token + " is too large");
        const std::string last = token.empty() ? "the end of the text" : "'" + token + "'";
        Fail(m_line, "this is no JSON, at " + last);
    }

private:
    template <class Set>
    bool Add(Value::Kind kind, const Set& set) {
        Value value;
        value.kind = kind;
        value.line = m_line;
        set(value);
        if (m_open.empty()) {
            m_root = std::move(value);
        } else {
            m_open.back()->members.emplace_back(std::exchange(m_name, {}), std::move(value));
        }
        return true;
    }
    bool Open(Value::Kind kind) {
        if (m_open.size() >= g_deepest) Fail(m_line, "the document is too deep");
        Add(kind, [](Value&) {});
        // Only the last member of the last open value is ever added to, so that no pointer goes stale.
        m_open.push_back(m_open.empty() ? &m_root : &m_open.back()->members.back().second);
        return true;
    }
    bool Close() {
        m_open.pop_back();
        return true;
    }

    const int& m_line;
    Value m_root;
    std::vector<Value*> m_open;
    std::string m_name;
};

std::string BytesFrom(const Value& value) {
    const auto digit = [&value](char c) {
        constexpr std::string_view digits = "0123456789abcdef";
        const std::size_t place = digits.find(c);
        if (place == std::string_view::npos) Fail(value.line, "'" + value.text + "' is no hexadecimal text");
        return static_cast<unsigned char>(place);
    };
    if (value.text.size() % 2 != 0) Fail(value.line, "'" + value.text + "' is no hexadecimal text");
    std::string bytes;
    for (std::size_t i = 0; i < value.text.size(); i += 2) {
        bytes += static_cast<char>(digit(value.text[i]) * 16 + digit(value.text[i + 1]));
    }
    return bytes;
}

/// Turns values into nodes, and remembers where they stood.
class Reader {
public:
    explicit Reader(std::map<std::string, std::string>& places) : m_places(places) {}

    Property Read(const std::string& name, const Value& value, const std::string& path) {
        m_places.emplace(path, "line " + std::to_string(value.line));
        switch (value.kind) {
            case Value::Kind::Bool:
                return Property(name, value.flag);
            case Value::Kind::Integer:
                return Property(name, value.integer);
            case Value::Kind::Double:
                return Property(name, value.number);
            case Value::Kind::Text:
                if (LooksLikeRatio(value.text)) return Property(name, *Core::ParseRatio(value.text));
                return Property(name, value.text);
            case Value::Kind::Object:
                break;
            case Value::Kind::Null:
            case Value::Kind::List:
                Fail(value.line, "'" + path + "' is neither a value nor a section");
        }
        const bool isSpecial = value.members.size() == 1 && value.members.front().first.substr(0, 1) == "$";
        return isSpecial ? ReadSpecial(name, value, path) : ReadMembers(name, value, path);
    }

private:
    Property ReadMembers(const std::string& name, const Value& object, const std::string& path) {
        Property node(name);
        std::set<std::string> names;
        for (const auto& [member, value] : object.members) {
            if (!names.insert(member).second) Fail(value.line, "'" + Join(path, member) + "' stands there twice");
            if (member.substr(0, 1) == "$") Fail(value.line, "'" + member + "' stands beside other members");
            node.AddNamed(Read(member, value, Join(path, member)));
        }
        return node;
    }

    Property ReadSpecial(const std::string& name, const Value& object, const std::string& path) {
        const auto& [kind, value] = object.members.front();
        const bool isText = value.kind == Value::Kind::Text;
        if (kind == "$text" && isText) return Property(name, value.text);
        if (kind == "$bytes" && isText) return Property(name, BytesFrom(value));
        if (kind == "$double" && value.text == "nan") return Property(name, std::nan(""));
        if (kind == "$double" && value.text == "inf") return Property(name, std::numeric_limits<double>::infinity());
        if (kind == "$double" && value.text == "-inf") return Property(name, -std::numeric_limits<double>::infinity());
        if (kind == "$none" && value.flag) return NodeWithoutValue(name);
        if (kind == "$children" && value.kind == Value::Kind::List) return ReadPairs(name, value, path);
        Fail(object.line, "'" + kind + "' does not hold what it should");
    }

    static Property NodeWithoutValue(const std::string& name) {
        Property node(name);
        node.CopyDataFrom(Property());
        return node;
    }

    Property ReadPairs(const std::string& name, const Value& list, const std::string& path) {
        Property node(name);
        for (const auto& [none, pair] : list.members) {
            if (pair.kind != Value::Kind::List || pair.members.size() != 2) Fail(pair.line, "this is no named value");
            const Property child = Read(std::string(), pair.members[0].second, std::string());
            if (child.GetType() != PT_STRING) Fail(pair.line, "this is no name");
            node.AddNamed(Read(child.GetString(), pair.members[1].second, Join(path, child.GetString())));
        }
        return node;
    }

    std::map<std::string, std::string>& m_places;
};

const Value* Find(const Value& object, const std::string& name) {
    const auto member =
        std::find_if(object.members.begin(), object.members.end(), [&name](const auto& m) { return m.first == name; });
    return member != object.members.end() ? &member->second : nullptr;
}

// -------------------------------------------------------------------------------------------------------- names

using V = Conf::IFormatCodecVideo;
using A = Conf::IFormatCodecAudio;
using F = Conf::IFormatFile;
using P = Conf::IPreset;

/// Whether what stands there is a section, by path.
using Paths = std::map<std::string, bool>;

void CollectPaths(const Property& node, const std::string& path, Paths& paths) {
    for (const Property& child : node) {
        const std::string below = Join(path, child.GetName());
        paths[below] = child.GetType() == PT_NODE;
        CollectPaths(child, below, paths);
    }
}

/// The parameters of a section: those of its helper's defaults and constraints, and those that every codec may have.
Paths ParametersOf(const std::string& kind, const Conf::IDataHelper& helper) {
    Paths paths;
    const auto add = [&paths](std::initializer_list<std::string> parameters) {
        for (const std::string& parameter : parameters) paths.emplace(parameter, false);
    };
    CollectPaths(helper.GetDefaults(), std::string(), paths);
    Conf::ConstraintMap constraints;
    helper.GetConstraints(constraints);
    for (const auto& constraint : constraints) add({constraint.first});
    if (kind == P::KEY_FILTER_VIDEO_CODEC || kind == P::KEY_FILTER_AUDIO_CODEC) {
        const std::string options = V::TAG_CODEC_OPTIONS_ENCODE;
        paths.emplace(options, true);
        add({V::TAG_CODEC_ID, V::TAG_BITRATE, V::TAG_BITRATE_MODE, V::TAG_QUALITY, V::TAG_GLOBAL_HEADER,
             V::TAG_THREAD_NUMBER, Join(options, V::TAG_APPROVED_VBR_MODE_ONLY)});
    }
    if (kind == P::KEY_FILTER_VIDEO_CODEC) {
        add({V::TAG_FPS, V::TAG_MAX_B_FRAME_SEQUENCE, V::TAG_MAX_I_FRAME_INTERVAL, V::TAG_MULTIPASS_ENCODING,
             V::TAG_BITS_PER_PIXEL});
    }
    if (kind == Proc::IFilterResample::CLASS_ID) add({A::TAG_SAMPLE_FORMAT});
    return paths;
}

void RequireKnownParameters(const PresetDocument& document, const Property& section, const Conf::IDataHelper& helper) {
    const Paths known = ParametersOf(section.GetName(), helper);
    Paths named;
    CollectPaths(section, std::string(), named);
    for (const auto& [path, isSection] : named) {
        // The streams of a container are its own business: any number of them.
        if (path.compare(0, P::KEY_STREAMS.size(), P::KEY_STREAMS) == 0) continue;
        const std::string whole = Join(section.GetName(), path);
        const auto parameter = known.find(path);
        if (parameter == known.end()) {
            throw PresetError(document.PlaceOf(whole) + ": there is no parameter '" + whole + "'");
        }
        if (parameter->second != isSection) {
            throw PresetError(document.PlaceOf(whole) + ": '" + whole + "' must be " +
                              (isSection ? "a value" : "a section"));
        }
    }
}

void RequireKnownSection(const PresetDocument& document, const Property& section) {
    const std::string& kind = section.GetName();
    if (section.GetType() != PT_NODE) throw PresetError(document.PlaceOf(kind) + ": '" + kind + "' must be a section");
    std::string id;
    if (kind == P::KEY_FILTER_SUBTITLE_CODEC) {  // a codec id alone: subtitle codecs have no helpers
        for (const Property& value : section) {
            const auto& codecs = Conf::GetAllSubtitleCodecs();
            const std::string path = Join(kind, value.GetName());
            if (value.GetName() != V::TAG_CODEC_ID) {
                throw PresetError(document.PlaceOf(path) + ": there is no parameter '" + path + "'");
            }
            const std::string codec = Core::PropertyValueToString(value);
            if (std::find(codecs.begin(), codecs.end(), codec) == codecs.end()) {
                throw PresetError(document.PlaceOf(path) + ": there is no codec '" + codec + "'");
            }
        }
        return;
    }
    const bool isFormat = kind == P::KEY_FORMAT;
    if (isFormat || kind == P::KEY_FILTER_VIDEO_CODEC || kind == P::KEY_FILTER_AUDIO_CODEC) {
        const std::string& tag = isFormat ? F::TAG_CONTAINER : V::TAG_CODEC_ID;
        if (!section.ChildExists(tag) || section[tag].GetType() != PT_STRING) {
            throw PresetError(document.PlaceOf(kind) + ": '" + kind + "' does not say which " +
                              (isFormat ? "container" : "codec") + " it is about");
        }
        id = section[tag].GetString();
        if (GetAvailableDataHelpers(kind).count(id) == 0) {
            throw PresetError(document.PlaceOf(Join(kind, tag)) + ": there is no " +
                              (isFormat ? "container" : "codec") + " '" + id + "'");
        }
    }
    SP<const Conf::IDataHelper> helper;
    try {
        helper = CreateDataHelper(kind, id);
    } catch (const Conf::HelperException&) {
        throw PresetError(document.PlaceOf(kind) + ": there is no section '" + kind + "'");
    }
    RequireKnownParameters(document, section, *helper);
}

}  // namespace

std::string PresetDocument::PlaceOf(const std::string& path) const {
    const auto place = places.find(path);
    return place != places.end() ? place->second : "line 1";
}

std::string WritePreset(const Property& preset) {
    Json document = Json::object();
    document[g_versionKey] = g_presetVersion;
    document[g_presetKey] = Write(preset, g_deepest - 1);
    return document.dump(2) + '\n';
}

PresetDocument ReadPreset(std::string_view text) {
    int line = 1;
    Builder builder(line);
    const CountingIterator begin(text.data(), &line);
    const CountingIterator end(text.data() + text.size(), &line);
    if (!Json::sax_parse(begin, end, &builder)) Fail(line, "this is no JSON");
    const Value root = builder.Take();

    const Value* const version = Find(root, g_versionKey);
    if (root.kind != Value::Kind::Object || version == nullptr) {
        Fail(root.line, std::string("this is no preset: it has no '") + g_versionKey + "'");
    }
    if (version->kind != Value::Kind::Integer || version->integer != g_presetVersion) {
        Fail(version->line,
             "the preset is of another version; this program knows version " + std::to_string(g_presetVersion));
    }
    for (const auto& [name, value] : root.members) {
        if (name != g_versionKey && name != g_presetKey) Fail(value.line, "there is no member '" + name + "'");
    }
    if (root.members.size() != 2) Fail(root.line, std::string("there must be one '") + g_presetKey + "'");
    const Value* const preset = Find(root, g_presetKey);
    if (preset == nullptr) Fail(root.line, std::string("there must be one '") + g_presetKey + "'");
    PresetDocument document;
    document.preset = Reader(document.places).Read(g_presetKey, *preset, std::string());
    if (document.preset.GetType() != PT_NODE) Fail(preset->line, "the preset holds no sections");
    return document;
}

void RequireKnownNames(const PresetDocument& document) {
    for (const Property& section : document.preset) RequireKnownSection(document, section);
}

Json ToJson(const Property& node) {
    switch (node.GetType()) {
        case PT_NONE:
            return nullptr;
        case PT_BOOL:
            return node.GetBool();
        case PT_DOUBLE:
            return node.GetDouble();
        case PT_INT64:
            return node.GetInt64();
        case PT_STRING:
            return node.GetString();
        case PT_RATIO:
            return RatioText(node.GetRatio());
        case PT_NODE:
            break;
    }
    Json object = Json::object();
    for (const Property& child : node) object[child.GetName()] = ToJson(child);
    return object;
}

}  // namespace NorvexApps
