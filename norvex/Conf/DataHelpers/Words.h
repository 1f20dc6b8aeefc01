#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "norvex/Conf/DataHelpers/Codecs/DataHelperCodecFFMPEG.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintChannelLayout.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintSet.h"
#include "norvex/Conf/DataHelpers/Constraints/PairList.h"
#include "norvex/interfaces/Conf/IDataHelper.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"

/// The few words in which every helper is written. Not for hosts.

namespace Norvex::Conf {

/// A constant of the vocabulary in a table of names. It holds the constant's address and no more, so that a table
/// can be filled at load, when the constants themselves may still be empty.
class Name {
public:
    constexpr Name(const std::string& text) : m_text(&text) {}
    Name(std::string&&) = delete;

    operator const std::string&() const { return *m_text; }

private:
    const std::string* m_text;
};

/// A line of a tree of defaults: a tag with a value, or with lines below it. It refers to what it is made from, and
/// so lives within the expression in which it is written.
class Branch {
public:
    Branch(const std::string& tag, bool value) : m_tag(tag), m_value(value) {}
    Branch(const std::string& tag, int value) : m_tag(tag), m_value(static_cast<long long>(value)) {}
    Branch(const std::string& tag, long long value) : m_tag(tag), m_value(value) {}
    Branch(const std::string& tag, const std::string& value) : m_tag(tag), m_value(&value) {}
    /// A literal would turn into a bool.
    Branch(const std::string& tag, const char* value) = delete;
    Branch(const std::string& tag, std::initializer_list<Branch> below) : m_tag(tag), m_value(below) {}

    void AddTo(Core::Property& parent) const;

private:
    const std::string& m_tag;
    std::variant<bool, long long, const std::string*, std::initializer_list<Branch>> m_value;
};

/// A new helper that keeps what it answers. For the exact classes of the library, whose answers never change.
template <class Helper>
SP<IDataHelper> Keeping(Helper* helper) {
    SP<IDataHelper> made(helper);
    helper->KeepAnswers();
    return made;
}

Core::Property Tree(const std::string& name, std::initializer_list<Branch> branches);
/// A codec's section of a preset. The list is all that they take, so that it stands at one indent.
Core::Property AudioCodecTree(std::initializer_list<Branch> branches);
Core::Property VideoCodecTree(std::initializer_list<Branch> branches);

/// Sets of names or numbers that are their own display names.
template <std::size_t N>
SP<IPropertyConstraint> OneOf(const Name (&names)[N]) {
    PairList<std::string> list;
    list.reserve(N);
    for (const std::string& name : names) list.emplace_back(name, name);
    return ConstraintSet::Create(list);
}
SP<IPropertyConstraint> OneOf(const long long* begin, const long long* end);
template <std::size_t N>
SP<IPropertyConstraint> OneOf(const long long (&numbers)[N]) {
    return OneOf(numbers, numbers + N);
}
/// The one boolean that is allowed.
SP<IPropertyConstraint> Only(bool value);

template <std::size_t N>
SP<IPropertyConstraint> LayoutsOf(const Name (&names)[N]) {
    return ConstraintChannelLayout::Create(std::vector<std::string>(std::begin(names), std::end(names)));
}

/// What nearly every video codec lets its user choose: a mode, in the order of the list, and a bitrate and a quality in
/// the shared ranges.
template <std::size_t N>
void AddRateControl(ConstraintMap& constraints, const Name (&modes)[N]) {
    constraints[IFormatCodec::TAG_BITRATE_MODE] = OneOf(modes);
    constraints[IFormatCodec::TAG_BITRATE] = DataHelperCodecFFMPEG::s_defaultVideoBitrateConstraint;
    constraints[IFormatCodec::TAG_QUALITY] = DataHelperCodecFFMPEG::s_defaultQualityConstraint;
}

/// Joins tags into a path.
template <class... Tags>
std::string Path(const std::string& first, const Tags&... rest) {
    std::string path = first;
    ((path += Core::Property::SEPARATOR, path += rest), ...);
    return path;
}

// Paths that many rules share, relative to the preset.
const std::string& VideoCodecIdPath();
const std::string& FrameRatePath();
const std::string& WidthPath();
const std::string& HeightPath();
const std::string& FrameSizeModePath();
const std::string& AudioCodecIdPath();
const std::string& AudioBitratePath();
const std::string& SampleRatePath();
const std::string& SampleFormatPath();
const std::string& LayoutPath();
/// What a format's rules call the cover flag and the profile of a video stream.
const std::string& CoverFlagPath();
const std::string& FormatProfilePath();

/// Within a codec's section.
const std::string& ProfileKey();
const std::string& PresetKey();

/// The pattern of the codec id of every stream of one type.
std::string StreamCodecPattern(const std::string& streamType, const std::string& codecKey);

void AddRule(RuleList& rules, const std::string& firstPath, SP<IPropertyConstraint> firstConstraint,
             const std::string& secondPath, SP<IPropertyConstraint> secondConstraint);

/// Whether a rule of the list has that second path. A hand-written list that is only a fallback asks this after the
/// encoder's rules have been added.
bool Speaks(const RuleList& rules, const std::string& secondPath);

/// Erases the first rule of the list that has that second path, if there is one. A hand-written list that overrules
/// the encoder calls this before it adds its own rule.
void Silence(RuleList& rules, const std::string& secondPath);

/// The channels of the layout that an audio stream's tree names. Throws FormatException for a name without a record.
int ChannelsOf(const Core::Property& stream);

/// What a bitrate is worked out from.
struct AudioFormat {
    long long sampleRate;  ///< Hz
    int channels;
    int bitsPerSample;
};
/// Reads all of it from an audio stream's tree before it looks up a name, so that of two failures it is always the same
/// that comes. Throws Core::PropertyException for what is missing, and FormatException as ChannelsOf does.
AudioFormat AudioFormatOf(const Core::Property& stream);

}  // namespace Norvex::Conf
