#include <cmath>
#include <limits>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

TEST(ConstraintRange, TellsBoundsThenStepIfItHasOne) {
    EXPECT_THAT(CallsOf(*ConstraintRange::Create(0LL, 10LL, 0LL)), ElementsAre("min 0", "max 10"));
    EXPECT_THAT(CallsOf(*ConstraintRange::Create(0LL, 10LL, -3LL)), ElementsAre("min 0", "max 10", "step -3"));
    EXPECT_THAT(CallsOf(*ConstraintRange::Create(0.0, 1.0, 0.25)),
                ElementsAre("min 0.000000", "max 1.000000", "step 0.250000"));
    EXPECT_THAT(CallsOf(*ConstraintRange::Create(0.0, 1.0, -0.0)), ElementsAre("min 0.000000", "max 1.000000"));
    EXPECT_EQ(ConstraintRange::Create(0LL, 1LL, 0LL)->Description("x"), "");
}

TEST(ConstraintRange, JudgesInItsOwnTypeAndClampsToABound) {
    const auto ints = ConstraintRange::Create(0LL, 10LL, 3LL);
    const auto whole = ConstraintRange::Create(0LL, std::numeric_limits<long long>::max(), 0LL);
    const auto doubles = ConstraintRange::Create(-0.5, 0.5, 0.0);
    const auto inverted = ConstraintRange::Create(10LL, 0LL, 0LL);
    const struct {
        SP<IPropertyConstraint> range;
        Property value;
        const char* fixed;  ///< null for a value that is valid
    } rows[] = {
        {ints, Property("n", 0), nullptr},
        {ints, Property("n", 5), nullptr},  // beside the grid of the step
        {ints, Property("n", 10), nullptr},
        {ints, Property("n", -1), "n: int 0\n"},
        {ints, Property("n", 11), "n: int 10\n"},
        {ints, Property("n", 10.9), nullptr},  // read as 10
        {ints, Property("n", -0.9), nullptr},  // read as 0
        {ints, Property("n", 11.5), "n: int 10\n"},
        {ints, Property("n", std::nan("")), "n: int 10\n"},
        {ints, Property("n", -HUGE_VAL), "n: int 0\n"},
        {ints, Property("n", std::numeric_limits<long long>::min()), "n: int 0\n"},
        {doubles, Property("n", HUGE_VAL), "n: double 0.5\n"},
        {whole, Property("n", std::nan("")), "n: int 9223372036854775807\n"},
        {doubles, Property("n", 0.5), nullptr},
        {doubles, Property("n", 0), nullptr},
        {doubles, Property("n", 1), "n: double 0.5\n"},
        {doubles, Property("n", std::nextafter(-0.5, -1)), "n: double -0.5\n"},
        {doubles, Property("n", std::nan("")), "n: double 0.5\n"},
        {inverted, Property("n", 5), "n: int 10\n"},
        {inverted, Property("n", 10), "n: int 0\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(ListOf(*row.range) + ", " + Dump(row.value));
        Property value = row.value;
        EXPECT_EQ(row.range->IsValid(value), row.fixed == nullptr);
        EXPECT_TRUE(row.range->Fixup(value));
        EXPECT_EQ(Dump(value), row.fixed == nullptr ? Dump(row.value) : row.fixed);
    }
}

TEST(ConstraintRange, LeavesWhatIsNoNumberToTheGetterAndNeverCorrectsIt) {
    const auto range = ConstraintRange::Create(0LL, 10LL, 0LL);
    for (const Property& value :
         {Property(), Property("n"), Property("n", true), Property("n", "5"), Property("n", Core::Ratio(5))}) {
        EXPECT_THAT(FailureOf<Core::PropertyException>([&] { range->IsValid(value); }),
                    testing::EndsWith("by GetInt64"));
        Property fixed = value;
        EXPECT_FALSE(range->Fixup(fixed));
        EXPECT_EQ(TreeDiff(value, fixed), "");
    }
}

TEST(ConstraintRange, OfAnotherTypeIsOfNoUse) {
    const SP<IPropertyConstraint> range(new ConstraintRange(PT_RATIO, Core::Ratio(1), Core::Ratio(2), Core::Ratio(0)));
    Property value("n", 1);
    const auto expect = [](const auto& operation) {
        EXPECT_EQ(FailureOf<ConstraintIsNotApplicableForTypeException>(operation),
                  "constraint ConstraintRange of ratio");
    };
    expect([&] { range->IsValid(value); });
    expect([&] { range->Fixup(value); });
    expect([&] { CallsOf(*range); });
}

}  // namespace
