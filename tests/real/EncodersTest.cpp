#include <gtest/gtest.h>

#include "norvex/Norvex.h"

namespace {

using namespace Norvex;

TEST(Encoders, FindsFFmpegsDefaultEncoderOfACodec) {
    EXPECT_EQ(Proc::FindEncoder("aac", Proc::ImplNames::FFMPEG).Get(), avcodec_find_encoder(AV_CODEC_ID_AAC));
    for (const auto& none : {Proc::FindEncoder("aac", Proc::ImplNames::DEFAULT),
                             Proc::FindEncoder("no such codec", Proc::ImplNames::FFMPEG), Proc::SafeEncoderCodec()}) {
        EXPECT_FALSE(none);
        EXPECT_TRUE(none.GetSupportedFrameRates().empty());
        EXPECT_EQ(none.GetSupportedSampleFormats(), nullptr);
        EXPECT_EQ(none.GetSupportedSampleRates(), nullptr);
        EXPECT_EQ(none.GetSupportedChannelLayouts(), nullptr);
    }
}

}  // namespace
