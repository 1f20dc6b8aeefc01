// Lists of few values, and what a value beside them becomes: held against searches of another make.

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "Input.h"
#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;

namespace {

/// One to four members of the pool, repetitions included.
template <class T>
std::vector<T> List(Input& input, const std::vector<T>& pool) {
    std::vector<T> list;
    for (std::size_t count = 1 + input.Number(4); count > 0; --count) list.push_back(pool[input.Number(pool.size())]);
    return list;
}

/// Of the members of the list that `fits`, the first of those with the smallest measure.
template <class T, class Fits, class Measure>
T FirstSmallest(const std::vector<T>& list, const Fits& fits, const Measure& measure) {
    const T* best = nullptr;
    for (auto member = list.rbegin(); member != list.rend(); ++member) {
        if (fits(*member) && (best == nullptr || measure(*member) <= measure(*best))) best = &*member;
    }
    return *best;
}

/// A listed value must stay, any other become the nearest.
template <class T>
void RequireCorrected(const SP<IPropertyConstraint>& constraint, const std::vector<T>& list, const T& wanted,
                      const T& nearest) {
    const bool isListed = std::find(list.begin(), list.end(), wanted) != list.end();
    Property value("value", wanted);
    Require(constraint->IsValid(value) == isListed, "what is listed is valid, and nothing else");
    Require(constraint->Fixup(value), "a list corrects every value of its type");
    Require(value == Property("", isListed ? wanted : nearest), "the nearest value takes the place");
}

template <class T>
void Numbers(Input& input) {
    // Halves, so that doubles measure ratios exactly.
    static const std::vector<T> pool = {T(-3) / T(2), T(0), T(1), T(2), T(7) / T(2), T(5), T(8)};
    const std::vector<T> list = List(input, pool);
    const T wanted = pool[input.Number(pool.size())];
    ConstraintSet::ValueList<T> values;
    for (const T& value : list) values.emplace_back("", value);
    const auto distance = [&wanted](const T& value) { return value < wanted ? wanted - value : value - wanted; };
    RequireCorrected(ConstraintSet::Create(values), list, wanted,
                     FirstSmallest(
                         list, [](const T&) { return true; }, distance));
}

void Formats(Input& input) {
    std::vector<SampleFormats> pool;
    for (int number = 0; number <= static_cast<int>(SampleFormats::S64P); ++number)
        pool.push_back(static_cast<SampleFormats>(number));
    const std::vector<SampleFormats> list = List(input, pool);
    const SampleFmtRecord& wanted = SampleFmtRecord::Find(pool[input.Number(pool.size())]);
    const bool hasTwin = std::find(list.begin(), list.end(), wanted.twin) != list.end();
    const auto cost = [&wanted](SampleFormats format) {
        const SampleFmtRecord& record = SampleFmtRecord::Find(format);
        return std::abs(record.bits - wanted.bits) + (record.planar == wanted.planar ? 1 : 0);
    };
    const SampleFormats nearest = hasTwin ? wanted.twin
                                          : FirstSmallest(
                                                list, [](SampleFormats) { return true; }, cost);
    std::vector<std::string> names;
    for (const SampleFormats format : list) names.push_back(SampleFmtRecord::Find(format).name);
    RequireCorrected(ConstraintSampleFormat::Create(list), names, wanted.name, SampleFmtRecord::Find(nearest).name);
}

/// A walk that begins above the wanted count ends at the smallest that is not below it, and the other way round.
void Layouts(Input& input) {
    static const std::vector<std::string> pool = {"unknown", "mono", "stereo", "downmix", "3.0",
                                                  "quad",    "4.0",  "5.1",    "7.1"};
    const auto count = [](const std::string& name) { return LayoutRecord::Find(name).channels; };
    const std::vector<std::string> list = List(input, pool);
    const std::string wanted = pool[input.Number(pool.size())];
    const int target = count(wanted);
    const bool isAbove = count(list.front()) >= target;
    RequireCorrected(
        ConstraintChannelLayout::Create(list), list, wanted,
        FirstSmallest(
            list, [&](const std::string& name) { return isAbove ? count(name) >= target : count(name) <= target; },
            [&](const std::string& name) { return std::abs(count(name) - target); }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    while (!input.IsEmpty()) {
        Numbers<long long>(input);
        Numbers<double>(input);
        Numbers<Core::Ratio>(input);
        Formats(input);
        Layouts(input);
    }
    return 0;
}
