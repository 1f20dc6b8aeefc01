#include <boost/any.hpp>
#include <limits>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

constexpr long long largest = std::numeric_limits<long long>::max();
constexpr long long smallest = std::numeric_limits<long long>::min();

template <class T>
Property Range(T min, T mid, T max) {
    Property range{std::string()};
    range.SetChildT("minValue", min);
    range.SetChildT("midValue", mid);
    range.SetChildT("maxValue", max);
    return range;
}

/// Hands constraints to one consumer, which is reset between them.
class Probe {
public:
    Property operator()(const SP<IPropertyConstraint>& constraint) const {
        consumer->Reset();
        constraint->FillValueList(consumer);
        return consumer->GetValue();
    }
    template <class T>
    Property operator()(T min, T max, T step) const {
        return (*this)(ConstraintRange::Create(min, max, step));
    }

    const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
};

TEST(FakeConstraintConsumer, PutsTheMiddleOfARangeOnTheGrid) {
    const struct {
        long long min, max, step, mid;
    } rows[] = {{0, 100, 0, 50},
                {10, 21, 5, 15},
                {1, 20, 4, 9},
                {-3, 0, 0, -1},
                {-7, 7, 3, -1},
                {0, 10, -3, 3},
                {0, 5, 100, 0},
                {0, 11, 2, 4},
                {0, 11, -2, 4},
                {10, 0, 0, 5},
                {99, 101, 100, 199},
                {largest - 1, largest, 0, largest - 1},
                {smallest, smallest + 3, 0, smallest + 2},
                {smallest, largest, 0, 0},
                {smallest, smallest, -1, smallest}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.min << " to " << row.max << " by " << row.step);
        EXPECT_EQ(TreeDiff(Range(row.min, row.mid, row.max), Probe()(row.min, row.max, row.step)), "");
    }
    for (long long min = -9; min <= 9; ++min) {
        for (long long max = -9; max <= 9; ++max) {
            EXPECT_EQ(TreeDiff(Range(min, (min + max) / 2, max), Probe()(min, max, 0LL)), "");
        }
    }
}

TEST(FakeConstraintConsumer, FilesValuesUnderTheirDisplayNames) {
    const Probe probe;
    EXPECT_EQ(Dump(probe.consumer->GetValue()), ": node\n");
    const auto set = ConstraintSet::Create(ConstraintSet::ValueList<long long>{{"one", 1}, {"two", 2}, {"one", 3}});
    EXPECT_EQ(Dump(probe(set)), "/one: int 3\n/two: int 2\n");
    // None of these shows beside a list.
    probe.consumer->SetValue(Property("ignored", 1));
    ConstraintMethod::CreateEven("")->FillValueList(probe.consumer);
    ConstraintRange::Create(0LL, 10LL, 0LL)->FillValueList(probe.consumer);
    EXPECT_EQ(Dump(probe.consumer->GetValue()), "/one: int 3\n/two: int 2\n");
    EXPECT_EQ(TreeDiff(Range(0LL, 5LL, 10LL), probe(0LL, 10LL, 0LL)), "");
}

TEST(FakeConstraintConsumer, KeepsStepAndTypeOfTheLastRangeAcrossResets) {
    const Probe probe;
    EXPECT_EQ(TreeDiff(Range(0LL, 8LL, 20LL), probe(0LL, 20LL, 4LL)), "");
    EXPECT_EQ(TreeDiff(Range(0LL, 4LL, 10LL), probe(0LL, 10LL, 0LL)), "");
    EXPECT_EQ(TreeDiff(Range(-1.5, -0.25, 1.0), probe(-1.5, 1.0, 0.75)), "");
    EXPECT_EQ(Dump(probe(ConstraintSet::Create(BeginPairList(true)))), "/1: bool true\n");
    EXPECT_THROW(probe(ConstraintSet::Create(ConstraintSet::ValueList<bool>())), boost::bad_any_cast);
    EXPECT_EQ(TreeDiff(Range(2LL, 6LL, 10LL), probe(2LL, 10LL, 0LL)), "") << "a double range sets no step";
    probe.consumer->Reset();
    EXPECT_THROW(probe.consumer->GetValue(), boost::bad_any_cast);
    probe.consumer->SetMaxValue(1LL);
    EXPECT_THROW(probe.consumer->GetValue(), boost::bad_any_cast) << "the other bound is not that of before";
}

TEST(FakeConstraintConsumer, RefusesBoundsThatAreNotOfTheLastOnesType) {
    const auto consumer = FakeConstraintConsumer::Create();
    consumer->SetMinValue(1LL);
    EXPECT_THROW(consumer->GetValue(), boost::bad_any_cast);
    consumer->SetMaxValue(2.0);
    EXPECT_THROW(consumer->GetValue(), boost::bad_any_cast);
    consumer->SetMinValue(1.0);
    EXPECT_EQ(TreeDiff(Range(1.0, 1.5, 2.0), consumer->GetValue()), "");
}

}  // namespace
