#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "support/Corrections.h"
#include "support/Failures.h"
#include "support/Translation.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using testing::ElementsAre;
using Texts = ConstraintSet::ValueList<std::string>;

template <class T>
SP<IPropertyConstraint> SetOf(const std::vector<T>& values) {
    ConstraintSet::ValueList<T> list;
    for (const auto& value : values) list.emplace_back(Core::PropertyValueToString(Property("", T(value))), value);
    return ConstraintSet::Create(list);
}

TEST(ConstraintSet, ListsItsValuesInOrderAndEndsEvenWhenEmpty) {
    EXPECT_THAT(CallsOf(*ConstraintSet::Create(Texts{{"b", "2"}, {"a", "1"}, {"b", "2"}})),
                ElementsAre("add b=2", "add a=1", "add b=2", "end"));
    EXPECT_THAT(CallsOf(*SetOf<double>({})), ElementsAre("end"));
    EXPECT_THAT(CallsOf(*SetOf<Ratio>({Ratio(30000, 1001)})), ElementsAre("add 30000/1001=30000/1001", "end"));
}

TEST(ConstraintSet, ReadsBackTheTreeThatAConsumerGives) {
    const auto consumer = FakeConstraintConsumer::Create();
    ConstraintSet::Create(Texts{{"shown", "value"}, {"other", "text"}})->FillValueList(consumer);
    const auto set = ConstraintSet::Create(PT_STRING, consumer->GetValue());
    EXPECT_THAT(CallsOf(*set), ElementsAre("add shown=value", "add other=text", "end"));
    Property value("n", "unlisted");
    EXPECT_TRUE(set->Fixup(value));
    EXPECT_EQ(TreeDiff(Property("n", "value"), value), "");
}

template <class T>
void ExpectNearest() {
    // Halves, so that doubles measure ratios exactly.
    const std::vector<T> pool = {T(-3) / T(2), T(0), T(1), T(2), T(7) / T(2), T(5), T(8)};
    const auto nearest = [](const std::vector<T>& list, const T& wanted) {
        const auto distance = [&wanted](const T& value) { return value < wanted ? wanted - value : value - wanted; };
        return FirstSmallest(
            list, [](const T&) { return true; }, distance);
    };
    EXPECT_GT(SweepCorrections(
                  pool, SetOf<T>, [](const T& value) { return value; }, nearest),
              1700);
}

TEST(ConstraintSet, CorrectsToTheNearestValueAndOfTwoToTheEarlier) {
    ExpectNearest<long long>();
    ExpectNearest<double>();
    ExpectNearest<Ratio>();
}

TEST(ConstraintSet, MeasuresDistancesAtTheEndsOfTheIntegers) {
    constexpr long long largest = std::numeric_limits<long long>::max();
    constexpr long long smallest = std::numeric_limits<long long>::min();
    const struct {
        std::vector<long long> list;
        long long value, fixed;
    } rows[] = {
        {{smallest, 0}, largest, 0},
        {{smallest, largest}, -4096, smallest},
        {{smallest, largest}, 4096, largest},
        {{largest, smallest}, smallest + 1, smallest},
        {{1LL << 53, (1LL << 53) + 2}, largest, 1LL << 53},  // doubles cannot tell these distances apart
    };
    for (const auto& row : rows) {
        Property value("n", row.value);
        EXPECT_TRUE(SetOf(row.list)->Fixup(value));
        EXPECT_EQ(value.GetInt64(), row.fixed) << "for " << row.value << " in " << ListOf(*SetOf(row.list));
    }
}

TEST(ConstraintSet, ComparesDoublesExactly) {
    const auto set = SetOf<double>({0.1, 0.3});
    EXPECT_TRUE(set->IsValid(Property("n", 0.1)));
    EXPECT_FALSE(set->IsValid(Property("n", std::nextafter(0.1, 1))) || set->IsValid(Property("n", 0.1 + 0.2)));
    Property value("n", std::nan(""));
    EXPECT_TRUE(!set->IsValid(value) && set->Fixup(value));
    EXPECT_EQ(value.GetDouble(), 0.1);
}

TEST(ConstraintSet, JudgesSomeValuesThatItNeverCorrects) {
    const auto ratios = SetOf<Ratio>({Ratio(25), Ratio(30000, 1001)});
    Property node("n"), changed("n");
    changed.SetChildT("child", 1);
    const auto nodes = ConstraintSet::Create(PT_NODE, ConstraintSet::ValueList<Property>{{"one", node}});
    const struct {
        SP<IPropertyConstraint> set;
        Property value;
        bool valid;
    } rows[] = {
        {ratios, Property("n", "25"), true},
        {ratios, Property("n", "60000/2002"), true},
        {ratios, Property("n", "24"), false},
        {ratios, Property("n", "25/0"), false},
        {ratios, Property("n", ""), false},
        {ratios, Property("n", "fast"), false},
        {SetOf<bool>({true}), Property("n", true), true},
        {SetOf<bool>({true}), Property("n", false), false},
        {nodes, node, true},
        {nodes, changed, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Dump(row.value) + "in " + ListOf(*row.set));
        Property value = row.value;
        EXPECT_EQ(row.set->IsValid(value), row.valid);
        EXPECT_EQ(row.set->Fixup(value), row.valid);
        EXPECT_EQ(TreeDiff(row.value, value), "");
    }
}

template <class T>
void ExpectOnlyItsType(const Property& listed) {
    const SP<IPropertyConstraint> set = SetOf<T>({T(1)}), empty = SetOf<T>({});
    for (Property value : {Property("n", true), Property("n", 1.0), Property("n", 1), Property("n", "1"),
                           Property("n", Ratio(1)), Property("n"), Property()}) {
        SCOPED_TRACE(Dump(listed) + Dump(value));
        EXPECT_FALSE(empty->Fixup(value));
        if (value.GetType() == listed.GetType() || (listed.GetType() == PT_RATIO && value.GetType() == PT_STRING)) {
            EXPECT_TRUE(set->IsValid(value) && !empty->IsValid(value));
            continue;
        }
        EXPECT_THROW(empty->IsValid(value), ConstraintIsNotApplicableForTypeException);
        const auto failure = CatchFrom<ConstraintIsNotApplicableForTypeException>([&] { set->Fixup(value); });
        EXPECT_EQ(TagOf<ConstraintException::TagConstraintClass>(failure), "ConstraintSet");
        EXPECT_EQ(TagOf<ConstraintException::TagValueType>(failure), listed.GetType());
    }
}

TEST(ConstraintSet, RefusesOtherTypesThanItsOwnAlsoWhenEmpty) {
    ExpectOnlyItsType<bool>(Property("n", true));
    ExpectOnlyItsType<double>(Property("n", 1.0));
    ExpectOnlyItsType<long long>(Property("n", 1));
    ExpectOnlyItsType<Ratio>(Property("n", Ratio(1)));
}

TEST(ConstraintSet, IsWorded) {
    const auto set = ConstraintSet::Create(Texts{{"a", "1"}, {"%1", "2"}});
    EXPECT_EQ(set->Description("x"), "Parameter x must be one of the following values: a %1 ");
    EXPECT_EQ(set->Description("%2"), "Parameter a %1  must be one of the following values: a %1 ");
    EXPECT_EQ(SetOf<bool>({})->Description("x"), "Parameter x must be one of the following values: %2");
}

TEST(ConstraintSet, TakesItsSentenceFromTheHostsCatalogue) {
    const Translation translation(
        {{"Parameter %1 must be one of the following values: %2", "%2: nur das für %1 (%1)"}});
    EXPECT_EQ(SetOf<long long>({1, 2})->Description("x"), "1 2 : nur das für x (x)");
    const auto localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    const std::string text = "Parameter %1 must be one of the following values: %2";
    for (const std::string& whole : {std::string(), text + '\0' + "x"}) {
        EXPECT_EQ(localization.manager.Translate(whole, localization.domain), whole);
    }
}

}  // namespace
