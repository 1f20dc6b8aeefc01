#include "support/TestHelpers.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using testing::ElementsAre;
using testing::Pair;

SP<IPropertyConstraint> Number(long long value) {
    return ConstraintSet::Create(BeginPairList<long long>(value));
}

/// A tree that is whole for the rule of the tests, with its two values.
Property TreeOf(long long first, long long second) {
    Property root("root");
    root.SetChild("a").SetChildT("first", first);
    root.SetChildT("second", second);
    return root;
}

SP<IValidationRule> Rule(const std::string& first = "a/first", const std::string& second = "second") {
    return PairValidationRule::Create(first, Number(1), second, Number(2));
}

TEST(PairValidationRule, AsksForTheSecondOnlyWhereTheFirstHolds) {
    EXPECT_TRUE(Rule()->IsValid(TreeOf(1, 2)));
    EXPECT_FALSE(Rule()->IsValid(TreeOf(1, 3)));
    EXPECT_TRUE(Rule()->IsValid(TreeOf(0, 2)));
    EXPECT_TRUE(Rule()->IsValid(TreeOf(0, 3)));
    EXPECT_TRUE(Rule("a/first", "missing")->IsValid(TreeOf(0, 0)));
    EXPECT_TRUE(Rule("a/first", "")->IsValid(TreeOf(0, 0)));
}

TEST(PairValidationRuleDeathTest, EndsTheProcessOnATreeThatItCannotRead) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Property wrongType = TreeOf(1, 2);
    wrongType["second"] = "2";
    EXPECT_DEATH(Rule("missing")->IsValid(TreeOf(1, 2)), "terminate");
    EXPECT_DEATH(Rule("a/first", "missing")->IsValid(TreeOf(1, 2)), "terminate");
    EXPECT_DEATH(Rule("a")->IsValid(TreeOf(1, 2)), "terminate");
    EXPECT_DEATH(Rule()->IsValid(wrongType), "terminate");
}

TEST(PairList, ShowsAValueAsItsOwnText) {
    EXPECT_THAT(Conf::Pair<std::string>("text"), Pair("text", "text"));
    EXPECT_THAT(CreatePairValueList({44100LL, 0LL, -1LL}),
                ElementsAre(Pair("44100", 44100), Pair("0", 0), Pair("-1", -1)));
    EXPECT_THAT(CreatePairValueList({false, true}), ElementsAre(Pair("0", false), Pair("1", true)));
    EXPECT_THAT(CreatePairValueList({std::string("b"), std::string("a")}), ElementsAre(Pair("b", "b"), Pair("a", "a")));
}

TEST(PairList, GrowsByTheCommaOperator) {
    using Conf::operator, ;
    EXPECT_THAT((BeginPairList<long long>(8000), 16000, 4294967296LL),
                ElementsAre(Pair("8000", 8000), Pair("16000", 16000), Pair("4294967296", 4294967296LL)));
    EXPECT_THAT((BeginPairList<std::string>("a"), "b", std::string("c")),
                ElementsAre(Pair("a", "a"), Pair("b", "b"), Pair("c", "c")));
    EXPECT_THAT((BeginPairList(true), false), ElementsAre(Pair("1", true), Pair("0", false)));
}

}  // namespace
