#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/Trees.h"

namespace NorvexTest {

/// Of the members of a list that `fits`, the first of those with the smallest measure.
template <class T, class Fits, class Measure>
T FirstSmallest(const std::vector<T>& list, const Fits& fits, const Measure& measure) {
    const T* best = nullptr;
    for (auto member = list.rbegin(); member != list.rend(); ++member) {
        if (fits(*member) && (best == nullptr || measure(*member) <= measure(*best))) best = &*member;
    }
    return *best;
}

/// Makes a constraint from every list of one to three members of `pool`, repetitions included, and corrects every
/// member of `pool` with it: a listed one must stay, any other become what `nearest` says. Returns how many changed.
template <class T, class Make, class ValueOf, class Nearest>
int SweepCorrections(const std::vector<T>& pool, const Make& make, const ValueOf& valueOf, const Nearest& nearest,
                     std::vector<T> list = {}) {
    int corrected = 0;
    for (const T& member : pool) {
        list.push_back(member);
        const auto constraint = make(list);
        for (const T& wanted : pool) {
            const bool listed = std::find(list.begin(), list.end(), wanted) != list.end();
            const Norvex::Core::Property expected("n", valueOf(listed ? wanted : nearest(list, wanted)));
            Norvex::Core::Property value("n", valueOf(wanted));
            EXPECT_EQ(constraint->IsValid(value), listed);
            EXPECT_TRUE(constraint->Fixup(value));
            EXPECT_EQ(TreeDiff(expected, value), "")
                << Dump(Norvex::Core::Property("wanted", valueOf(wanted))) << "in " << ListOf(*constraint);
            if (!listed) ++corrected;
        }
        if (list.size() < 3) corrected += SweepCorrections(pool, make, valueOf, nearest, list);
        list.pop_back();
    }
    return corrected;
}

}  // namespace NorvexTest
