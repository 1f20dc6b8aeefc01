#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace NorvexBench {

/// Timed by the harness, many calls at a time.
using Operation = std::function<void()>;
/// Tells itself what it cost, for what happens once in a process or takes more than one thread.
using Measurement = std::function<double()>;
using Side = std::variant<Operation, Measurement>;

/// A cost of the library beside another one that was measured in the same run.
struct Row {
    std::string id;  ///< the key in the JSON
    std::string what;
    std::string against;
    double bound;  ///< the highest ratio that is wanted
    Side ours;
    Side baseline;
    bool isBytes = false;           ///< and no seconds
    bool needsIdleMachine = false;  ///< what other programs do counts
};

/// A cost that grows.
struct Cost {
    std::string what;
    std::string grows;  ///< with the number of what
    std::vector<long long> sizes;
    /// Makes the operation of one size.
    std::function<Operation(long long)> make;
};

/// An operation whose heap allocations are counted.
struct Counted {
    std::string what;
    Operation operation;
};

// One source a theme.
std::vector<Row> CorrectionRows();
std::vector<Row> FittingRows();
std::vector<Row> BuildingRows();
std::vector<Row> LoadingRows();
std::vector<Row> ThreadRows();
std::vector<Row> PythonRows();
std::vector<Cost> GrowthCosts();
std::vector<Counted> CountedOperations();

}  // namespace NorvexBench
