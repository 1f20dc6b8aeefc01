#include <cmath>
#include <limits>

#include "support/TestHelpers.h"
#include "support/Translation.h"

namespace {

using namespace NorvexTest;
using Core::Ratio;
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

TEST(ConstraintSet, JudgesAndCorrects) {
    constexpr long long largest = std::numeric_limits<long long>::max();
    constexpr long long smallest = std::numeric_limits<long long>::min();
    const auto ends = SetOf<long long>({smallest, largest});
    const auto doubles = SetOf<double>({0.1, 0.3});
    const auto ratios = SetOf<Ratio>({Ratio(25), Ratio(30000, 1001)});
    const auto nodes = ConstraintSet::Create(
        PT_NODE, ConstraintSet::ValueList<Property>{{"one", Property("n")}, {"two", Tree("n{a: 1}")}});
    const struct {
        SP<IPropertyConstraint> set;
        Property value;
        std::string fixed;
    } rows[] = {
        {SetOf<long long>({smallest, 0}), Property("n", largest), "fixed to 0"},
        {ends, Property("n", -4096), "fixed to -9223372036854775808"},
        {ends, Property("n", 4096), "fixed to 9223372036854775807"},
        {SetOf<long long>({largest, smallest}), Property("n", smallest + 1), "fixed to -9223372036854775808"},
        // Doubles cannot tell these distances apart, and do not equal what they look like.
        {SetOf<long long>({1LL << 53, (1LL << 53) + 2}), Property("n", largest), "fixed to 9007199254740992"},
        {doubles, Property("n", 0.1), "ok"},
        {doubles, Property("n", std::nextafter(0.1, 1)), "fixed to 0.1"},
        {doubles, Property("n", 0.1 + 0.2), "fixed to 0.3"},
        {doubles, Property("n", std::nan("")), "fixed to 0.1"},
        {ratios, Property("n", Ratio(-1, 3)), "fixed to 25/1"},
        {ratios, Property("n", Ratio(largest, 1LL << 40)), "fixed to 30000/1001"},
        {ratios, Property("n", Ratio(-largest, largest - 1)), "fixed to 25/1"},
        {ratios, Property("n", "25"), "ok"},
        {ratios, Property("n", "60000/2002"), "ok"},
        {ratios, Property("n", "24"), "no"},
        {ratios, Property("n", "25/0"), "no"},
        {ratios, Property("n", ""), "no"},
        {SetOf<bool>({true}), Property("n", true), "ok"},
        {SetOf<bool>({true}), Property("n", false), "no"},
        {nodes, Property("n"), "ok"},
        {nodes, Tree("n{a: 1}"), "ok"},
        {nodes, Tree("n{a: 2}"), "no"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FixupOf(row.set, row.value), row.fixed) << Dump(row.value) << "in " << ListOf(*row.set);
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
        EXPECT_EQ(FailureOf<ConstraintIsNotApplicableForTypeException>([&] { set->Fixup(value); }),
                  "constraint ConstraintSet of " + Dump(listed).substr(3, Dump(listed).find(' ', 3) - 3));
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
