#include "norvex/Conf/DataHelpers/Modern/EncoderOptions.h"

#include <algorithm>

#include "norvex/interfaces/Conf/IFormatCodec.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Conf {

using Core::Property;

EncoderOptions::EncoderOptions(const std::string& codecId)
    : m_encoder(Proc::FindEncoder(codecId, Proc::ImplNames::FFMPEG)) {}

void EncoderOptions::Add(const std::string& tag, bool standard) {
    AddValues(tag, {std::string(), standard}, {{{std::string(), false}, "0"}, {{std::string(), true}, "1"}}, {});
}

void EncoderOptions::AddValues(const std::string& tag, const Property& standard, const std::vector<Value>& values,
                               const std::string& option) {
    PairList<Property> taken;
    for (const Value& value : values) {
        if (m_encoder && !m_encoder.TakesOption(option.empty() ? tag : option, value.ffmpeg)) continue;
        taken.emplace_back(Core::PropertyValueToString(value.value), value.value);
    }
    if (taken.empty()) return;
    const bool isTaken =
        std::any_of(taken.begin(), taken.end(), [&standard](const auto& pair) { return pair.second == standard; });
    m_options.push_back(
        {tag, isTaken ? standard : taken.front().second, ConstraintSet::Create(standard.GetType(), taken)});
}

Property EncoderOptions::Defaults() const {
    Property node(IFormatCodec::TAG_CODEC_OPTIONS_ENCODE);
    for (const Option& option : m_options) node.SetChild(option.tag, option.standard);
    return node;
}

void EncoderOptions::AddTo(ConstraintMap& constraints) const {
    for (const Option& option : m_options) {
        constraints[Path(IFormatCodec::TAG_CODEC_OPTIONS_ENCODE, option.tag)] = option.allowed;
    }
}

PairList<long long> RatesTaken(const std::string& codecId, const long long* begin, const long long* end) {
    const Proc::SafeEncoderCodec encoder = Proc::FindEncoder(codecId, Proc::ImplNames::FFMPEG);
    const int* const declared = encoder ? encoder.GetSupportedSampleRates() : nullptr;
    PairList<long long> taken;
    for (; begin != end; ++begin) {
        const int* rate = declared;
        while (rate != nullptr && *rate != 0 && *rate != *begin) ++rate;
        if (rate == nullptr || *rate != 0) taken.push_back(Pair(*begin));
    }
    return taken;
}

}  // namespace Norvex::Conf
