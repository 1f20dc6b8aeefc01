#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using Core::PropertyException;
using Core::Ratio;
using Change = std::function<void(Property&)>;

/// A leaf, a branch of two levels and an empty branch.
Property Sample() {
    Property root("root");
    root.SetChildT("one", 1);
    root.SetChild("branch").SetChildT("two", 2);
    root["branch"].SetChild("deep").SetChildT("three", "3");
    root.SetChild("empty");
    return root;
}

/// The dump of the sample's branch as it stands under another path.
std::string BranchAt(const std::string& path) {
    return path + "/two: int 2\n" + path + "/deep/three: string 3\n";
}

// What has no scalar of its own does not compile, so that nothing turns into a bool or a node on the way.
static_assert(!std::is_constructible_v<Property, std::string, std::nullptr_t>);
static_assert(!std::is_constructible_v<Property, std::string, const int*>);
static_assert(!std::is_assignable_v<Property&, const void*>);
static_assert(!std::is_convertible_v<std::string, Property>);

template <class T>
void ExpectLeaf(const T& value, const std::string& leaf) {
    const std::string expected = "n: " + leaf + '\n';
    Property parent = Sample();
    parent.SetChild("n").SetChild("a child that the value drops");
    EXPECT_EQ(Dump(Property("n", value)), expected);
    EXPECT_EQ(Dump(parent["n"] = value), expected);
    EXPECT_EQ(Dump(parent.SetChildT("n", value)), expected);
    EXPECT_EQ(Dump(parent.CreateChildT("n", value)), expected);
    EXPECT_EQ(parent.Count(), 5U);
}

template <class... Integers>
void ExpectIntegers() {
    (ExpectLeaf(static_cast<Integers>(100), "int 100"), ...);
}

TEST(Property, TakesEveryValueAsItsOwnType) {
    ExpectIntegers<char, signed char, unsigned char, short, unsigned short, int, unsigned, long, unsigned long,
                   long long, unsigned long long>();
    ExpectLeaf(0, "int 0");
    ExpectLeaf(4294967295U, "int 4294967295");
    ExpectLeaf(std::numeric_limits<long long>::min(), "int -9223372036854775808");
    ExpectLeaf(std::numeric_limits<unsigned long long>::max(), "int -1");
    ExpectLeaf(true, "bool true");
    ExpectLeaf(0.5F, "double 0.5");
    ExpectLeaf(2.0, "double 2");
    ExpectLeaf("literal", "string literal");
    ExpectLeaf(static_cast<const char*>("pointer"), "string pointer");
    ExpectLeaf(std::string("text"), "string text");
    ExpectLeaf(Ratio(50, 2), "ratio 25/1");
}

TEST(Property, IsEmptyWithoutValueOrAsANamelessNodeWithoutChildren) {
    EXPECT_TRUE(Property().IsEmpty() && Property("").IsEmpty());
    EXPECT_FALSE(Property("name").IsEmpty() || Property("", "").IsEmpty() || Property("", false).IsEmpty());
    EXPECT_FALSE(Property("").SetChild("name").IsEmpty());
    Property parent("");
    parent.AddNamed(Property());
    EXPECT_FALSE(parent.IsEmpty());
}

/// "NAME of TYPE", as failures tell of a node.
std::string NodeOf(const Property& node) {
    const std::string dump = Dump(node);  // "NAME: TYPE VALUE"
    const std::size_t type = node.GetName().size() + 2;
    return node.GetName() + " of " + dump.substr(type, dump.find_first_of(" \n", type) - type);
}

/// What a getter gives as text, "-" where it refuses.
template <class Getter>
std::string Reading(const Property& node, const char* method, Getter getter) {
    try {
        return Core::PropertyValueToString(Property("", (node.*getter)()));
    } catch (const PropertyException& exception) {
        EXPECT_EQ(TagsOf(exception),
                  "The value cannot be read as the type asked for, node " + NodeOf(node) + ", by " + method);
        return "-";
    }
}

TEST(Property, ConvertsBetweenNumbersAndFromTextToRatioAndRefusesTheRest) {
    constexpr double end = 9223372036854775808.0;  // 2^63, one past the largest integer
    const struct {
        Property node;
        const char *asBool, *asDouble, *asInt, *asRatio, *asString;
    } rows[] = {
        {Property(), "-", "-", "-", "-", "-"},
        {Property("n"), "-", "-", "-", "-", "-"},
        {Property("n", true), "true", "-", "-", "-", "-"},
        {Property("n", 2.75), "-", "2.75", "2", "-", "-"},
        {Property("n", -2.75), "-", "-2.75", "-2", "-", "-"},
        {Property("n", end), "-", "9223372036854775808", "9223372036854775807", "-", "-"},
        {Property("n", std::nextafter(end, 0)), "-", "9223372036854774784", "9223372036854774784", "-", "-"},
        {Property("n", -end), "-", "-9223372036854775808", "-9223372036854775808", "-", "-"},
        {Property("n", -1e300), "-", "-1e+300", "-9223372036854775808", "-", "-"},
        {Property("n", std::nan("")), "-", "nan", "9223372036854775807", "-", "-"},
        {Property("n", 9007199254740993), "-", "9007199254740992", "9007199254740993", "-", "-"},
        {Property("n", "true"), "-", "-", "-", "-", "true"},
        {Property("n", "25"), "-", "-", "-", "25/1", "25"},
        {Property("n", Ratio(30000, 1001)), "-", "-", "-", "30000/1001", "-"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Dump(row.node));
        EXPECT_EQ(Reading(row.node, "GetBool", &Property::GetBool), row.asBool);
        EXPECT_EQ(Reading(row.node, "GetDouble", &Property::GetDouble), row.asDouble);
        EXPECT_EQ(Reading(row.node, "GetInt64", &Property::GetInt64), row.asInt);
        EXPECT_EQ(Reading(row.node, "GetRatio", &Property::GetRatio), row.asRatio);
        EXPECT_EQ(Reading(row.node, "GetString", &Property::GetString), row.asString);
    }
}

TEST(Property, ReadsRatiosFromTexts) {
    std::map<std::string, std::string> ratios = {{"30000/1001", "30000/1001"},
                                                 {"25", "25/1"},
                                                 {"50/2", "25/1"},
                                                 {"0/5", "0/1"},
                                                 {"-1/2", "-1/2"},
                                                 {"9223372036854775807", "9223372036854775807/1"},
                                                 {"-9223372036854775807/9223372036854775807", "-1/1"}};
    for (const char* text : {"", "/", "1/", "/2", "1/0", "1/-2", "-", "+1", "1/+2", " 1", "1 ", "1/ 2", "1.5", "1/2/3",
                             "0x10", "9223372036854775808", "-9223372036854775808", "1/9223372036854775808"}) {
        ratios[text] = "-";
    }
    for (const auto& [text, ratio] : ratios) {
        EXPECT_EQ(Reading(Property("n", text), "GetRatio", &Property::GetRatio), ratio) << text;
        EXPECT_EQ(Core::ParseRatio(text).has_value(), ratio != "-") << text;
    }
}

TEST(Property, LeadsByPathIndexAndNameToNodesThatStayWhereTheyAre) {
    Property root = Sample();
    Property& kept = root["branch/two"];
    for (int i = 0; i < 100; ++i) root["branch"].CreateChildT(std::to_string(i), i);
    for (int i = 0; i < 100; ++i) root["branch"].RemoveChild(std::to_string(i));
    Property moved = std::move(root);
    kept = 7;
    EXPECT_EQ(std::as_const(moved)["branch/two"].GetInt64(), 7);
    EXPECT_EQ(&moved.ChildByPath("branch/two"), &moved[1][0]);
    EXPECT_EQ(&*moved.FindChild("branch"), &std::as_const(moved)[1]);
    EXPECT_EQ(moved.FindChild("branch/two"), moved.end());  // a name, not a path
    moved.SetChild("branch/two");                           // likewise
    EXPECT_EQ(moved.Count(), 4U);
    EXPECT_TRUE(moved.ChildExists("branch/deep/three"));
}

TEST(Property, EveryReadOfWhatIsNotThereThrowsAndCreatesNothing) {
    Property root = Sample();
    const Property& constant = root;
    const auto expectMissing = [](const auto& read, const std::string& details) {
        EXPECT_THAT(FailureOf<PropertyException>(read),
                    testing::StartsWith("There is no such child, details " + details + ", node root of node"));
    };
    for (const std::string path : {"", "/", "/one", "one/", "branch//two", "missing", "branch/missing", "one/two"}) {
        EXPECT_FALSE(root.ChildExists(path)) << path;
        expectMissing([&] { root[path]; }, path);
        expectMissing([&] { constant[path]; }, path);
    }
    expectMissing([&] { root[3]; }, "3");
    expectMissing([&] { constant[3]; }, "3");
    EXPECT_EQ(TreeDiff(Sample(), root), "");
}

TEST(Property, SettingTakesTheFirstChildOfANameAndCreatingAppends) {
    Property root("root");
    root.SetChildT("a", 1);
    root.SetChildT("b", 2);
    root.SetChildT("a", 3);
    root.CreateChildT("a", 4);
    root.SetChild("b", Property("another name", "text"));
    root.SetChild("c") = 5;
    root.AddNamed(Property("b", false));
    EXPECT_EQ(Dump(root), "root/a: int 3\nroot/b: string text\nroot/a: int 4\nroot/c: int 5\nroot/b: bool false\n");
    root.RemoveChild("a");
    root.RemoveChild("no such child");
    EXPECT_EQ(Dump(root), "root/b: string text\nroot/a: int 4\nroot/c: int 5\nroot/b: bool false\n");
    root.RemoveAll();
    EXPECT_EQ(Dump(root), "root: node\n");
}

TEST(Property, AssignmentsAreSafeWhenTheSourceLiesInsideTheTarget) {
    const std::pair<Change, std::string> rows[] = {
        {[](Property& p) { p = p["branch"]; }, BranchAt("branch")},
        {[](Property& p) { p = std::move(p["branch"]); }, BranchAt("branch")},
        {[](Property& p) { p.CopyDataFrom(p["branch"]); }, BranchAt("root")},
        {[](Property& p) { p = p["branch/deep/three"].GetString(); }, "root: string 3\n"},
        {[](Property& p) { p = std::as_const(p), p.CopyDataFrom(p); }, Dump(Sample())},
        {[](Property& p) { p.SetChild("branch", p["branch/deep"]); },
         "root/one: int 1\nroot/branch/three: string 3\nroot/empty: node\n"},
        {[](Property& p) { p["branch/deep"].CopyDataFrom(p["branch"]); },
         "root/one: int 1\nroot/branch/two: int 2\n" + BranchAt("root/branch/deep") + "root/empty: node\n"},
        {[](Property& p) { p.AddNamed(p); },
         Dump(Sample()) + "root/root/one: int 1\n" + BranchAt("root/root/branch") + "root/root/empty: node\n"},
        {[](Property& p) { p.RemoveChild(p[1].GetName()); }, "root/one: int 1\nroot/empty: node\n"},
    };
    for (const auto& [change, dump] : rows) {
        Property root = Sample();
        change(root);
        EXPECT_EQ(Dump(root), dump);
    }
}

TEST(Property, RefusesChildrenOnWhatIsNoNode) {
    const std::pair<const char*, Change> operations[] = {
        {"SetChildT", [](Property& p) { p.SetChildT("x", 1); }},
        {"CreateChildT", [](Property& p) { p.CreateChildT("x", std::string("y")); }},
        {"SetChild", [](Property& p) { p.SetChild("x"); }},
        {"SetChild", [](Property& p) { p.SetChild("x", Property("y", 1)); }},
        {"AddNamed", [](Property& p) { p.AddNamed(Property("x")); }},
    };
    for (const Property& leaf : {Property(), Property("n", false), Property("n", 1.5), Property("n", 1),
                                 Property("n", "x"), Property("n", Ratio(1, 2))}) {
        for (const auto& [method, change] : operations) {
            SCOPED_TRACE(Dump(leaf) + method);
            Property node = leaf;
            EXPECT_EQ(FailureOf<Core::MethodIsNotApplicable>([&node, &act = change] { act(node); }),
                      "node " + NodeOf(leaf) + ", by " + method + ", stack");
            EXPECT_EQ(TreeDiff(leaf, node), "");
        }
    }
}

TEST(Property, EqualityLooksAtTypeValueAndChildrenButNotAtTheOwnName) {
    Property renamed("another", 0);
    renamed.CopyDataFrom(Sample());
    EXPECT_EQ(renamed.GetName(), "another");
    EXPECT_EQ(renamed, Sample());
    EXPECT_EQ(Property("", Ratio(2, 4)), Property("n", Ratio(1, 2)));
    EXPECT_NE(Property("n", 1), Property("n", 1.0));
    EXPECT_NE(Property("n", 1), Property("n", true));
    EXPECT_NE(Property("n"), Property());
    const Change changes[] = {
        [](Property& p) { p["branch/deep/three"] = "4"; }, [](Property& p) { p["branch"].SetChildT("more", 1); },
        [](Property& p) { p.RemoveChild("empty"); },       [](Property& p) { p["one"] = Property("renamed", 1); },
        [](Property& p) { std::swap(p[0], p[2]); },
    };
    for (const Change& change : changes) {
        Property changed = Sample();
        change(changed);
        EXPECT_NE(changed, Sample()) << Dump(changed);
    }
}

class Counted final : public RefCounted<IRefCountable> {
public:
    explicit Counted(int& deaths) : m_deaths(deaths) {}
    ~Counted() override { ++m_deaths; }

private:
    int& m_deaths;
};

TEST(RefCount, CountsFromZeroAcrossThreadsAndDestroysWithTheLastReference) {
    int deaths = 0;
    const auto* const object = new Counted(deaths);
    EXPECT_EQ(object->GetRefCount(), 0U);
    EXPECT_EQ(object->AddRef(), 1U);
    EXPECT_EQ(SP<const IRefCountable>(object)->GetRefCount(), 2U);
    const auto share = [](SP<const Counted> mine) {
        for (int i = 0; i < 100000; ++i) SP<const Counted>(mine).swap(mine);
    };
    std::thread one(share, object);
    std::thread two(share, object);
    one.join();
    two.join();
    EXPECT_EQ(object->GetRefCount(), 1U);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->Release(), 0U);
    EXPECT_EQ(deaths, 1);
}

}  // namespace
