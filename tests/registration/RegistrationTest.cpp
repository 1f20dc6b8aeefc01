// Helpers of the host's own. Each test needs tables that nobody has built: it has a process of its own under ctest.

#include <atomic>
#include <stdexcept>
#include <thread>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::Contains;

class HostHelper final : public RefCounted<PlainHelper> {
public:
    explicit HostHelper(const std::string& name) : m_name(name) {}
    Property GetDefaults() const override { return Property(m_name); }

private:
    const std::string m_name;
};

SP<const IDataHelper> MakeCodec() {
    SP<TestCodec> codec(new TestCodec(MediaType::Audio, "tta"));
    codec->defaults = Node("audio_codec", {Property("codec_id", "tta"), Property("global_header", true)});
    return codec;
}

SP<const IDataHelper> MakePlain() {
    return SP<const IDataHelper>(new HostHelper("host"));
}

/// The words of the failure, or nothing.
std::string RefusalOf(const std::function<void()>& work) {
    try {
        work();
        return {};
    } catch (const RegistrationException& failure) {
        const auto* const words = boost::get_error_info<TagDescription>(failure);
        return words != nullptr && boost::get_error_info<TagCallStack>(failure) != nullptr ? *words : "no words";
    }
}

std::string Register(const std::string& kind, const std::string& id, const DataHelperMaker& make = MakePlain) {
    return RefusalOf([&] { RegisterDataHelper(kind, id, make); });
}

void Ask(const std::string& kind) {
    GetAvailableDataHelpers(kind);
}

const char* const g_tooLate = "It is too late to register a helper: a table stands.";
const char* const g_known = "A helper is registered already.";
const char* const g_within = "A table of helpers is asked for from within its own build.";
const char* const g_null = "The function that makes the helper gave none.";

const std::string g_beforeMain = Register("video_codec", "before main");

TEST(Registration, BeforeMainWorksOrFails) {
    EXPECT_EQ(GetAvailableDataHelpers("video_codec").count("before main"), g_beforeMain.empty() ? 1U : 0U);
}

TEST(Registration, IsFoundLikeAnyOther) {
    const std::pair<const char*, const char*> rows[] = {
        {"audio_codec", "aac"}, {"video_codec", "host"}, {"format", "host"},
        {"format", "mp4"},      {"filter_host", ""},     {"filter_volume", ""},
    };
    for (const auto& [kind, id] : rows) ASSERT_EQ(Register(kind, id), "");
    ASSERT_EQ(Register("audio_codec", "tta", MakeCodec), "");
    ASSERT_EQ(Register("audio_codec", "of both kinds"), "");
    ASSERT_EQ(Register("video_codec", "of both kinds", MakeCodec), "");
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());

    for (const auto& [kind, id] : rows) {
        EXPECT_EQ(CreateDataHelper(kind, id)->GetDefaults().GetName(), "host") << kind << id;
        EXPECT_EQ(CreateDataHelperAuto(kind, id)->GetDefaults().GetName(), "host") << kind << id;
    }
    EXPECT_EQ(CreateDataHelper("format_codec_audio", "aac"), CreateDataHelper("audio_codec", "aac"));
    EXPECT_EQ(GetAvailableDataHelpers("format").size(), 65U);
    EXPECT_EQ(GetAvailableDataHelpers("audio_codec").size(), 28U);
    EXPECT_EQ(HelpersOf(Node("preset", {Node("format", {Property("container", "host")}),
                                        Node("audio_codec", {Property("codec_id", "tta")}), Property("filter_host")}))
                  .size(),
              3U);

    const Property tta("", "tta");
    const auto carries = [&tta](const char* format) {
        return CollectConstraints(*CreateDataHelper("format", format))
            .at("streams_any_audio/audio_codec/codec_id")
            ->IsValid(tta);
    };
    EXPECT_TRUE(carries("matroska"));
    EXPECT_FALSE(carries("qfx"));
    EXPECT_TRUE(CodecHasGlobalHeader("tta") && CodecHasGlobalHeader("of both kinds"));
    EXPECT_FALSE(IsAudioCodec("tta"));
    EXPECT_THAT(GetAllAudioCodecs(), Not(Contains("tta")));
}

TEST(Registration, MendingLeavesOutWhatNoValueMends) {
    const auto make = [] {
        SP<TestCodec> codec(new TestCodec(MediaType::Audio, "tta"));
        codec->defaults = Node("audio_codec", {Property("codec_id", "tta"), Property("quality", 5)});
        codec->constraints["quality"] = ConstraintSet::Create(PairList<long long>());
        return SP<const IDataHelper>(codec);
    };
    ASSERT_EQ(Register("audio_codec", "tta", make), "");
    const MendedPreset mended =
        MendPreset(Node("preset", {Node("audio_codec", {Property("codec_id", "tta"), Property("quality", 5)})}));
    EXPECT_EQ(PropertyValueToString(mended.preset), "{audio_codec: {codec_id: tta}}");
    EXPECT_EQ(mended.values.at(0).message, "audio_codec/quality is left out");
    EXPECT_TRUE(mended.left.empty());
}

TEST(Registration, FunctionsRunOnceCodecsFirst) {
    static std::vector<std::string> made;
    static std::vector<std::string> asked;
    const auto make = [](const char* name) {
        return [name] {
            made.emplace_back(name);
            return MakePlain();
        };
    };
    ASSERT_EQ(Register("format", "host",
                       [] {
                           made.emplace_back("format");
                           asked = FormatValidator::Instance().GetSupportedAudioCodecs("matroska", {}, {});
                           return MakePlain();
                       }),
              "");
    ASSERT_EQ(Register("filter_host", "", make("filter")), "");
    ASSERT_EQ(Register("audio_codec", "tta", make("audio")), "");
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    EXPECT_THAT(made, ElementsAre());
    for (int i = 0; i < 2; ++i) {
        for (const char* const kind : {"format", "audio_codec", "video_codec"}) Ask(kind);
    }
    EXPECT_THAT(made, ElementsAre("filter", "audio", "format"));
    EXPECT_THAT(asked, Contains("tta"));
}

TEST(Registration, IsRefusedWithoutAChange) {
    const std::string kind = "No helper is registered under this kind.",
                      id = "A container or codec is registered by its id.";
    const struct {
        const char *kind, *id;
        DataHelperMaker make;
        std::string words;
    } cases[] = {
        {"", "", MakePlain, kind},
        {"format_codec_audio", "tta", MakePlain, kind},
        {"format_codec_video", "", MakePlain, kind},
        {"filter_host", "tta", MakePlain, kind},
        {"format", "", MakePlain, id},
        {"audio_codec", "", MakePlain, id},
        {"audio_codec", "host", nullptr, "There is no function that makes the helper."},
        {"audio_codec", "tta", MakePlain, g_known},
        {"filter_host", "", MakePlain, g_known},
    };
    ASSERT_EQ(Register("audio_codec", "tta", MakeCodec), "");
    ASSERT_EQ(Register("filter_host", ""), "");
    for (const auto& c : cases) EXPECT_EQ(Register(c.kind, c.id, c.make), c.words) << c.kind << ' ' << c.id;
    EXPECT_EQ(GetAvailableDataHelpers("audio_codec").size(), 27U);
    EXPECT_EQ(CreateDataHelper("audio_codec", "tta")->GetDefaults().GetName(), "audio_codec");
}

TEST(Registration, IsTooLateOnceTablesStand) {
    CreateDataHelper("filter_resize", "");
    EXPECT_EQ(Register("audio_codec", "tta"), g_tooLate);
    EXPECT_EQ(Register("filter_host", ""), g_tooLate);
    EXPECT_EQ(Register("format", "host"), "");
    HelpersOf(Node("preset", {Node("format", {Property("container", "mp4")})}));
    EXPECT_EQ(Register("format", "other"), g_tooLate);
    EXPECT_EQ(GetAvailableDataHelpers("format").size(), 65U);
    EXPECT_EQ(GetAvailableDataHelpers("audio_codec").size(), 26U);
}

TEST(Registration, OfCodecsIsTooLateOnceContainersStand) {
    Ask("format");
    for (const char* const kind : {"audio_codec", "video_codec", "format"}) EXPECT_EQ(Register(kind, "tta"), g_tooLate);
}

TEST(Registration, AFailedBuildLeavesTheNextOneToSucceed) {
    static int attempt = 0;
    static std::string registered;
    const auto fail = [](const char* own, const char* above) -> DataHelperMaker {
        return [own, above]() -> SP<const IDataHelper> {
            switch (attempt++) {
                case 0:
                    Ask(own);
                    break;
                case 1:
                    Ask(above);
                    break;
                case 2:
                    return nullptr;
                case 3:
                    throw std::runtime_error("the host's own");
                default:
                    registered = Register(own, "from within");
            }
            return MakePlain();
        };
    };
    ASSERT_EQ(Register("audio_codec", "host", fail("audio_codec", "format")), "");
    ASSERT_EQ(Register("format", "host", fail("format", "format")), "");
    for (const char* const kind : {"audio_codec", "format"}) {
        attempt = 0;
        for (const char* const words : {g_within, g_within, g_null}) {
            EXPECT_EQ(RefusalOf([kind] { Ask(kind); }), words) << kind << ' ' << attempt;
        }
        EXPECT_THROW(Ask(kind), std::runtime_error);
        EXPECT_EQ(CreateDataHelper(kind, "host")->GetDefaults().GetName(), "host");
        EXPECT_EQ(registered, g_tooLate);
    }
}

TEST(Registration, TheSecondSetLeavesTheHostsOwnAndMayComeTwice) {
    ASSERT_EQ(Register("audio_codec", "opus"), "");
    ASSERT_EQ(Register("format", "ogg"), "");
    for (int i = 0; i < 2; ++i) EXPECT_EQ(RefusalOf(RegisterModernHelpers), "");
    EXPECT_EQ(GetAvailableDataHelpers("audio_codec").size(), 36U);
    for (const auto& [kind, id] : {std::pair("audio_codec", "opus"), std::pair("format", "ogg")}) {
        EXPECT_EQ(CreateDataHelper(kind, id)->GetDefaults().GetName(), "host");
    }
    EXPECT_EQ(RefusalOf(RegisterModernHelpers), "");
}

TEST(Registration, TheSecondSetIsTooLateAsAWhole) {
    Ask("audio_codec");
    EXPECT_EQ(RefusalOf(RegisterModernHelpers), g_tooLate);
    EXPECT_EQ(GetAvailableDataHelpers("format").size(), 64U);
}

TEST(Registration, ManyThreadsRegisterWhileOthersAsk) {
    std::atomic<int> registered{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i, &registered] {
            for (int j = 0; j < 50; ++j) {
                if (Register(j % 2 == 0 ? "format" : "video_codec", std::to_string(50 * i + j)).empty()) ++registered;
                if (i % 4 == 0 && j == 25) Ask("format");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    const std::size_t rows = GetAvailableDataHelpers("format").size() + GetAvailableDataHelpers("video_codec").size();
    EXPECT_EQ(rows, 64U + 36 + (g_beforeMain.empty() ? 1 : 0) + static_cast<std::size_t>(registered));
}

}  // namespace
