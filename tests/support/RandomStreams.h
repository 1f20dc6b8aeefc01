#pragma once

#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "norvex/foundation/Property.h"

namespace NorvexTest {

/// Flat nodes of streams at random: children that are missing, of the wrong type, at the edges, and legal ones. The
/// same seed and salt give the same streams; NORVEX_SEED in the environment takes the place of the seed.
class RandomStreams {
public:
    explicit RandomStreams(const std::string& salt) {
        if (const char* const seed = std::getenv("NORVEX_SEED")) m_seed = static_cast<unsigned>(std::atoi(seed));
        std::seed_seq sequence(salt.begin(), salt.end());
        std::vector<unsigned> salted(1);
        sequence.generate(salted.begin(), salted.end());
        m_engine.seed(m_seed ^ salted[0]);
    }

    unsigned Seed() const { return m_seed; }

    /// A stream of the kind for a codec's kind, and of either kind, or of none, for any other.
    Norvex::Core::Property Next(const std::string& kind) {
        using Norvex::Core::Property;
        bool isVideo = kind == "video_codec";
        if (!isVideo && kind != "audio_codec") isVideo = OneIn(2);
        Property stream(OneIn(20) ? "another" : isVideo ? "format_codec_video" : "format_codec_audio");
        static const Words videoCodecs = {"h264",    "hevc", "mpeg2video", "mpeg1video", "mpeg4", "mjpeg",
                                          "dvvideo", "gif",  "flv1",       "vp8",        "prores"};
        static const Words audioCodecs = {"aac",    "ac3",   "mp2",  "mp3", "amr_nb", "pcm_s16le",
                                          "vorbis", "wmav2", "flac", "dts", "pcm_u8"};
        static const Words modes = {"cbr", "vbr", "cbr_auto", ""};
        static const Words profiles = {"main", "high", "baseline", "x"};
        static const Words sampleFormats = {"s16", "fltp", "u8", "s32p", "dbl"};
        static const Words layouts = {"mono", "stereo", "5.1", "7.1", "2.1", "unknown"};
        const Words& codecs = isVideo ? videoCodecs : audioCodecs;
        Add(stream, "codec_id", [&](const auto& name) { return Property(name, Pick(codecs)); });
        Add(stream, "bitrate_mode", [&](const auto& name) { return Property(name, Pick(modes)); });
        Add(stream, "bitrate", [&](const auto& name) { return Property(name, Number(1000, 5000000)); });
        Add(stream, "quality", [&](const auto& name) { return Property(name, Number(0, 60)); });
        Add(stream, "a stranger", [&](const auto& name) { return Property(name, "stays"); });
        if (isVideo) {
            Add(stream, "frame_rate", [&](const auto& name) {
                return Property(name, Norvex::Core::Ratio(Number(1, 120000), OneIn(2) ? 1001 : 1000));
            });
            for (const char* const tag : {"width", "height", "max_b_frames", "key_frame_interval"}) {
                Add(stream, tag, [&](const auto& name) { return Property(name, Number(0, 2000)); });
            }
            Add(stream, "cover", [&](const auto& name) { return Property(name, OneIn(2)); });
            Add(stream, "encode_options", [&](const auto& name) {
                Property options(name);
                options.SetChildT("profile", Pick(profiles));
                return options;
            });
        } else {
            Add(stream, "sample_rate", [&](const auto& name) { return Property(name, Number(8000, 96000)); });
            Add(stream, "sample_format", [&](const auto& name) { return Property(name, Pick(sampleFormats)); });
            Add(stream, "channel_layout", [&](const auto& name) { return Property(name, Pick(layouts)); });
        }
        return stream;
    }

private:
    using Words = std::vector<std::string>;
    using Make = std::function<Norvex::Core::Property(const std::string&)>;

    bool OneIn(unsigned count) { return m_engine() % count == 0; }
    long long Number(long long lo, long long hi) {
        return lo + static_cast<long long>(m_engine() % static_cast<unsigned>(hi - lo));
    }
    template <class T>
    const T& Pick(const std::vector<T>& values) {
        return values[m_engine() % values.size()];
    }

    void Add(Norvex::Core::Property& stream, const std::string& name, const Make& make) {
        using Norvex::Core::Property;
        using Limits = std::numeric_limits<long long>;
        if (OneIn(12)) return;
        if (!OneIn(8)) {
            stream.AddNamed(make(name));
            return;
        }
        const Property strange[] = {Property(name, true),
                                    Property(name, Limits::max()),
                                    Property(name, Limits::min()),
                                    Property(name, -1),
                                    Property(name, 0),
                                    Property(name, 0.5),
                                    Property(name, "text"),
                                    Property(name, Norvex::Core::Ratio(-1, 3)),
                                    Property(name, ""),
                                    Property(name, std::numeric_limits<double>::quiet_NaN()),
                                    Property(name, Norvex::Core::Ratio(Limits::max(), 7)),
                                    Property(name)};
        stream.AddNamed(strange[m_engine() % std::size(strange)]);
    }

    unsigned m_seed = 20240229;
    std::mt19937 m_engine;
};

}  // namespace NorvexTest
