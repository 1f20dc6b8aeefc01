// Many threads at once on what they share. Run it with the thread sanitizer too.

#include <atomic>
#include <functional>
#include <set>
#include <thread>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

constexpr std::size_t threadCount = 16;

/// Runs the work on all threads, which start together, and returns what each brought.
template <class T>
std::vector<T> OnAllThreads(const std::function<T()>& work) {
    std::vector<T> results(threadCount);
    std::vector<std::thread> threads;
    std::atomic<std::size_t> waiting{threadCount};
    for (T& result : results) {
        threads.emplace_back([&waiting, &result, &work] {
            for (--waiting; waiting > 0;) std::this_thread::yield();
            result = work();
        });
    }
    for (std::thread& thread : threads) thread.join();
    return results;
}

// Each test has a process of its own under ctest, so that these requests are the first ones.
TEST(Threads, TheFirstRequestsMeetInOneTable) {
    const auto tables = OnAllThreads<const void*>([]() -> const void* { return &GetAvailableDataHelpers("format"); });
    EXPECT_EQ(std::set<const void*>(tables.begin(), tables.end()).size(), 1U);
}

TEST(Threads, TheFirstLookupsOfAnyKindMeetInOneHelper) {
    using Helpers = std::vector<SP<const IDataHelper>>;
    const auto found = OnAllThreads<Helpers>([] {
        return Helpers{CreateDataHelper("format", "mp4"), CreateDataHelper("video_codec", "h264"),
                       CreateDataHelper("filter_resize", ""), CreateDataHelper("format_codec_audio", "aac")};
    });
    for (const Helpers& helpers : found) EXPECT_EQ(helpers, found.front());
    // The catalogue, the lists above, and the kind that goes by an alias each hold one reference.
    EXPECT_EQ(found[0][0]->GetRefCount(), threadCount + 1);
}

/// Everything that a host asks of one helper, as text.
std::string AskAll(const NamedHelper& named) {
    const IDataHelper& helper = *named.helper;
    const Property defaults = helper.GetDefaults();
    std::string text = Dump(defaults);
    for (const auto& lines : {RulesOf(helper), ConstraintsOf(helper)}) {
        for (const std::string& line : lines) text += line + '\n';
    }
    Property stream = Node("format_codec_audio",
                           {Property("codec_id", "aac"), Property("bitrate", 100000), Property("sample_rate", 44100),
                            Property("sample_format", "s16"), Property("channel_layout", "stereo")});
    if (named.kind == "video_codec") stream = Node("format_codec_video", {Property("codec_id", "h264")});
    const CorrectionReport report = CorrectWithReport(stream, {named});
    text += Dump(stream);
    const Property preset = AssemblePreset({defaults, stream, CreateDataHelper("filter_rate", "")->GetDefaults()});
    for (const Finding& finding : ExplainPreset(preset, HelpersOf(preset))) text += finding.message + finding.path;
    for (const auto& [key, rule] : CollectRules(*CreateDataHelperAuto("video_codec", "mpeg2video"))) {
        const bool isComplete = preset.ChildExists(rule->GetFirstPath()) && preset.ChildExists(rule->GetSecondPath());
        if (isComplete) text += rule->IsValid(preset) ? "kept" : "broken";
    }
    for (const auto& [path, constraint] : CollectConstraints(helper)) text += constraint->Description(path);
    return text;
}

TEST(Threads, SharedHelpersAnswerAllThreadsAlikeAndKeepTheirCounts) {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    std::vector<NamedHelper> helpers;
    for (const char* const kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) helpers.push_back({kind, id, helper});
    }
    const auto askAll = [&helpers] {
        std::string text;
        for (const NamedHelper& named : helpers) text += AskAll(named);
        for (const char* const codec : {"h264", "aac", "no such codec"}) {
            text += CodecHasGlobalHeader(codec) ? "global" : "local";
            const auto file = FormatFile::Create(Node("format", {Property("container", "avi")}));
            const Property stream = Node("s", {Property("codec_id", codec), Property("fourcc", 0)});
            text += CodecIsSupported(file, FormatCodecAudio::Create(stream, nullptr)) ? "taken" : "refused";
        }
        for (const auto& id : FormatValidator::Instance().GetSupportedAudioCodecs("matroska", {}, {})) text += id;
        return text;
    };
    std::vector<std::uint32_t> counts;
    for (const NamedHelper& named : helpers) counts.push_back(named.helper->GetRefCount());
    // Together first, while no helper keeps its answers yet.
    const std::vector<std::string> together = OnAllThreads<std::string>(askAll);
    const std::string alone = askAll();
    for (const std::string& text : together) EXPECT_TRUE(text == alone);
    for (std::size_t i = 0; i < helpers.size(); ++i) EXPECT_EQ(helpers[i].helper->GetRefCount(), counts[i]);
}

}  // namespace
