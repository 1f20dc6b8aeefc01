#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <typeinfo>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/FakeBuild.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using V = IFormatCodecVideo;
using Helpers = std::map<std::string, SP<const IDataHelper>>;

/// Helpers made anew, in a build in which the encoder of every codec takes 25 and 30000/1001 frames per second. Those
/// of the catalogue look at the build of its first request.
Helpers MakeHelpers() {
    std::map<std::string, FakeEncoder> encoders;
    for (const std::string& id : GetAllVideoCodecs()) encoders[id] = {{{25, 1}, {30000, 1001}}, {}, {}, {}};
    const FakeBuild build(encoders);
    Helpers helpers = {
        {"av1", DataHelperVideoCodecAV1::Create()},          {"dvvideo", DataHelperVideoCodecDV::Create()},
        {"flv1", DataHelperVideoCodecFlv1::Create()},        {"h263", DataHelperVideoCodecH263::Create()},
        {"h264", DataHelperVideoCodecX264::Create()},        {"hap", DataHelperVideoCodecHAP::Create()},
        {"hevc", DataHelperVideoCodecX265::Create()},        {"mjpeg", DataHelperVideoCodecMjpeg::Create()},
        {"mpeg1video", DataHelperVideoCodecMpeg1::Create()}, {"mpeg2video", DataHelperVideoCodecMpeg2::Create()},
        {"mpeg4", DataHelperVideoCodecMpeg4::Create()},      {"prores", DataHelperVideoCodecProres::Create()},
        {"qtrle", DataHelperVideoCodecRLE::Create()},        {"theora", DataHelperVideoCodecTheora::Create()},
        {"utvideo", DataHelperVideoCodecUTVideo::Create()},  {"vp8", DataHelperVideoCodecVP8::Create()},
        {"vp9", DataHelperVideoCodecVP9::Create()},          {"wmv2", DataHelperVideoCodecWmv2::Create()},
        {"wmv3", DataHelperVideoCodecWmv3::Create()},
    };
    std::istringstream stills("apng bmp dpx gif jpeg2000 jpegls pam pbm pcx pgm pgmyuv png ppm sgi targa tiff xbm xwd");
    for (std::string id; stills >> id;) helpers.emplace(id, DataHelperVideoCodecImageBase::Create(id));
    return helpers;
}

/// What the helpers answer, as "ANSWER: IDS; ANSWER: IDS". Where most agree, they go by the name of "the rest".
std::string Groups(const Helpers& helpers, const std::function<std::string(const IDataHelper&)>& ask) {
    std::map<std::string, std::pair<std::string, int>> groups;
    for (const auto& [id, helper] : helpers) {
        auto& [ids, count] = groups[ask(*helper)];
        ids += ' ' + id, ++count;
    }
    std::string text;
    for (const auto& [answer, group] : groups) {
        text += (text.empty() ? "" : "; ") + answer + ':' + (group.second > 18 ? " the rest" : group.first);
    }
    return text;
}

std::string ValueAt(const Property& tree, const std::string& path) {
    return tree.ChildExists(path) ? Core::PropertyValueToString(tree[path]) : "-";
}

std::string ListAt(const IDataHelper& helper, const std::string& path) {
    const SP<const IPropertyConstraint> constraint = CollectConstraints(helper)[path];
    const bool isShared = constraint == DataHelperCodecFFMPEG::s_defaultVideoBitrateConstraint ||
                          constraint == DataHelperCodecFFMPEG::s_defaultQualityConstraint;
    return isShared ? "shared" : constraint ? ListOf(*constraint) : "-";
}

/// The last steps of the rules' second paths, as "/TAG/TAG": of all rules, or of those that a preset breaks.
std::string Rules(const IDataHelper& helper, const Property* preset = nullptr) {
    std::string tags;
    for (const auto& [key, rule] : CollectRules(helper)) {
        const std::string& path = rule->GetSecondPath();
        if (preset == nullptr || !rule->IsValid(*preset)) tags += path.substr(path.rfind(key));
    }
    return tags;
}

Property Stream(long long width, long long height) {
    return Node(V::TAG_FORMAT_CODEC_VIDEO,
                {Property(V::TAG_WIDTH, width), Property(V::TAG_HEIGHT, height), Property(V::TAG_FPS, Ratio(25))});
}

TEST(VideoCodecs, EachRowOfTheCatalogueIsAHelperOfItsOwnClass) {
    const auto& table = GetAvailableDataHelpers(IPreset::KEY_FILTER_VIDEO_CODEC);
    EXPECT_EQ(table.size(), 36U);
    for (const auto& [id, helper] : MakeHelpers()) {
        SCOPED_TRACE(id);
        const IDataHelper& own = *helper;
        EXPECT_EQ(own.GetDefaults().GetName() + '/' + ValueAt(own.GetDefaults(), "codec_id"), "video_codec/" + id);
        EXPECT_TRUE(IsVideoCodec(id));
        const auto row = table.find(id);
        ASSERT_EQ(row == table.end(), id == "wmv3");
        if (row == table.end()) continue;
        const IDataHelper& other = *row->second;
        EXPECT_TRUE(typeid(other) == typeid(own)) << typeid(other).name();
        EXPECT_EQ(TreeDiff(own.GetDefaults(), other.GetDefaults()), "");
    }
    for (const char* id : {"vc1", "wmv3"}) {
        const auto failure = CatchFrom<HelperException>([id] { CreateDataHelper("video_codec", id); });
        EXPECT_EQ(TagOf<HelperException::TagTypeIsNotFound>(failure), id);
    }
}

TEST(VideoCodecs, DifferInTheirTables) {
    const Helpers helpers = MakeHelpers();
    const struct {
        const char* path;
        const char* defaults;
        const char* lists = "-: the rest";
    } cases[] = {
        {"bitrate", "-: av1 h264; 2000000: the rest", "-: utvideo; shared: the rest"},
        {"bitrate_mode", "cbr: the rest; cbr_auto: hevc; vbr: av1 h264 mjpeg vp9",
         "-: utvideo; cbr: dvvideo; cbr, vbr: the rest; vbr, cbr: av1 hap"},
        {"quality",
         "-: flv1 qtrle utvideo wmv2 wmv3; 1: the rest; 10: hap vp8 vp9; 12: mpeg1video mpeg2video mpeg4; 14: h264; "
         "18: av1",
         "-: utvideo; 1..31: wmv2; shared: the rest"},
        {"frame_rate", "-: the rest", "25, 29.97: the rest"},
        {"global_header", "-: the rest; true: av1 h264 hap hevc mpeg1video mpeg2video mpeg4 theora utvideo wmv2 wmv3"},
        {"max_b_frames", "-: the rest; 2: mpeg2video"},
        {"key_frame_interval", "-: the rest; 15: mpeg2video"},
        {"passes", "-: the rest; one_pass: h264", "-: the rest; one_pass, two_pass: h264"},
        {"encode_options/codec_format", "-: the rest; hap: hap", "-: the rest; hap, hap_q, hap_alpha: hap"},
        {"encode_options/preset", "-: the rest; faster: av1 h264 hevc",
         "-: the rest; ultrafast, superfast, veryfast, faster, fast, medium, slow, slower, veryslow, placebo: h264 "
         "hevc"},
        {"encode_options/profile", "-: the rest; 422: prores; main: av1 h264 hevc; profile0: vp9; simple: mpeg4",
         "-: the rest; baseline, main, high, high10, high422, high444: h264; main, main10: hevc; "
         "simple, main, core_scalable, advanced_simple: mpeg4"},
        {"encode_options/tune", "-: the rest; film: h264",
         "-: the rest; film, animation, grain, stillimage, psnr, ssim, fastdecode, zerolatency: h264"},
        {"encode_options/use_hw_context", "-: the rest; true: av1 h264 hevc vp9"},
        {"encode_options/disable_transparency", "-: the rest; false: prores qtrle vp8 vp9"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Groups(helpers, [&](const auto& h) { return ValueAt(h.GetDefaults(), c.path); }), c.defaults);
        EXPECT_EQ(Groups(helpers, [&](const auto& h) { return ListAt(h, c.path); }), c.lists);
    }
    const auto objects = [](const IDataHelper& helper) {
        ObjectList list;
        helper.GetRequiredObjects(list);
        return testing::PrintToString(list);
    };
    EXPECT_EQ(Groups(helpers, objects), R"({ ("filter_resize", ""), ("filter_rate", "") }: the rest; {}: flv1)");
    EXPECT_EQ(Groups(helpers, [](const auto& h) { return Rules(h); }),
              ": av1 hap theora vp8 vp9 wmv2 wmv3; /frame_rate: the rest; /frame_rate/frame_size_mode: dvvideo h263; "
              "/frame_rate/profile: h264 hevc; /frame_rate/width/height: mpeg1video; /width/height: mpeg2video");

    // The default preset, and not the fastest as for H.264.
    EXPECT_EQ(RulesOf(*helpers.at("hevc")).back(),
              "video_codec/encode_options/preset in faster -> video_codec/encode_options/profile in main");
    const auto quality = CollectConstraints(*helpers.at("wmv2")).at("quality");
    EXPECT_EQ(FixupOf(quality, Property("", 31)) + ", " + FixupOf(quality, Property("", 32)), "ok, fixed to 31");

    // MPEG-2 takes away its own rule about the frame rate, and none that it finds.
    RuleList rules = CollectRules(*helpers.at("mpeg1video"));
    const RuleList before = rules;
    helpers.at("mpeg2video")->GetValidationRules(rules);
    ASSERT_EQ(rules.size(), 5U);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), rules.begin()));
    EXPECT_EQ(rules[3].second->GetFirstConstraint(), rules[4].second->GetFirstConstraint());
}

TEST(VideoCodecs, LimitFrameSizesAndRates) {
    const Helpers helpers = MakeHelpers();
    const auto broken = [&](const std::string& id, const char* mode, long long width, long long height,
                            const Ratio& rate) {
        const Property size =
            Node("resize", {Property("frame_size_mode", mode), Property("width", width), Property("height", height)});
        const Property preset = Node("", {helpers.at(id)->GetDefaults(), Node("filter_resize", {size}),
                                          Node("filter_rate", {Property("frame_rate", rate)})});
        return Rules(*helpers.at(id), &preset);
    };
    for (const std::string id : {"mpeg1video", "mpeg2video"}) {
        EXPECT_EQ(broken(id, "custom", 3840, 2160, Ratio(30000, 1001)), "") << id;
        EXPECT_EQ(broken(id, "custom", 3842, 2162, Ratio(25)), "/width/height") << id;
        EXPECT_EQ(broken(id, "original", 33, 31, Ratio(25)), "/height") << id;
        EXPECT_EQ(broken(id, "original", 31, 33, Ratio(24)), id == "mpeg1video" ? "/frame_rate/width" : "/width");
    }
    for (const char* id : {"dvvideo", "h263"}) {
        EXPECT_EQ(broken(id, "custom", 1, 1, Ratio(24)), "/frame_rate") << "any size will do";
        for (const char* mode : {"custom_scale", "original", "half_original", "quarter_original", "352 x 288", ""}) {
            EXPECT_EQ(broken(id, mode, 720, 576, Ratio(25)), "/frame_size_mode") << id << ' ' << mode;
        }
    }
    const auto offered = [&helpers](const std::string& id) {
        const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
        CollectRules(*helpers.at(id)).back().second->GetSecondConstraint()->FillValueList(consumer);
        return Core::PropertyValueToString(consumer->GetValue());
    };
    EXPECT_EQ(offered("dvvideo"), "{720 x 480: {width: 720, height: 480}, 720 x 576: {width: 720, height: 576}}");
    EXPECT_EQ(offered("h263"),
              "{128 x 96: {width: 128, height: 96}, 176 x 144: {width: 176, height: 144}, 352 x 288: {width: 352, "
              "height: 288}, 704 x 576: {width: 704, height: 576}, 1408 x 1152: {width: 1408, height: 1152}}");
}

TEST(VideoCodecs, CorrectionSettlesWhatPresetsAndDefaultsLeaveOpen) {
    const auto& table = GetAvailableDataHelpers(IPreset::KEY_FILTER_VIDEO_CODEC);
    const Helpers helpers(table.begin(), table.end());
    const auto corrected = [](const IDataHelper& helper, Property stream) {
        helper.CorrectFormatCodec(stream);
        const Property once = stream;
        helper.CorrectFormatCodec(stream);
        EXPECT_EQ(TreeDiff(once, stream), "") << "a second correction changed something";
        for (const auto& [path, constraint] : CollectConstraints(helper)) {
            EXPECT_TRUE(!stream.ChildExists(path) || constraint->IsValid(stream[path])) << path;
        }
        return stream;
    };
    for (const auto& [id, helper] : helpers) {
        SCOPED_TRACE(id);
        Property stream = Stream(1280, 720);
        for (const Property& child : helper->GetDefaults()) stream.AddNamed(child);
        Property expected = stream;
        if (id == "hevc") expected["bitrate_mode"] = "cbr";  // the one default that is none of its own list
        EXPECT_EQ(TreeDiff(expected, corrected(*helper, stream)), "");
        // An export from the defaults, of a frame so small that the bitrate for it is below all ranges.
        Property tiny = Stream(16, 16);
        helper->ApplyPresetSettings(helper->GetDefaults(), tiny);
        EXPECT_NE(ValueAt(corrected(*helper, tiny), "bitrate_mode"), "cbr_auto");
    }
    const auto bFrames = [&](const auto& asked) {
        return Groups(helpers, [&](const auto& h) {
            Property stream = Node("s", {Property(V::TAG_BITRATE_MODE, "cbr"), asked});
            return ValueAt(corrected(h, stream), V::TAG_MAX_B_FRAME_SEQUENCE);
        });
    };
    EXPECT_EQ(bFrames(Property("max_b_frames", 5)), "-: flv1 h263 mjpeg wmv2; 5: the rest");
    EXPECT_EQ(bFrames(Property("cover", true)), "-: the rest; 2: mpeg2video");
    // A mode that is missing becomes the default as it is, which for H.265 only another correction settles.
    Property empty(std::string("s"));
    for (const char* mode : {"cbr_auto", "cbr"}) {
        helpers.at("hevc")->CorrectFormatCodec(empty);
        EXPECT_EQ(ValueAt(empty, V::TAG_BITRATE_MODE), mode);
    }
}

}  // namespace
