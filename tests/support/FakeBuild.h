#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
}

#include <map>
#include <string>
#include <vector>

namespace NorvexTest {

/// What an encoder declares. An empty list is one that the encoder does not declare.
struct FakeEncoder {
    std::vector<AVRational> frameRates;
    std::vector<AVSampleFormat> sampleFormats;
    std::vector<int> sampleRates;
    std::vector<AVChannelLayout> layouts;
    std::map<std::string, std::vector<std::string>> options = {};  ///< the values that each option takes
};

/// An FFmpeg build whose encoders, by codec id, are what the test says, for as long as this lives. While there is
/// none, no codec has an encoder.
class FakeBuild {
public:
    explicit FakeBuild(const std::map<std::string, FakeEncoder>& encoders);
    ~FakeBuild();
    FakeBuild(const FakeBuild&) = delete;
    FakeBuild& operator=(const FakeBuild&) = delete;
};

/// A layout of AV_CH_ bits, and one of a mere count.
AVChannelLayout NativeLayout(unsigned long long mask);
AVChannelLayout UnorderedLayout(int channels);

}  // namespace NorvexTest
