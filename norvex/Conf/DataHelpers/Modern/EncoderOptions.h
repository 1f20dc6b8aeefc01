#pragma once

#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"

/// What is asked of the running build's encoder beyond the lists that every codec helper has. Not for hosts.

namespace Norvex::Conf {

/// What the user of a codec may choose of its encoder's own options: a table of options with their values, of which
/// those stay that the encoder takes. Where the build has none, the whole table does. An option of which nothing stays
/// is left out of the defaults too.
class EncoderOptions {
public:
    explicit EncoderOptions(const std::string& codecId);

    /// `standard` is the value that the defaults have, or else the first one that the encoder takes. `option` is
    /// FFmpeg's name, where it is not the tag's text.
    template <std::size_t N>
    void Add(const std::string& tag, const std::string& standard, const char* const (&values)[N],
             const std::string& option = {}) {
        std::vector<Value> texts;
        for (const char* const value : values) texts.push_back({{std::string(), value}, value});
        AddValues(tag, {std::string(), standard}, texts, option);
    }
    template <std::size_t N>
    void Add(const std::string& tag, long long standard, const long long (&values)[N]) {
        std::vector<Value> numbers;
        for (const long long value : values) numbers.push_back({{std::string(), value}, std::to_string(value)});
        AddValues(tag, {std::string(), standard}, numbers, {});
    }
    void Add(const std::string& tag, bool standard);

    /// A value, and FFmpeg's text for it.
    struct Value {
        Core::Property value;
        std::string ffmpeg;
    };
    void AddValues(const std::string& tag, const Core::Property& standard, const std::vector<Value>& values,
                   const std::string& option);

    /// The node of a codec's defaults.
    Core::Property Defaults() const;
    void AddTo(ConstraintMap& constraints) const;

private:
    struct Option {
        std::string tag;
        Core::Property standard;
        SP<const IPropertyConstraint> allowed;
    };

    const Proc::SafeEncoderCodec m_encoder;  ///< asked while the table is made
    std::vector<Option> m_options;
};

/// Of the rates (Hz) those that the encoder takes, low ones included, which the common lists leave out; all of them
/// where there is no encoder, or where it has no list.
PairList<long long> RatesTaken(const std::string& codecId, const long long* begin, const long long* end);
template <std::size_t N>
PairList<long long> RatesTaken(const std::string& codecId, const long long (&rates)[N]) {
    return RatesTaken(codecId, rates, rates + N);
}

}  // namespace Norvex::Conf
