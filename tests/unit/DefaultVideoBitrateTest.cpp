#include <gtest/gtest.h>

#include <limits>

#include "norvex/Norvex.h"

namespace {

using namespace Norvex::Conf;
using V = IFormatCodecVideo;

const double inf = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> Ids() {
    std::vector<std::string> ids = GetAllVideoCodecs();
    ids.emplace_back("no codec");
    return ids;
}

/// Asks for a bitrate at each value of one argument. Counts the rises, and the falls, of which there may be none.
template <class T, class Ask>
int Rises(const std::vector<T>& ascending, const Ask& ask) {
    int rises = 0;
    for (std::size_t i = 1; i < ascending.size(); ++i) {
        const long long before = ask(ascending[i - 1]);
        const long long after = ask(ascending[i]);
        EXPECT_LE(before, after) << "from " << ascending[i - 1] << " to " << ascending[i];
        rises += before < after ? 1 : 0;
    }
    return rises;
}

TEST(DefaultVideoBitrate, NeverFallsWhenAnythingGetsBetter) {
    const std::vector<long long> sizes = {-1, 0, 1, 2, 176, 720, 1920, 7680, std::numeric_limits<long long>::max()};
    const std::vector<double> rates = {-inf, -1, 0, 1e-300, 0.5, 23.976, 25, 60, 240, 1e300, inf};
    std::vector<int> qualities = {std::numeric_limits<int>::max()};
    for (int quality = 60; quality >= -60; --quality) {
        if (quality != -1) qualities.push_back(quality);
    }
    for (const std::string& id : Ids()) {
        SCOPED_TRACE(id);
        EXPECT_GE(Rises(sizes, [&id](long long w) { return GetDefaultVideoBitrate(id, w, 1080, 25, 20); }), 2);
        EXPECT_GE(Rises(sizes, [&id](long long h) { return GetDefaultVideoBitrate(id, 1920, h, 25, 20); }), 2);
        EXPECT_GE(Rises(rates, [&id](double fps) { return GetDefaultVideoBitrate(id, 1920, 1080, fps, 20); }), 3);
        const int steps = Rises(qualities, [&id](int q) { return GetDefaultVideoBitrate(id, 720, 576, 25, q); });
        EXPECT_TRUE(steps == 0 || steps >= 40) << "either lossless, or about every quality counts, not " << steps;
    }
}

TEST(DefaultVideoBitrate, LiesWithinTheCommonRangeWhateverIsAsked) {
    for (const std::string& id : Ids()) {
        for (const long long size : {std::numeric_limits<long long>::min(), 0LL, 16LL, 1080LL, 1LL << 62}) {
            for (const double fps : {nan, -inf, 0.0, 1e-300, 29.97, inf}) {
                for (const int quality : {std::numeric_limits<int>::min(), -1, 0, 1, 51, 52}) {
                    const long long bitrate = GetDefaultVideoBitrate(id, size, size, fps, quality);
                    EXPECT_GE(bitrate, 100000) << id << ' ' << size << ' ' << fps << ' ' << quality;
                    EXPECT_LE(bitrate, V::MAX_VIDEO_BITRATE) << id << ' ' << size << ' ' << fps << ' ' << quality;
                }
            }
        }
    }
}

TEST(DefaultVideoBitrate, NoParticularQualityIsAnOrdinaryOne) {
    for (const std::string& id : Ids()) {
        const auto ask = [&id](int quality) { return GetDefaultVideoBitrate(id, 720, 576, 25, quality); };
        EXPECT_GE(ask(-1), ask(30)) << id;
        EXPECT_LE(ask(-1), ask(16)) << id;
        EXPECT_EQ(ask(0), ask(1)) << id << ": beyond the scale its end counts";
    }
    EXPECT_EQ(GetDefaultVideoBitrate("h264", 1920, 1080, 25, -1), 5184000) << "the rule of thumb for 1080p";
    EXPECT_LT(GetDefaultVideoBitrate("hevc", 1920, 1080, 25, 20), GetDefaultVideoBitrate("h264", 1920, 1080, 25, 20));
}

}  // namespace
