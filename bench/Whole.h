#pragma once

#include "Row.h"

namespace NorvexBench {

/// What a host asks of the whole book, each with the longest time that is wanted.
struct Asked {
    std::string id;
    std::string what;
    double bound;  ///< seconds
    Operation operation;
};
std::vector<Asked> AskedOperations();

/// How often the reference counts of a helper, its rules and its constraints are touched while two threads correct a
/// thousand streams each and check as many presets.
long long CountReferences();

}  // namespace NorvexBench
