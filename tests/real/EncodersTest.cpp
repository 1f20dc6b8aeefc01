#include <gtest/gtest.h>

#include "norvex/Norvex.h"

namespace {

using namespace Norvex;

TEST(Encoders, FindsFFmpegsDefaultEncoderOfACodec) {
    for (const auto& [number, id] : GetFFCodecsMap()) {
        EXPECT_EQ(Proc::FindEncoder(id, Proc::ImplNames::FFMPEG).Get(), avcodec_find_encoder(number)) << id;
    }
    for (const auto& none : {Proc::FindEncoder("aac", Proc::ImplNames::DEFAULT),
                             Proc::FindEncoder("no such codec", Proc::ImplNames::FFMPEG), Proc::SafeEncoderCodec()}) {
        EXPECT_FALSE(none);
        EXPECT_TRUE(none.GetSupportedFrameRates().empty());
        EXPECT_EQ(none.GetSupportedSampleFormats(), nullptr);
        EXPECT_EQ(none.GetSupportedSampleRates(), nullptr);
        EXPECT_EQ(none.GetSupportedChannelLayouts(), nullptr);
    }
}

TEST(Encoders, HaveFactsBesideTheRules) {
    const auto factsOf = [](const char* id) {  // of a codec's encoder, or of one by its own name
        const auto encoder = Proc::FindEncoder(id, Proc::ImplNames::FFMPEG);
        return Proc::FactsOf(encoder ? encoder : Proc::SafeEncoderCodec(avcodec_find_encoder_by_name(id)));
    };
    const auto formatOf = [&](const char* id, const std::string& name) {
        for (const Proc::PixelFormatFacts& f : factsOf(id).pixelFormats) {
            if (f.name == name) {
                return f.sampling + ' ' + std::to_string(f.bits) + (f.alpha ? " alpha" : "") +
                       (f.isFloat ? " float" : "");
            }
        }
        return std::string("none");
    };
    const struct {
        const char *id, *format, *facts;
    } formats[] = {
        {"mpeg2video", "yuv420p", "4:2:0 8"},
        {"mpeg2video", "yuv422p", "4:2:2 8"},
        {"png", "rgba", "RGB 8 alpha"},
        {"png", "gray", "grey 8"},
        {"png", "monob", "grey 1"},
        {"png", "rgb48be", "RGB 16"},
        {"gif", "pal8", "palette 8 alpha"},
        {"ffv1", "yuv444p10le", "4:4:4 10"},
        {"ffv1", "yuv411p", "4:1:1 8"},
        {"ffv1", "yuv410p", "4:1:0 8"},
        {"exr", "gbrapf32le", "RGB 32 alpha float"},
        {"libopenjpeg", "xyz12le", "XYZ 12"},
        {"h264_vaapi", "vaapi", "hardware 0"},
        {"mpeg2video", "rgb24", "none"},
        {"aac", "yuv420p", "none"},
        {"no such codec", "rgb24", "none"},
    };
    for (const auto& f : formats) EXPECT_EQ(formatOf(f.id, f.format), f.facts) << f.id << ' ' << f.format;
    EXPECT_TRUE(factsOf("huffyuv").isLossless && factsOf("huffyuv").isIntraOnly && !factsOf("huffyuv").isLossy);
    EXPECT_TRUE(factsOf("huffyuv").threadsFrames && !factsOf("huffyuv").threadsSlices);
    EXPECT_TRUE(factsOf("mpeg2video").isLossy && !factsOf("mpeg2video").isIntraOnly);
    EXPECT_TRUE(factsOf("mpeg2video").threadsSlices && !factsOf("mpeg2video").isHardware);
    EXPECT_TRUE(factsOf("dts").isExperimental && factsOf("truehd").isExperimental);
    EXPECT_TRUE(factsOf("h264").threadsItself && factsOf("h264_vaapi").isHardware);
    const Proc::EncoderFacts none = factsOf("no such codec");
    EXPECT_FALSE(none.isHardware || none.isExperimental || none.threadsFrames || none.threadsSlices ||
                 none.threadsItself || none.isLossless || none.isLossy || none.isIntraOnly);
}

TEST(Encoders, TakeTheValuesThatTheirOptionsAllow) {
    const auto ffv1 = Proc::FindEncoder("ffv1", Proc::ImplNames::FFMPEG);
    std::string taken;
    for (const auto& [option, value] : {std::pair("slicecrc", "-1"),
                                        {"slicecrc", "1"},
                                        {"slicecrc", "9"},
                                        {"slicecrc", "-2"},
                                        {"slicecrc", "1x"},
                                        {"slicecrc", "on"},
                                        {"coder", "rice"},
                                        {"coder", "no coder"},
                                        {"slices", "4"},
                                        {"rc_eq", "words"},
                                        {"no option", "1"}})
        taken += ffv1.TakesOption(option, value) ? '+' : '-';
    EXPECT_EQ(taken, "++----+-+--");
}

}  // namespace
