#include <functional>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::EndsWith;
using testing::HasSubstr;

template <class E, class Base>
constexpr bool isA = std::is_convertible_v<E*, Base*>;

static_assert(isA<Exception, std::exception> && isA<Exception, boost::exception>);
static_assert(isA<ConfException, Exception> && isA<FormatException, ConfException>);
static_assert(isA<ConstraintIsNotApplicableForTypeException, ConstraintException>);
static_assert(isA<ConstraintException, ConfException> && isA<HelperException, ConfException>);
static_assert(isA<Core::MethodIsNotApplicable, Core::PropertyException>);
static_assert(isA<Core::PropertyException, Core::CoreException> && isA<Core::CoreException, Exception>);
static_assert(!isA<FormatException, ConstraintException> && !isA<Core::CoreException, ConfException>);

TEST(AddStack, TagsAnExceptionInPlace) {
    HelperException exception;
    exception << TagDescription("description");
    EXPECT_EQ(&AddStack(exception), &exception);
    const std::optional<HelperException> tagged = exception;
    EXPECT_EQ(TagOf<TagDescription>(tagged), "description");
    EXPECT_NE(TagOf<TagCallStack>(tagged).value_or(""), "");
}

template <class... Standard>
void ExpectStackBehindMessage() {
    EXPECT_THAT((std::vector<std::string>{AddStack(Standard("message")).what()...}),
                testing::Each(testing::MatchesRegex("message\n.+")));
    static_assert((std::is_same_v<decltype(AddStack(Standard(""))), Standard> && ...));
}

TEST(AddStack, PutsTheStackBehindTheMessageOfAStandardException) {
    ExpectStackBehindMessage<std::logic_error, std::out_of_range, std::runtime_error, std::overflow_error>();
}

TEST(Failures, SayWhereTheyWereThrownAndCarryTheStackWhereItBelongs) {
    const Core::Property leaf("leaf", true);
    const struct {
        const char *file, *function;
        bool stack;
        std::function<void()> operation;
    } rows[] = {
        {"Property.h", "SetChildT", true, [&] { Core::Property(leaf).SetChildT("a", 1); }},
        {"Property.h", "CreateChildT", true, [&] { Core::Property(leaf).CreateChildT("a", 1); }},
        {"Property.cpp", "ChildByPath", false, [&] { leaf["missing"]; }},
        {"ConstraintRange.cpp", "ConstraintRange::IsValid", false,
         [&] { SP<IPropertyConstraint>(new ConstraintRange(PT_STRING, "a", "b", ""))->IsValid(leaf); }},
        {"ConstraintSet.cpp", "ConstraintSet::IsValid", false,
         [&] { ConstraintSet::Create(BeginPairList(1LL))->IsValid(leaf); }},
        {"ConstraintCodecs.cpp", "ConstraintCodecs::IsValid", false,
         [&] { ConstraintCodecs::Create({}, "")->IsValid(leaf); }},
        {"SampleFmtRecord.cpp", "SampleFmtRecord::Find", false, [] { SampleFmtRecord::Find("x"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.function);
        const auto failure = CatchFrom<Exception>(row.operation);
        EXPECT_THAT(*boost::get_error_info<boost::throw_file>(*failure), EndsWith(std::string("/") + row.file));
        EXPECT_THAT(*boost::get_error_info<boost::throw_function>(*failure), HasSubstr(row.function));
        EXPECT_GT(*boost::get_error_info<boost::throw_line>(*failure), 0);
        EXPECT_EQ(TagOf<TagCallStack>(failure).has_value(), row.stack);
    }
}

}  // namespace
