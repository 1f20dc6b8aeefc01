#include <functional>

#include "norvex/foundation/Excerpt.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::EndsWith;

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
    EXPECT_EQ(TagsOf(exception), "description, stack");
    EXPECT_NE(*boost::get_error_info<TagCallStack>(exception), "");
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

TEST(Excerpt, IsOneLineWithoutWhatWouldChangeHowItIsShown) {
    const std::string plain(100, 'x'), umlauts = [] {
        std::string text;
        while (text.size() < 202) text += "\u00FC";
        return text;
    }();
    const std::pair<std::string, std::string> rows[] = {
        {"a\nb\rc\td \x1F\x7F~", "a b c d ~"},
        {"\xC2\x80\xC2\x9F\u00A0", "\u00A0"},
        {"\u200D\u200E\u200F\u2010", "\u200D\u2010"},
        {"\u2027\u2028\u202E\u202F", "\u2027\u202F"},
        {"\u2065\u2066\u2069\u206A", "\u2065\u206A"},
        {"\xFF\xC3", "\uFFFD\uFFFD"},
        {plain, plain},
        {plain + "x", plain + "\u2026"},
        {umlauts, umlauts.substr(0, 200) + "\u2026"},
        {umlauts.substr(2), umlauts.substr(2)},
    };
    for (const auto& [text, shown] : rows) EXPECT_EQ(Core::Excerpt(text), shown);
}

TEST(Failures, SayWhereTheyWereThrown) {
    const Core::Property leaf("leaf", true);
    const struct {
        const char *file, *function;
        std::function<void()> operation;
    } rows[] = {
        {"Property.h", "SetChildT", [&] { Core::Property(leaf).SetChildT("a", 1); }},
        {"Property.h", "CreateChildT", [&] { Core::Property(leaf).CreateChildT("a", 1); }},
        {"Property.cpp", "ChildByPath", [&] { leaf["missing"]; }},
        {"ConstraintRange.cpp", "ConstraintRange::IsValid",
         [&] { SP<IPropertyConstraint>(new ConstraintRange(PT_STRING, "a", "b", ""))->IsValid(leaf); }},
        {"ConstraintSet.cpp", "ConstraintSet::IsValid",
         [&] { ConstraintSet::Create(BeginPairList(1LL))->IsValid(leaf); }},
        {"ConstraintCodecs.cpp", "ConstraintCodecs::IsValid", [&] { ConstraintCodecs::Create({}, "")->IsValid(leaf); }},
        {"SampleFmtRecord.cpp", "SampleFmtRecord::Find", [] { SampleFmtRecord::Find("x"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.function);
        try {
            row.operation();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& failure) {
            EXPECT_THAT(*boost::get_error_info<boost::throw_file>(failure), EndsWith(std::string("/") + row.file));
            EXPECT_THAT(*boost::get_error_info<boost::throw_function>(failure), HasSubstr(row.function));
            EXPECT_GT(*boost::get_error_info<boost::throw_line>(failure), 0);
        }
    }
}

}  // namespace
