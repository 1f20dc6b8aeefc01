#include "norvex/Conf/DataHelpers/Words.h"

#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/PairValidationRule.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Conf {

namespace {

using C = IFormatCodec;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;
using P = IPreset;

void AddAll(Core::Property& parent, std::initializer_list<Branch> branches) {
    for (const Branch& branch : branches) branch.AddTo(parent);
}

}  // namespace

void Branch::AddTo(Core::Property& parent) const {
    if (const auto* flag = std::get_if<bool>(&m_value)) {
        parent.CreateChildT(m_tag, *flag);
    } else if (const auto* number = std::get_if<long long>(&m_value)) {
        parent.CreateChildT(m_tag, *number);
    } else if (const auto* text = std::get_if<const std::string*>(&m_value)) {
        parent.CreateChildT(m_tag, **text);
    } else {
        AddAll(parent.SetChild(m_tag), std::get<std::initializer_list<Branch>>(m_value));
    }
}

Core::Property Tree(const std::string& name, std::initializer_list<Branch> branches) {
    Core::Property root(name);
    AddAll(root, branches);
    return root;
}

Core::Property AudioCodecTree(std::initializer_list<Branch> branches) {
    return Tree(P::KEY_FILTER_AUDIO_CODEC, branches);
}

Core::Property VideoCodecTree(std::initializer_list<Branch> branches) {
    return Tree(P::KEY_FILTER_VIDEO_CODEC, branches);
}

SP<IPropertyConstraint> OneOf(const long long* begin, const long long* end) {
    PairList<long long> list;
    list.reserve(static_cast<std::size_t>(end - begin));
    for (; begin != end; ++begin) list.push_back(Pair(*begin));
    return ConstraintSet::Create(list);
}

SP<IPropertyConstraint> Only(bool value) {
    return ConstraintSet::Create(BeginPairList(value));
}

const std::string& VideoCodecIdPath() {
    static const std::string& path = Lasting(Path(P::KEY_FILTER_VIDEO_CODEC, C::TAG_CODEC_ID));
    return path;
}

const std::string& FrameRatePath() {
    static const std::string& path = Lasting(Path(Proc::IFilterFrameRate::CLASS_ID, V::TAG_FPS));
    return path;
}

const std::string& WidthPath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResize::CLASS_ID, Proc::IResize::CLASS_ID, V::TAG_WIDTH));
    return path;
}

const std::string& HeightPath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResize::CLASS_ID, Proc::IResize::CLASS_ID, V::TAG_HEIGHT));
    return path;
}

const std::string& FrameSizeModePath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResize::CLASS_ID, Proc::IResize::CLASS_ID, Proc::IResize::FRAME_SIZE_MODE));
    return path;
}

const std::string& AudioCodecIdPath() {
    static const std::string& path = Lasting(Path(P::KEY_FILTER_AUDIO_CODEC, C::TAG_CODEC_ID));
    return path;
}

const std::string& AudioBitratePath() {
    static const std::string& path = Lasting(Path(P::KEY_FILTER_AUDIO_CODEC, C::TAG_BITRATE));
    return path;
}

const std::string& SampleRatePath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_RATE));
    return path;
}

const std::string& SampleFormatPath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_FORMAT));
    return path;
}

const std::string& LayoutPath() {
    static const std::string& path =
        Lasting(Path(Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_LAYOUT));
    return path;
}

const std::string& CoverFlagPath() {
    static const std::string& path = Lasting(Path(P::KEY_FORMAT, V::TAG_COVER_FLAG));
    return path;
}

const std::string& FormatProfilePath() {
    static const std::string& path = Lasting(Path(P::KEY_FORMAT, C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE));
    return path;
}

const std::string& ProfileKey() {
    static const std::string& key = Lasting(Path(C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE));
    return key;
}

const std::string& PresetKey() {
    static const std::string& key = Lasting(Path(C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PRESET));
    return key;
}

std::string StreamCodecPattern(const std::string& streamType, const std::string& codecKey) {
    return Path(P::KEY_STREAMS + P::INDEX + streamType, codecKey, C::TAG_CODEC_ID);
}

void AddRule(RuleList& rules, const std::string& firstPath, SP<IPropertyConstraint> firstConstraint,
             const std::string& secondPath, SP<IPropertyConstraint> secondConstraint) {
    rules.emplace_back(Core::Property::SEPARATOR, PairValidationRule::Create(firstPath, std::move(firstConstraint),
                                                                             secondPath, std::move(secondConstraint)));
}

namespace {

template <class Rules>
auto FindRule(Rules& rules, const std::string& secondPath) {
    return std::find_if(rules.begin(), rules.end(), [&secondPath](const auto& rule) {
        return rule.second && rule.second->GetSecondPath() == secondPath;
    });
}

}  // namespace

bool Speaks(const RuleList& rules, const std::string& secondPath) {
    return FindRule(rules, secondPath) != rules.end();
}

void Silence(RuleList& rules, const std::string& secondPath) {
    if (const auto rule = FindRule(rules, secondPath); rule != rules.end()) rules.erase(rule);
}

int ChannelsOf(const Core::Property& stream) {
    return LayoutRecord::Find(stream[A::TAG_LAYOUT].GetString()).channels;
}

AudioFormat AudioFormatOf(const Core::Property& stream) {
    const long long sampleRate = stream[A::TAG_SAMPLE_RATE].GetInt64();
    const std::string& layout = stream[A::TAG_LAYOUT].GetString();
    const std::string& format = stream[A::TAG_SAMPLE_FORMAT].GetString();
    return {sampleRate, LayoutRecord::Find(layout).channels, SampleFmtRecord::Find(format).bits};
}

}  // namespace Norvex::Conf
