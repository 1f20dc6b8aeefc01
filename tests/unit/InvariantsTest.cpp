// What holds of every helper of the catalogue, whatever a stream's node holds. Runs without encoders and with the real
// ones.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "support/RandomStreams.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Tags = std::set<std::string>;

constexpr int streamsPerHelper = 1000;

/// What came of one correction: empty, or the type of what was thrown.
std::string Correct(const IDataHelper& helper, Property& stream) {
    try {
        helper.CorrectFormatCodec(stream);
        return {};
    } catch (const Core::PropertyException&) {
        return "PropertyException";
    } catch (const ConstraintIsNotApplicableForTypeException&) {
        return "ConstraintIsNotApplicable";
    } catch (const FormatException&) {
        return "FormatException";
    } catch (const std::logic_error&) {
        return "logic_error";
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

/// Also of NaN, which is unlike itself.
bool IsSame(const Property& one, const Property& two) {
    return one == two || TreeDiff(one, two).empty();
}

/// Children that were lost, added or changed, by name.
Tags Changes(const Property& before, const Property& after) {
    Tags changes;
    for (const auto& [one, two] : {std::pair(&before, &after), std::pair(&after, &before)}) {
        for (const Property& child : *one) {
            const auto other = two->FindChild(child.GetName());
            if (other == two->end() || !IsSame(*other, child)) changes.insert(child.GetName());
        }
    }
    return changes;
}

/// What a kind of helper may change and throw.
struct Promise {
    std::string kind;
    Tags changes;
    Tags failures;
};

/// Calls `look` with each helper of the kind and random streams: the stream, the corrected one, and what was thrown.
template <class Look>
void Sweep(const Promise& promise, const Look& look) {
    for (const auto& [id, helper] : GetAvailableDataHelpers(promise.kind)) {
        RandomStreams streams(id);
        for (int i = 0; i < streamsPerHelper && !testing::Test::HasFailure(); ++i) {
            const Property before = streams.Next(promise.kind);
            Property after = before;
            const std::string failure = Correct(*helper, after);
            look(id, *helper, before, after, failure);
            if (testing::Test::HasFailure()) {
                ADD_FAILURE() << promise.kind << ' ' << id << ", seed " << streams.Seed() << '\n' << Dump(before);
            }
        }
    }
}

const Promise& PromiseOf(const std::string& kind) {
    static const Promise promises[] = {
        {"format",
         {"frame_rate", "cover", "encode_options", "sample_rate", "channel_layout"},
         {"PropertyException", "ConstraintIsNotApplicable"}},
        {"video_codec",
         {"bitrate_mode", "bitrate", "quality", "max_b_frames", "key_frame_interval"},
         {"PropertyException", "ConstraintIsNotApplicable"}},
        {"audio_codec",
         {"bitrate_mode", "bitrate", "quality", "sample_rate", "sample_format", "channel_layout"},
         {"PropertyException", "ConstraintIsNotApplicable", "FormatException", "logic_error"}},
    };
    return *std::find_if(std::begin(promises), std::end(promises), [&](const auto& p) { return p.kind == kind; });
}

class Invariants : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Kinds, Invariants, testing::Values("format", "video_codec", "audio_codec"));

TEST_P(Invariants, CorrectionThrowsWhatIsPromisedAndChangesNothingElse) {
    const Promise& promise = PromiseOf(GetParam());
    Sweep(promise,
          [&](const auto& id, const auto&, const Property& before, const Property& after, const auto& failure) {
              EXPECT_TRUE(failure.empty() || promise.failures.count(failure) != 0) << failure;
              EXPECT_EQ(after.GetName(), before.GetName());
              for (const std::string& change : Changes(before, after)) {
                  EXPECT_EQ(promise.changes.count(change), 1U) << change;
                  const bool isTaken = change == "max_b_frames" && Tags{"mjpeg", "flv1", "wmv2", "h263"}.count(id) != 0;
                  EXPECT_TRUE(after.ChildExists(change) || isTaken) << change << " is lost";
              }
          });
}

TEST_P(Invariants, CorrectingTwiceIsTheSameAsOnce) {
    Sweep(PromiseOf(GetParam()),
          [](const auto& id, const auto& helper, const Property&, const Property& once, const auto& failure) {
              if (!failure.empty()) return;
              Property twice = once;
              EXPECT_EQ(Correct(helper, twice), "");
              // A missing mode becomes the default, which is the automatic one here. No list has it: the next
              // correction takes the first of the list.
              const bool isSettled = id == "hevc" && once["bitrate_mode"] == Property("", "cbr_auto");
              if (isSettled) {
                  EXPECT_EQ(twice["bitrate_mode"].GetString(), "cbr");
                  twice["bitrate_mode"] = "cbr_auto";
              }
              EXPECT_TRUE(IsSame(once, twice)) << TreeDiff(once, twice);
          });
}

bool Keeps(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value);
    } catch (const std::exception&) {
        return false;
    }
}

class CodecInvariants : public Invariants {};
INSTANTIATE_TEST_SUITE_P(Kinds, CodecInvariants, testing::Values("video_codec", "audio_codec"));

TEST_P(CodecInvariants, TheResultKeepsTheConstraintOrIsTheDefault) {
    Sweep(PromiseOf(GetParam()), [](const auto& id, const IDataHelper& helper, const Property& before,
                                    const Property& after, const auto& failure) {
        if (!failure.empty()) return;
        const Property defaults = helper.GetDefaults();
        if (id == "auto") {  // stands for a codec that is chosen later, and whose helper corrects then
            EXPECT_TRUE(IsSame(before, after)) << TreeDiff(before, after);
            return;
        }
        const ConstraintMap constraints = CollectConstraints(helper);
        for (const char* const tag : {"bitrate_mode", "bitrate", "quality"}) {
            const auto constraint = constraints.find(tag);
            if (!after.ChildExists(tag)) {
                EXPECT_FALSE(before.ChildExists(tag) || defaults.ChildExists(tag)) << tag;
            } else if (constraint != constraints.end()) {
                const bool isDefault = defaults.ChildExists(tag) && after[tag] == defaults[tag];
                // These have a range and no default: what is no number stays as it is.
                static const Tags open = {"av1 bitrate",  "dirac bitrate", "h264 bitrate",
                                          "flv1 quality", "qtrle quality", "wmv2 quality"};
                const bool stays =
                    open.count(id + ' ' + tag) != 0 && before.ChildExists(tag) && IsSame(after[tag], before[tag]);
                EXPECT_TRUE(isDefault || stays || Keeps(*constraint->second, after[tag])) << tag;
            }
        }
        const RuleList rules = CollectRules(helper);
        for (const char* const tag : {"sample_rate", "sample_format", "channel_layout"}) {
            const auto rule = std::find_if(rules.begin(), rules.end(), [tag](const auto& candidate) {
                return candidate.second->GetSecondPath().find(tag) != std::string::npos;
            });
            if (rule == rules.end() || !after.ChildExists(tag)) continue;
            EXPECT_TRUE(Keeps(*rule->second->GetSecondConstraint(), after[tag])) << tag;
        }
    });
}

TEST(FormatInvariants, TheResultKeepsTheLastRuleAboutItOrIsUntouched) {
    Sweep(PromiseOf("format"), [](const auto&, const IDataHelper& helper, const Property& before, const Property& after,
                                  const auto& failure) {
        if (!failure.empty() || !after.ChildExists("codec_id")) return;
        const bool isVideo = after.GetName() == "format_codec_video";
        const std::pair<const char*, const char*> places[] = {
            {"frame_rate", "filter_rate/frame_rate"},
            {"cover", "format/cover"},
            {"encode_options/profile", "format/encode_options/profile"},
            {"sample_rate", "filter_resample/resample/sample_rate"},
            {"channel_layout", "filter_resample/resample/channel_layout"}};
        for (const auto& [tag, path] : places) {
            const bool isVideoTag = std::string(path).find("resample") == std::string::npos;
            if (!after.ChildExists(tag) || isVideo != isVideoTag) continue;
            SP<IPropertyConstraint> last;
            for (const auto& [key, rule] : CollectRules(helper)) {
                const bool isMine = rule->GetFirstPath() == (isVideo ? "video_codec/codec_id" : "audio_codec/codec_id");
                if (isMine && rule->GetSecondPath() == path && Keeps(*rule->GetFirstConstraint(), after["codec_id"])) {
                    last = rule->GetSecondConstraint();
                }
            }
            if (last) {
                EXPECT_TRUE(Keeps(*last, after[tag]) || IsSame(after[tag], before[tag])) << tag;
            }
        }
    });
}

TEST(FilterInvariants, FiltersCorrectNothing) {
    for (const char* const id :
         {"filter_resample", "filter_volume", "filter_formatter", "filter_rate", "filter_resize"}) {
        RandomStreams streams(id);
        for (int i = 0; i < streamsPerHelper; ++i) {
            const Property before = streams.Next(id);
            Property after = before;
            EXPECT_EQ(Correct(*CreateDataHelper(id, ""), after), "");
            ASSERT_TRUE(IsSame(before, after)) << id << ", seed " << streams.Seed() << TreeDiff(before, after);
        }
    }
}

}  // namespace
