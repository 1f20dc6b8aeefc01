#include <cmath>
#include <limits>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using Core::Ratio;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;
using Proc::IResize;
using Proc::SettingsResizer;

Property ResamplePreset(long long rate, const std::string& layout) {
    return Tree("p{resample: {sample_rate: " + std::to_string(rate) + ", channel_layout: " + layout + "}}");
}

TEST(Resample, AppliesWhatIsNotLeftToTheSource) {
    Property withFormat = ResamplePreset(-1, "unknown");
    withFormat.SetChildT(A::TAG_SAMPLE_FORMAT, "fltp");
    const std::pair<Property, const char*> cases[] = {
        {ResamplePreset(-1, "unknown"), "{sample_rate: 48000, channel_layout: 5.1, sample_format: u8}"},
        {ResamplePreset(22050, "mono"), "{sample_rate: 22050, channel_layout: mono, sample_format: u8}"},
        {withFormat, "{sample_rate: 48000, channel_layout: 5.1, sample_format: fltp, bits_per_sample: 32}"},
    };
    for (const auto& [preset, applied] : cases) {
        Property target = Tree("s{sample_rate: 48000, channel_layout: 5.1, sample_format: u8}");
        DataHelperAudioResample::Create()->ApplyPresetSettings(preset, target);
        EXPECT_EQ(PropertyValueToString(target), applied);
    }
}

TEST(Filters, NeedTheChildrenThatTheyWrite) {
    const Property empty(std::string("s"));
    const auto resample = DataHelperAudioResample::Create(), rate = DataHelperVideoResample::Create(),
               resize = DataHelperVideoResize::Create();
    const std::tuple<SP<IDataHelper>, Property, std::string> cases[] = {
        {resample, empty, "resample"},
        {resample, ResamplePreset(8000, "unknown"), A::TAG_SAMPLE_RATE},
        {resample, ResamplePreset(-1, "mono"), A::TAG_LAYOUT},
        {rate, empty, V::TAG_FPS},
        {rate, rate->GetDefaults(), V::TAG_FPS},
        {resize, resize->GetDefaults(), V::TAG_WIDTH},
    };
    for (const auto& [helper, preset, missing] : cases) {
        EXPECT_THAT(FailureOf<Core::PropertyException>([&helper = helper, &preset = preset, stream = empty]() mutable {
                        helper->ApplyPresetSettings(preset, stream);
                    }),
                    testing::StartsWith("There is no such child, details " + missing + ", node "));
    }
}

TEST(FrameRate, OffersExactRatiosAndKeepsTheSourcesOnRequest) {
    const auto helper = DataHelperVideoResample::Create();
    const auto constraint = CollectConstraints(*helper).at(V::TAG_FPS);
    EXPECT_TRUE(constraint->IsValid(Property("", Ratio(60000, 1001))));
    EXPECT_FALSE(constraint->IsValid(Property("", Ratio(23976, 1000))));
    EXPECT_NE(CollectConstraints(*helper).at(V::TAG_FPS), constraint) << "new on each call";
    for (const auto& [preset, applied] :
         {std::pair(Ratio(50, 1), Ratio(50, 1)),
          std::pair(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE, Ratio(7, 1))}) {
        Property stream = Tree("s{frame_rate: 7/1}");
        helper->ApplyPresetSettings(Proc::IFilterFrameRate::MakeSettings(preset), stream);
        EXPECT_EQ(stream[V::TAG_FPS].GetRatio(), applied);
    }
}

TEST(Resize, WantsEvenSizesWithoutACondition) {
    const RuleList rules = CollectRules(*DataHelperVideoResize::Create());
    EXPECT_EQ(rules[0].second->GetSecondConstraint(), rules[1].second->GetSecondConstraint());
    EXPECT_EQ(rules[0].second->GetSecondConstraint()->Description("x"), IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE);
    EXPECT_FALSE(rules[0].second->GetFirstConstraint());
    const auto constraints = CollectConstraints(*DataHelperVideoResize::Create());
    for (const auto& [tag, size, valid] :
         {std::tuple("resize/width", 33, true), std::tuple("resize/width", 8192, true),
          std::tuple("resize/width", 8193, false), std::tuple("resize/height", 4320, true),
          std::tuple("resize/height", 4322, false), std::tuple("resize/height", 31, false)}) {
        EXPECT_EQ(constraints.at(tag)->IsValid(Property("", size)), valid) << tag << ' ' << size;
    }
}

std::string Text(const FrameInfo& f) {
    return std::to_string(f.width) + "x" + std::to_string(f.height) + " " + std::to_string(f.aspectX) + ":" +
           std::to_string(f.aspectY);
}

TEST(Resizer, SettlesTheOutputFrame) {
    using Custom = SettingsResizer::CustomModes;
    using Size = SettingsResizer::FrameSizeModes;
    constexpr int huge = std::numeric_limits<std::int32_t>::max();
    const FrameInfo wide = {1920, 1080, 1, 1};
    const struct {
        Size sizeMode;
        Custom mode;
        FrameInfo custom;
        double scale;
        FrameInfo input;
        const char* output;
    } cases[] = {
        {Size::Original, Custom::Auto, {800, 600, 1, 1}, 1, {853, 479, 4, 3}, "853x479 4:3"},
        {Size::HalfOriginal, Custom::Auto, {}, 1, {853, 479, 4, 3}, "426x240 4:3"},
        {Size::QuarterOriginal, Custom::Auto, {}, 1, wide, "480x270 1:1"},
        {Size::QuarterOriginal, Custom::Auto, {}, 1, {3, 3, 1, 1}, "2x2 1:1"},
        {Size::CustomScale, Custom::Auto, {}, 1.5, wide, "2880x1620 1:1"},
        {Size::CustomScale, Custom::Auto, {}, 1e30, wide, "2147483646x2147483646 1:1"},
        {Size::CustomScale, Custom::Auto, {}, -1, wide, "2x2 1:1"},
        {Size::CustomScale, Custom::Auto, {}, std::nan(""), wide, "2x2 1:1"},
        {Size::CustomScale, Custom::Auto, {}, HUGE_VAL, {0, 9, 1, 1}, "2x2147483646 1:1"},
        {Size::Custom, Custom::Letterbox, {800, 600, 1, 1}, 1, wide, "800x600 1:1"},
        {Size::Custom, Custom::Crop, {800, 600, 1, 1}, 1, wide, "800x600 1:1"},
        {Size::Custom, Custom::Stretch, {800, 600, 1, 1}, 1, wide, "800x600 1:1"},
        {Size::Custom, Custom::Auto, {800, 600, 1, 1}, 1, wide, "800x600 1:1"},
        {Size::Custom, Custom::SmartFit, {800, 600, 1, 1}, 1, wide, "800x450 1:1"},
        {Size::Custom, Custom::SmartFit, {800, 600, 1, 1}, 1, {160, 90, 1, 1}, "800x450 1:1"},
        {Size::Custom, Custom::SmartFit, {800, 600, 1, 1}, 1, {720, 576, 16, 15}, "800x600 1:1"},
        {Size::Custom, Custom::UpTo, {800, 600, 1, 1}, 1, wide, "800x450 1:1"},
        {Size::Custom, Custom::UpTo, {800, 600, 1, 1}, 1, {161, 91, 1, 1}, "160x90 1:1"},
        {Size::Custom, Custom::SmartFit, {800, 600, 1, 1}, 1, {0, 0, 0, 0}, "800x600 1:1"},
        {Size::Custom, Custom::SmartFit, {800, 600, 0, -1}, 1, {huge, 1, 1, 1}, "800x2 0:-1"},
        {Size::Custom, Custom::SmartFit, {720, 576, 16, 15}, 1, {1920, 1080, 1, 1}, "720x432 16:15"},
        {Size::Custom, Custom::SmartFit, {1, -5, 1, 1}, 1, wide, "2x2 1:1"},
    };
    for (const auto& c : cases) {
        SettingsResizer settings;
        settings.SetCustomMode(c.mode, c.custom);
        settings.frameSizeMode = c.sizeMode;
        settings.scale = c.scale;
        EXPECT_EQ(Text(settings.GetOutputFrameSize(c.input)), c.output) << Text(c.input) << " in " << Text(c.custom);
    }
    Property stream = Tree("s{width: 1920, height: 1080, aspect_x: 4, aspect_y: 3}");
    Property preset = DataHelperVideoResize::Create()->GetDefaults();
    preset["resize/mode"] = Proc::IResize::MODE_SMART_FIT;
    DataHelperVideoResize::Create()->ApplyPresetSettings(preset, stream);
    EXPECT_EQ(PropertyValueToString(stream), "{width: 800, height: 338, aspect_x: 1, aspect_y: 1}");
}

TEST(Resizer, SettingsSurviveTheirTree) {
    for (int i = 0; i < 6 * 5 * 4; ++i) {
        SettingsResizer settings;
        settings.SetCustomMode(static_cast<SettingsResizer::CustomModes>(i / 20), {33, 77, 5, 9});
        settings.frameSizeMode = static_cast<SettingsResizer::FrameSizeModes>(i / 4 % 5);
        settings.method = static_cast<SettingsResizer::Methods>(i % 4);
        settings.scale = 0.3;
        settings.backgroundColor = 0xFFA0B0C0;
        settings.implementation = "another";
        const Property tree = Proc::IFilterResize::Settings2Property(settings);
        EXPECT_EQ(TreeDiff(tree, Proc::IFilterResize::Settings2Property(Proc::IFilterResize::Property2Settings(tree))),
                  "");
        for (const auto& [path, constraint] : CollectConstraints(*DataHelperVideoResize::Create())) {
            EXPECT_TRUE(constraint->IsValid(tree[path])) << path << ' ' << Dump(tree);
        }
    }
}

TEST(Resizer, RefusesSettingsThatNameNothing) {
    Property tree = Proc::IFilterResize::Settings2Property({});
    tree["resize/method"] = "magic";
    EXPECT_EQ(FailureOf<Proc::SettingsException>([&] { Proc::IFilterResize::Property2Settings(tree); }),
              "Unknown value of method, details magic");
    for (const int number : {-1, 6}) {
        SettingsResizer settings;
        settings.mode = static_cast<SettingsResizer::CustomModes>(number);
        EXPECT_EQ(FailureOf<Proc::SettingsException>([&] { Proc::IFilterResize::Settings2Property(settings); }),
                  "Unknown value of mode, details " + std::to_string(number));
    }
    const Property whole = Proc::IFilterResize::Settings2Property({});
    for (const Property& child : whole["resize"]) {
        Property broken = whole;
        broken["resize"].RemoveChild(child.GetName());
        EXPECT_THAT(FailureOf<Core::PropertyException>([&] { Proc::IFilterResize::Property2Settings(broken); }),
                    testing::HasSubstr("details " + child.GetName() + ", "));
    }
}

TEST(DefaultVideoBitrate, NeverFallsWhenSomethingGetsBetter) {
    int sweeps = 0;
    for (const std::string& id : GetAllVideoCodecs()) {
        SCOPED_TRACE(id);
        const auto grows = [&sweeps](const auto& bitrateAt, int steps) {
            ++sweeps;
            for (int step = 1; step < steps; ++step) {
                const long long bitrate = bitrateAt(step);
                if (bitrate < bitrateAt(step - 1) || bitrate < 100000 || bitrate > V::MAX_VIDEO_BITRATE) return step;
            }
            return 0;
        };
        EXPECT_EQ(grows([&](int q) { return GetDefaultVideoBitrate(id, 1280, 720, 25, 51 - q); }, 51), 0);
        EXPECT_EQ(grows([&](int f) { return GetDefaultVideoBitrate(id, 1280, 720, f * 0.5, -1); }, 500), 0);
        EXPECT_EQ(grows([&](int w) { return GetDefaultVideoBitrate(id, w * 16, 720, 25, 20); }, 512), 0);
        EXPECT_EQ(grows([&](int h) { return GetDefaultVideoBitrate(id, 1280, h * 16, 25, 20); }, 270), 0);
        EXPECT_EQ(GetDefaultVideoBitrate(id, 1280, 720, 25, -5), GetDefaultVideoBitrate(id, 1280, 720, 25, 1));
        EXPECT_EQ(GetDefaultVideoBitrate(id, 1280, 720, 25, 99), GetDefaultVideoBitrate(id, 1280, 720, 25, 51));
        for (const double fps : {0.0, -1.0, std::nan("")})
            EXPECT_EQ(GetDefaultVideoBitrate(id, 1280, 720, fps, 1), 100000);
        EXPECT_EQ(GetDefaultVideoBitrate(id, 1280, 720, HUGE_VAL, 1), V::MAX_VIDEO_BITRATE);
    }
    EXPECT_EQ(sweeps, 38 * 4);
    for (const long long size : {-1LL, 0LL, 1LL, std::numeric_limits<long long>::max()}) {
        EXPECT_EQ(GetDefaultVideoBitrate("no codec", size, size, 25, -1), size > 1 ? V::MAX_VIDEO_BITRATE : 100000);
    }
    // Each generation needs fewer bits than the one before it.
    const char* const generations[] = {"av1", "hevc", "h264", "mpeg4", "mpeg2video", "mpeg1video", "mjpeg"};
    for (std::size_t i = 1; i < std::size(generations); ++i) {
        EXPECT_LT(GetDefaultVideoBitrate(generations[i - 1], 1920, 1080, 25, -1),
                  GetDefaultVideoBitrate(generations[i], 1920, 1080, 25, -1));
    }
    EXPECT_EQ(GetDefaultVideoBitrate("h264", 1920, 1080, 25, -1), 5184000) << "the customary 5 Mbit/s";
}

}  // namespace
