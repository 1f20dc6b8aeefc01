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

TEST(Encoders, TakeTheValuesThatTheirOptionsAllow) {
    const auto ffv1 = Proc::FindEncoder("ffv1", Proc::ImplNames::FFMPEG);
    std::string taken;
    for (const auto& [option, value] : {std::pair("slicecrc", "-1"),
                                        {"slicecrc", "1"},
                                        {"slicecrc", "2"},
                                        {"slicecrc", "-2"},
                                        {"slicecrc", "on"},
                                        {"coder", "rice"},
                                        {"coder", "no coder"},
                                        {"slices", "4"},
                                        {"rc_eq", "words"},
                                        {"no option", "1"}})
        taken += ffv1.TakesOption(option, value) ? '+' : '-';
    EXPECT_EQ(taken, "++---+-+--");
}

}  // namespace
