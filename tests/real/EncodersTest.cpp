#include <gtest/gtest.h>

#include "norvex/Norvex.h"

namespace {

using namespace Norvex;

TEST(Encoders, FindsFFmpegsDefaultEncoderOfACodec) {
    EXPECT_EQ(Proc::FindEncoder("aac", Proc::ImplNames::FFMPEG).Get(), avcodec_find_encoder(AV_CODEC_ID_AAC));
    EXPECT_FALSE(Proc::FindEncoder("aac", Proc::ImplNames::DEFAULT));
    EXPECT_FALSE(Proc::FindEncoder("no such codec", Proc::ImplNames::FFMPEG));
}

}  // namespace
