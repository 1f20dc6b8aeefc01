#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>

#include "norvex/foundation/Property.h"

namespace NorvexFuzz {

/// Values out of bytes that somebody else made up. When the bytes are used up, every value is the first of its kind.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_end(data + size) {}

    bool IsEmpty() const { return m_data == m_end; }

    /// A number below `end`, which is 256 at most.
    std::size_t Number(std::size_t end) { return IsEmpty() ? 0 : *m_data++ % end; }

    bool Flag() { return Number(2) != 0; }

    long long Integer() {
        using Limits = std::numeric_limits<long long>;
        static constexpr long long edges[] = {0,
                                              1,
                                              -1,
                                              2,
                                              25,
                                              51,
                                              192000,
                                              44100,
                                              2147483647,
                                              2147483648,
                                              -2147483648LL,
                                              500000000,
                                              1920,
                                              4294967296LL,
                                              1LL << 53,
                                              Limits::max(),
                                              Limits::min(),
                                              Limits::max() - 1};
        if (Flag()) return edges[Number(std::size(edges))];
        std::uint64_t number = 0;
        for (std::size_t bytes = Number(9); bytes > 0; --bytes) number = number << 8 | Number(256);
        return static_cast<long long>(number);
    }

    double Double() {
        using Limits = std::numeric_limits<double>;
        static constexpr double edges[] = {0.0,
                                           -0.0,
                                           Limits::infinity(),
                                           -Limits::infinity(),
                                           Limits::quiet_NaN(),
                                           Limits::max(),
                                           Limits::lowest(),
                                           Limits::denorm_min(),
                                           0.5};
        return Flag() ? edges[Number(std::size(edges))] : static_cast<double>(Integer()) / 256;
    }

    /// A word of the vocabulary, or any bytes.
    std::string Text() {
        // clang-format off
        static const char* const words[] = {
            "codec_id", "bitrate", "bitrate_mode", "quality", "frame_rate", "sample_rate", "sample_format",
            "channel_layout", "width", "height", "aspect_x", "aspect_y", "max_b_frames", "key_frame_interval",
            "cover", "encode_options", "profile", "preset", "tune", "fourcc", "lossless", "main_stream", "container",
            "type", "streams", "video", "audio", "format", "video_codec", "audio_codec", "format_codec_video",
            "format_codec_audio", "filter_resample", "resample", "filter_volume", "filter_formatter", "filter_rate",
            "filter_resize", "resize", "approved_vbr_only", "", "/", "a/b", "$none", "1/2", "30000/1001", "25",
            "1/0", "cbr", "vbr", "cbr_auto", "s16", "fltp", "stereo", "5.1", "unknown", "h264", "hevc", "mpeg2video",
            "mjpeg", "dvvideo", "gif", "aac", "ac3", "mp2", "mp3", "amr_nb", "pcm_s16le", "vorbis", "mp4", "mov",
            "matroska", "avi", "dvd", "flv", "mpegts", "webm", "swf", "wav", "3gp", "_any_", "main", "high",
            "baseline",
        };
        // clang-format on
        const std::size_t number = Number(256);
        if (number < std::size(words)) return words[number];
        std::string text;
        for (std::size_t length = Number(16); length > 0; --length) text += static_cast<char>(Number(256));
        return text;
    }

    /// The smallest number is left out: a ratio cannot be made of it.
    Norvex::Core::Ratio Ratio() {
        const auto part = [this] {
            const long long number = Integer();
            return number == std::numeric_limits<long long>::min() ? number + 1 : number;
        };
        const long long numerator = part();
        const long long denominator = part();
        return {numerator, denominator == 0 ? 1 : denominator};
    }

    /// A leaf of any type, a node without a value included.
    Norvex::Core::Property Leaf(const std::string& name) {
        using Norvex::Core::Property;
        switch (Number(7)) {
            case 0:
                return Property(name);
            case 1:
                return Property(name, Flag());
            case 2:
                return Property(name, Double());
            case 3:
                return Property(name, Integer());
            case 4:
                return Property(name, Text());
            case 5:
                return Property(name, Ratio());
            default: {
                Property none(name);
                none.CopyDataFrom(Property());
                return none;
            }
        }
    }

    /// A tree of no more than `levels` levels.
    Norvex::Core::Property Tree(const std::string& name, int levels) {
        Norvex::Core::Property node = Leaf(name);
        if (node.GetType() != Norvex::PT_NODE || levels <= 1) return node;
        for (std::size_t children = Number(16); children > 0 && !IsEmpty(); --children) {
            node.AddNamed(Tree(Text(), levels - 1));
        }
        return node;
    }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
};

/// Ends the process where the library broke its word, so that a fuzzer keeps the input.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

/// Equal in every respect: names, types, children, and numbers as they are written, so that NaN is like NaN.
inline bool Same(const Norvex::Core::Property& one, const Norvex::Core::Property& two) {
    if (one.GetName() != two.GetName() || one.GetType() != two.GetType() || one.Count() != two.Count()) return false;
    if (one.GetType() != Norvex::PT_NODE && PropertyValueToString(one) != PropertyValueToString(two)) return false;
    for (auto i = one.begin(), j = two.begin(); i != one.end(); ++i, ++j) {
        if (!Same(*i, *j)) return false;
    }
    return true;
}

}  // namespace NorvexFuzz
