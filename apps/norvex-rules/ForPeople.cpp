#include "ForPeople.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <cctype>
#include <map>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "Book.h"
#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using F = IFormatFile;
using P = IPreset;
using V = IFormatCodecVideo;

using Texts = std::vector<std::string>;
using Constraints = std::vector<SP<const IPropertyConstraint>>;

bool BeginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::string LastTag(const std::string& path) {
    return path.substr(path.rfind(Property::SEPARATOR) + 1);
}

/// "a, b, c", or "a, b or c" with another joint for the last; with semicolons where there are commas within.
std::string Joined(const Texts& texts, const char* last = nullptr) {
    const bool hasCommas = std::any_of(texts.begin(), texts.end(),
                                       [](const std::string& text) { return text.find(',') != std::string::npos; });
    const std::string between = hasCommas ? "; " : ", ";
    std::string joined;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        joined += (i == 0 ? "" : i + 1 < texts.size() || last == nullptr ? between : last) + texts[i];
    }
    return joined;
}

/// Small letters and digits alone: a name and an id that are one word need not stand side by side.
std::string Plain(const std::string& text) {
    std::string plain;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) plain += c;
    }
    return boost::algorithm::to_lower_copy(plain);
}

/// A name, and the id with it where nobody would guess it.
std::string WithId(const std::string& name, const std::string& id) {
    return Plain(name) == Plain(id) || BeginsWith(name, id + ' ') ? name : name + " (" + id + ")";
}

/// What a parameter is called; a codec's id by the codec's kind.
std::string LabelOf(const std::string& path) {
    const std::size_t end = path.rfind(Property::SEPARATOR);
    const bool isCodec = LastTag(path) == C::TAG_CODEC_ID && end != std::string::npos;
    return ParameterForPeople(isCodec ? path.substr(0, end) : path);
}

std::string TextOf(const std::string& path, const Property& value) {
    const std::string name = ValueForPeople(path, value);
    if (value.GetType() == PT_STRING) {
        const std::string& id = value.GetString();
        if (LastTag(path) != C::TAG_CODEC_ID) return WithId(name, id);
        const std::size_t end = path.rfind(Property::SEPARATOR);
        return WithId(NameForPeople(LastTag(path.substr(0, end)), id), id);
    }
    return name;
}

struct Quantity {
    double size = 0;
    std::string number;
    std::string unit;
};

/// A value that lies on a scale: "48" and " kHz". The ratio behind a frame rate is left out.
std::optional<Quantity> QuantityOf(const std::string& path, const Property& value) {
    double size = 0;
    if (value.GetType() == PT_INT64) {
        size = static_cast<double>(value.GetInt64());
    } else if (value.GetType() == PT_RATIO && value.GetRatio().denominator() > 0) {
        size = static_cast<double>(value.GetRatio().numerator()) / static_cast<double>(value.GetRatio().denominator());
    } else {
        return std::nullopt;
    }
    std::string text = ValueForPeople(path, value);
    text.erase(std::min(text.size(), text.find(" (")));
    const std::size_t end = text.find_first_not_of("-0123456789.");
    if (end == 0) return std::nullopt;  // a word, such as that for the source's own rate
    return Quantity{size, text.substr(0, end), end == std::string::npos ? std::string() : text.substr(end)};
}

std::string RangeText(const Quantity& from, const Quantity& to) {
    return from.number + (from.unit == to.unit ? "" : from.unit) + " to " + to.number + to.unit;
}

std::string QuantitiesText(std::vector<Quantity> quantities) {
    std::sort(quantities.begin(), quantities.end(), [](const auto& a, const auto& b) { return a.size < b.size; });
    const auto isSame = [](const Quantity& a, const Quantity& b) { return a.number == b.number && a.unit == b.unit; };
    quantities.erase(std::unique(quantities.begin(), quantities.end(), isSame), quantities.end());
    constexpr std::size_t few = 8;
    if (quantities.size() > few) {
        return RangeText(quantities.front(), quantities.back()) + fmt::format(" ({} values)", quantities.size());
    }
    const std::string& unit = quantities.front().unit;
    const bool isOneUnit =
        std::all_of(quantities.begin(), quantities.end(), [&unit](const Quantity& q) { return q.unit == unit; });
    Texts texts;
    for (const Quantity& q : quantities) texts.push_back(q.number + (isOneUnit ? "" : q.unit));
    return Joined(texts, " or ") + (isOneUnit ? unit : "");
}

/// Names that begin alike stand behind one beginning: "PCM 16 bit, 24 bit, 32 bit".
Texts Folded(const Texts& names) {
    const auto firstWord = [](const std::string& name) { return name.substr(0, name.find(' ') + 1); };
    std::map<std::string, std::size_t> counts;
    for (const std::string& name : names) ++counts[firstWord(name)];
    Texts folded;
    std::set<std::string> begun;
    for (const std::string& name : names) {
        const std::string word = firstWord(name);
        if (word.empty() || counts[word] < 4) {
            folded.push_back(name);
        } else if (begun.insert(word).second) {
            Texts rest;
            for (const std::string& other : names) {
                if (firstWord(other) == word) rest.push_back(other.substr(word.size()));
            }
            folded.push_back(word + "[" + Joined(rest) + "]");
        }
    }
    return folded;
}

std::string ListText(const std::string& path, const std::vector<Property>& values) {
    std::vector<Quantity> quantities;
    Texts names;
    for (const Property& value : values) {
        if (const auto quantity = QuantityOf(path, value)) {
            quantities.push_back(*quantity);
        } else if (const std::string text = TextOf(path, value);
                   std::find(names.begin(), names.end(), text) == names.end()) {
            names.push_back(text);
        }
    }
    names = Folded(names);
    if (!quantities.empty()) names.insert(names.begin(), QuantitiesText(std::move(quantities)));
    return Joined(names, " or ");
}

bool IsLegalForAll(const Property& value, const Constraints& constraints) {
    return std::all_of(constraints.begin(), constraints.end(),
                       [&value](const auto& constraint) { return IsLegal(value, *constraint); });
}

/// What is left of lists, ranges and conditions on one value that must all hold.
std::string OutcomeText(const std::string& path, const Constraints& constraints) {
    std::optional<std::vector<Property>> list;
    Constraints others;  // than that of the list, which may list values of another form than it takes
    std::optional<Property> min;
    std::optional<Property> max;
    Texts words;
    const auto isLess = [](const Property& a, const Property& b) { return a.GetDouble() < b.GetDouble(); };
    for (const auto& constraint : constraints) {
        Allowed allowed = WhatIsAllowed(*constraint);
        if (!allowed.values.empty() && !list) {
            list = std::move(allowed.values);
            continue;
        }
        others.push_back(constraint);
        if (!allowed.values.empty()) continue;
        if (allowed.min && allowed.max) {
            if (!min || isLess(*min, *allowed.min)) min = allowed.min;
            if (!max || isLess(*allowed.max, *max)) max = allowed.max;
        } else if (!allowed.words.empty() && std::find(words.begin(), words.end(), allowed.words) == words.end()) {
            words.push_back(allowed.words);
        }
    }
    if (list) {
        const auto isRuledOut = [&](const Property& value) { return !IsLegalForAll(value, others); };
        list->erase(std::remove_if(list->begin(), list->end(), isRuledOut), list->end());
        return list->empty() ? "nothing that every rule allows" : ListText(path, *list);
    }
    if (min && max) {
        const auto from = QuantityOf(path, *min);
        const auto to = QuantityOf(path, *max);
        words.insert(words.begin(),
                     from && to ? RangeText(*from, *to) : TextOf(path, *min) + " to " + TextOf(path, *max));
    }
    if (words.empty()) return "what its method accepts";
    return Joined(words, " and ") + (LastTag(path) == C::TAG_QUALITY ? ", the lowest is the best" : "");
}

/// A rule that holds only where another value is one of some.
struct Tied {
    std::string by;
    SP<const IPropertyConstraint> condition;
    std::string path;
    SP<const IPropertyConstraint> constraint;
};

/// All that a helper says, sorted by what it is about, in the order in which it is said.
struct Said {
    std::vector<std::pair<std::string, Constraints>> always;
    std::vector<Tied> tied;

    void Add(const std::string& path, SP<const IPropertyConstraint> constraint) {
        const auto isSame = [&path](const auto& entry) { return entry.first == path; };
        auto entry = std::find_if(always.begin(), always.end(), isSame);
        if (entry == always.end()) entry = always.insert(entry, {path, {}});
        entry->second.push_back(std::move(constraint));
    }

    const Constraints& About(const std::string& path) const {
        static const Constraints none;
        const auto isSame = [&path](const auto& entry) { return entry.first == path; };
        const auto entry = std::find_if(always.begin(), always.end(), isSame);
        return entry == always.end() ? none : entry->second;
    }
};

/// Where a preset has what a helper's constraint is about; empty for the lists of codecs that containers carry.
std::string PresetPathOf(const std::string& section, std::string key) {
    const std::string& separator = Property::SEPARATOR;
    if (BeginsWith(key, P::KEY_STREAMS)) {
        key.erase(0, key.find(separator) + 1);
        if (std::isdigit(static_cast<unsigned char>(key[0])) != 0) key.erase(0, key.find(separator) + 1);
        return LastTag(key) == C::TAG_CODEC_ID ? std::string() : key;
    }
    return BeginsWith(key, "filter_") ? key : section + separator + key;
}

Said CollectSaid(const std::string& section, const std::string& id, const IDataHelper& helper) {
    Said said;
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    for (const auto& [key, constraint] : constraints) {
        const std::string path = PresetPathOf(section, key);
        if (constraint && !path.empty()) said.Add(path, constraint);
    }
    const std::string ownId = section + Property::SEPARATOR + C::TAG_CODEC_ID;
    RuleList rules;
    helper.GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        const SP<const IPropertyConstraint> constraint = rule->GetSecondConstraint();
        const SP<const IPropertyConstraint> condition = rule->GetFirstConstraint();
        if (!constraint) continue;
        const std::string path = DocumentPathOf(rule->GetSecondPath());
        if (!condition) {
            said.Add(path, constraint);
        } else if (rule->GetFirstPath() != ownId) {
            said.tied.push_back({DocumentPathOf(rule->GetFirstPath()), condition, path, constraint});
        } else if (IsLegal(Property(std::string(), id), *condition)) {
            said.Add(path, constraint);
        }
    }
    return said;
}

/// Lines with a label before them, broken between words.
class Lines {
public:
    explicit Lines(std::size_t columns) : m_columns(std::max<std::size_t>(columns, 60)) {}

    void Add(const std::string& label, const std::string& text, std::size_t indent = 2) {
        constexpr std::size_t column = 28;
        std::string line = std::string(indent, ' ') + label;
        if (line.size() >= column) line += '\n', m_text += std::exchange(line, {});
        line.resize(column, ' ');
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            const bool isFirst = line.size() == column;
            if (!isFirst && line.size() + 1 + word.size() > m_columns) {
                m_text += std::exchange(line, std::string(column, ' ')) + '\n';
                line += word;
            } else {
                line += (isFirst ? "" : " ") + word;
            }
        }
        m_text += line + '\n';
    }
    void AddTitle(const std::string& title) { m_text += "\n" + title + "\n"; }
    void AddText(const std::string& text) { m_text += text; }
    void AddPlain(const std::string& line) { m_text += line + "\n"; }
    const std::string& Text() const { return m_text; }

private:
    std::size_t m_columns;
    std::string m_text;
};

/// The leaves below a node that say what a helper starts with; what the page says elsewhere is left out.
void AddDefaults(const Property& node, const std::string& path, const Said& said, Lines& lines) {
    for (const Property& child : node) {
        const std::string& tag = child.GetName();
        const bool isSaid = tag == P::KEY_STREAMS || tag == F::TAG_LIMITS || tag == P::KEY_TYPE_ID ||
                            tag == C::TAG_CODEC_ID || tag == F::TAG_CONTAINER;
        if (isSaid) continue;
        const std::string below = path + Property::SEPARATOR + tag;
        if (child.GetType() == PT_NODE) {
            AddDefaults(child, below, said, lines);
        } else {
            const bool isLegal = IsLegalForAll(child, said.About(below));
            lines.Add(LabelOf(below), TextOf(below, child) + (isLegal ? "" : ", which is none of those below"));
        }
    }
}

/// What the rules tie to another value, in rows of what holds for which of its values.
void AddTied(const Said& said, Lines& lines) {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const Tied& rule : said.tied) {
        const std::pair pair(rule.path, rule.by);
        if (std::find(pairs.begin(), pairs.end(), pair) == pairs.end()) pairs.push_back(pair);
    }
    for (const auto& [path, by] : pairs) {
        const std::string otherwise = said.About(path).empty() ? std::string() : OutcomeText(path, said.About(path));
        std::vector<std::pair<std::string, std::vector<Property>>> rows;  // outcomes, and the values that lead to each
        for (const Tied& rule : said.tied) {
            if (rule.path != path || rule.by != by) continue;
            Constraints all = said.About(path);
            all.push_back(rule.constraint);
            const std::string outcome = OutcomeText(path, all);
            std::vector<Property> values = WhatIsAllowed(*rule.condition).values;
            const bool isList = !values.empty();
            const auto cannotBe = [&](const Property& value) { return !IsLegalForAll(value, said.About(rule.by)); };
            values.erase(std::remove_if(values.begin(), values.end(), cannotBe), values.end());
            if (outcome == otherwise || (isList && values.empty())) continue;
            if (!isList) values.emplace_back(std::string(), WhatIsAllowed(*rule.condition).words);
            const auto isSame = [&outcome](const auto& row) { return row.first == outcome; };
            auto row = std::find_if(rows.begin(), rows.end(), isSame);
            if (row == rows.end()) row = rows.insert(row, {outcome, {}});
            row->second.insert(row->second.end(), values.begin(), values.end());
        }
        if (rows.empty()) continue;
        lines.AddPlain(fmt::format("  {} by {}", LabelOf(path), LabelOf(by)));
        for (const auto& [outcome, values] : rows) lines.Add(ListText(by, values), outcome, 4);
    }
}

std::string EncoderNameOf(const std::string& codecId) {
    const Proc::SafeEncoderCodec encoder = EncoderOf(codecId);
    return encoder ? encoder->name : std::string();
}

/// What a container carries of one kind of stream: its default, what it carries beside it, and what goes over
/// unchanged alone since nothing here encodes it.
void AddCarried(const IDataHelper& format, const std::string& type, const std::string& codecKey, Lines& lines) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const std::string path = codecKey + Property::SEPARATOR + C::TAG_CODEC_ID;
    const auto codecs = constraints.find(P::KEY_STREAMS + P::INDEX + type + Property::SEPARATOR + path);
    if (codecs == constraints.end()) return;
    Property first{std::string(), std::string()};
    codecs->second->Fixup(first);  // a text that is no codec becomes the default
    std::vector<Property> encoded;
    std::vector<Property> carried;
    for (const Property& codec : WhatIsAllowed(*codecs->second).values) {
        if (codec == first) continue;
        (EncoderNameOf(codec.GetString()).empty() ? carried : encoded).push_back(codec);
    }
    const auto named = [&path](const std::vector<Property>& list) {
        Texts names;
        for (const Property& codec : list) names.push_back(TextOf(path, codec));
        return Joined(Folded(names));
    };
    std::string text = TextOf(path, first);
    if (!encoded.empty()) text += "; also " + named(encoded);
    if (EncoderNameOf(first.GetString()).empty()) carried.insert(carried.begin(), first);
    if (!carried.empty()) text += "; not encoded here: " + named(carried);
    lines.Add(ParameterForPeople(codecKey), text);
}

/// "4:2:0 8 and 10 bit, RGB 8 bit, with transparency"
std::string PicturesText(const std::vector<Proc::PixelFormatFacts>& formats) {
    std::vector<std::string> samplings;
    std::map<std::string, std::set<std::pair<int, bool>>> depths;  // and whether they are floating point
    bool hasAlpha = false;
    for (const Proc::PixelFormatFacts& format : formats) {
        hasAlpha = hasAlpha || format.alpha;
        if (depths.count(format.sampling) == 0) samplings.push_back(format.sampling);
        depths[format.sampling].insert({format.bits, format.isFloat});
    }
    Texts texts;
    for (const std::string& sampling : samplings) {
        Texts bits;
        for (const auto& [depth, isFloat] : depths[sampling]) {
            if (depth > 0) bits.push_back(std::to_string(depth) + (isFloat ? " (float)" : ""));
        }
        texts.push_back(sampling + (bits.empty() ? "" : " " + Joined(bits, " and ") + " bit"));
    }
    if (hasAlpha) texts.emplace_back("with transparency");
    return Joined(texts);
}

/// What the encoder takes and can, beside the rules.
void AddFacts(const std::string& codecId, Lines& lines) {
    const Proc::SafeEncoderCodec encoder = EncoderOf(codecId);
    if (!encoder) return;
    const Proc::EncoderFacts facts = Proc::FactsOf(encoder);
    if (!facts.pixelFormats.empty()) lines.Add("pictures", PicturesText(facts.pixelFormats));
    Texts traits;
    if (facts.isLossless) traits.emplace_back(facts.isLossy ? "lossy or lossless" : "lossless");
    if (facts.isIntraOnly && encoder->type == AVMEDIA_TYPE_VIDEO) traits.emplace_back("every frame stands for itself");
    if (facts.isHardware) traits.emplace_back("by hardware");
    if (facts.threadsFrames) traits.emplace_back("threads for frames");
    if (facts.threadsSlices) traits.emplace_back("threads for slices");
    if (facts.threadsItself) traits.emplace_back("threads of its own");
    if (facts.isExperimental) traits.emplace_back("experimental");
    if (!traits.empty()) lines.Add("traits", Joined(traits));
}

/// The containers that carry a codec.
void AddCarriers(const std::string& type, const std::string& codecKey, const std::string& codecId, Lines& lines) {
    const std::string key = P::KEY_STREAMS + P::INDEX + type + Property::SEPARATOR + codecKey + Property::SEPARATOR;
    Texts names;
    Texts usual;
    for (const auto& [id, format] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        ConstraintMap constraints;
        format->GetConstraints(constraints);
        const auto codecs = constraints.find(key + C::TAG_CODEC_ID);
        if (codecs == constraints.end() || !IsLegal(Property(std::string(), codecId), *codecs->second)) continue;
        Property first{std::string(), std::string()};
        codecs->second->Fixup(first);  // a text that is no codec becomes the default
        (first.GetString() == codecId ? usual : names).push_back(WithId(NameForPeople(P::KEY_FORMAT, id), id));
    }
    if (!usual.empty()) lines.Add("usual in", Joined(usual));
    if (!names.empty() || usual.empty()) {
        lines.Add(usual.empty() ? "carried by" : "also carried by", names.empty() ? "no container" : Joined(names));
    }
}

void AddLimits(const Property& defaults, Lines& lines) {
    if (!defaults.ChildExists(F::TAG_LIMITS)) return;
    Texts texts;
    for (const Property& limit : defaults[F::TAG_LIMITS]) {
        if (limit.GetInt64() > 0)
            texts.push_back(std::to_string(limit.GetInt64()) + ' ' + ParameterForPeople(limit.GetName()));
    }
    if (!texts.empty()) lines.Add(ParameterForPeople(F::TAG_LIMITS), Joined(texts));
}

}  // namespace

std::optional<std::string> ShowForPeople(const std::string& kind, const std::string& id, std::size_t columns) {
    const std::map<std::string, std::string> sections = {{"format", P::KEY_FORMAT},
                                                         {"video", P::KEY_FILTER_VIDEO_CODEC},
                                                         {"audio", P::KEY_FILTER_AUDIO_CODEC},
                                                         {"filter", id}};
    const auto known = sections.find(kind);
    if (known == sections.end()) return std::nullopt;
    const std::string& section = known->second;
    SP<const IDataHelper> helper;
    try {
        helper = CreateDataHelper(section, id);
    } catch (const HelperException&) {
        return std::nullopt;
    }
    const Property defaults = helper->GetDefaults();
    const Said said = CollectSaid(section, id, *helper);
    Lines lines(columns);
    lines.AddPlain(kind == "filter" ? NameForPeople(id, std::string()) : FullNameForPeople(section, id));
    lines.Add("id", kind + ' ' + id);
    if (kind == "format") {
        AddCarried(*helper, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, lines);
        AddCarried(*helper, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, lines);
        AddCarried(*helper, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC, lines);
        AddLimits(defaults, lines);
    } else if (kind != "filter") {
        const std::string encoder = EncoderNameOf(id);
        lines.Add("encoder", encoder.empty() ? "none in this build" : encoder);
        AddFacts(id, lines);
        AddCarriers(kind == "video" ? P::STREAM_TYPE_VIDEO : P::STREAM_TYPE_AUDIO, section, id, lines);
    }
    Texts needed;
    ObjectList objects;
    helper->GetRequiredObjects(objects);
    for (const auto& [classId, implementation] : objects) needed.push_back(ParameterForPeople(classId));
    if (!needed.empty()) lines.Add("goes through", Joined(needed, " and "));

    Lines first(columns);
    AddDefaults(defaults, section, said, first);
    if (!first.Text().empty()) lines.AddTitle("Starts with");
    lines.AddText(first.Text());
    if (!said.always.empty() || !said.tied.empty()) lines.AddTitle("May have");
    for (const auto& [path, constraints] : said.always) lines.Add(LabelOf(path), OutcomeText(path, constraints));
    AddTied(said, lines);
    lines.AddPlain(fmt::format("\nEvery rule as it stands: norvex-rules show --rules {} {}", kind, id));
    return lines.Text();
}

}  // namespace NorvexRules
