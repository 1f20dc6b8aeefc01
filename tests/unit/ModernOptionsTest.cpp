// What the second set asks of an encoder beyond the lists of every codec helper.

#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

TEST(ModernOptions, AreThoseThatTheEncoderTakes) {
    const std::string all = Dump(DataHelperVideoCodecFfv1::Create()->GetDefaults());
    EXPECT_NE(all.find("coder: string range_tab"), std::string::npos) << "without an encoder the whole table stands";
    EXPECT_EQ(CollectConstraints(*DataHelperVideoCodecFfv1::Create()).size(), 6U);

    const FakeBuild build({{"ffv1", {{}, {}, {}, {}, {{"coder", {"rice"}}, {"slices", {"6", "9", "10"}}}}}});
    const auto ffv1 = DataHelperVideoCodecFfv1::Create();
    const auto options = ffv1->GetDefaults()["encode_options"];
    EXPECT_EQ(options.Count(), 2U);
    EXPECT_EQ(options["coder"].GetString(), "rice");
    EXPECT_EQ(options["slices"].GetInt64(), 6);
    EXPECT_EQ(WhatIsAllowed(*CollectConstraints(*ffv1).at("encode_options/slices")).words, "one of 6, 9");
}

TEST(ModernOptions, OpusHasTheLowRatesOfItsEncoderToo) {
    const auto corrected = [] {
        Property low = Tree("format_codec_audio{sample_rate: 8000, sample_format: flt, channel_layout: mono}");
        DataHelperAudioCodecOpus::Create()->CorrectFormatCodec(low);
        return low["sample_rate"].GetInt64();
    };
    EXPECT_EQ(corrected(), 8000);
    const FakeBuild build({{"opus", {{}, {}, {48000}, {}}}});
    EXPECT_EQ(corrected(), 48000);
}

}  // namespace
