// Runs every row with its baseline in one go, prints the tables, and writes them as JSON.

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/log.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

#include "Allocations.h"
#include "Row.h"
#include "Whole.h"

namespace {

using namespace NorvexBench;
using Json = nlohmann::ordered_json;

/// Keeps what each repetition took, by the name that a benchmark was registered under.
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
            // Other programs run beside this one: the processor time is what an operation cost.
            const bool isManual = run.run_name.time_type == "manual_time";
            const double total = isManual ? run.real_accumulated_time : run.cpu_accumulated_time;
            m_costs[run.run_name.function_name].push_back(total / static_cast<double>(run.iterations));
        }
    }

    double Median(const std::string& name) const {
        const auto found = m_costs.find(name);
        if (found == m_costs.end()) return std::nan("");
        std::vector<double> costs = found->second;
        std::sort(costs.begin(), costs.end());
        return (costs[costs.size() / 2] + costs[(costs.size() - 1) / 2]) / 2;
    }

private:
    std::map<std::string, std::vector<double>> m_costs;
};

void Register(const std::string& name, const Side& side) {
    if (const auto* operation = std::get_if<Operation>(&side)) {
        benchmark::RegisterBenchmark(name.c_str(), [run = *operation](benchmark::State& state) {
            for (auto _ : state) run();
        });
        return;
    }
    benchmark::RegisterBenchmark(name.c_str(),
                                 [measure = std::get<Measurement>(side)](benchmark::State& state) {
                                     for (auto _ : state) state.SetIterationTime(measure());
                                 })
        ->UseManualTime()
        ->Iterations(1);
}

std::string Time(double seconds) {
    if (seconds < 1e-6) return fmt::format("{:.0f} ns", seconds * 1e9);
    return seconds < 1e-3 ? fmt::format("{:.1f} us", seconds * 1e6) : fmt::format("{:.2f} ms", seconds * 1e3);
}

/// A small part as people say it.
std::string Part(double ratio) {
    return ratio < 0.2 ? fmt::format("1/{:.0f}", 1 / ratio) : fmt::format("{:.2f}", ratio);
}

std::string CostName(const Cost& cost, long long size) {
    return fmt::format("growth/{}/{}", cost.what, size);
}

/// The load of the machine over the last minute.
double Load() {
    double load = 0;
    return getloadavg(&load, 1) == 1 ? load : -1;
}

/// What the row's ratio is worth beside its bound.
const char* Verdict(const Row& row, double ratio) {
    if (row.needsIdleMachine && Load() > std::thread::hardware_concurrency() / 2.0) return "  busy machine";
    return ratio <= row.bound ? "" : "  MISSED";
}

Json RatioTable(const std::vector<Row>& rows, const Collector& collected) {
    fmt::print("{:<50} {:<40} {:>10} {:>10} {:>7} {:>7}\n", "what", "against", "costs", "against", "ratio", "bound");
    Json table = Json::object();
    for (const Row& row : rows) {
        const double ours = collected.Median(row.id + "/ours");
        const double baseline = collected.Median(row.id + "/baseline");
        if (std::isnan(ours) || std::isnan(baseline)) continue;  // left out by a filter
        const double ratio = ours / baseline;
        const auto text = [&row](double cost) {
            return row.isBytes ? fmt::format("{:.2f} MB", cost / 1e6) : Time(cost);
        };
        fmt::print("{:<50} {:<40} {:>10} {:>10} {:>7} {:>7}{}\n", row.what, row.against, text(ours), text(baseline),
                   Part(ratio), Part(row.bound), Verdict(row, ratio));
        table[row.id] = {{"what", row.what},   {"against", row.against}, {"ratio", ratio},
                         {"bound", row.bound}, {"ours", ours},           {"baseline", baseline}};
        if (row.needsIdleMachine) table[row.id]["needsIdleMachine"] = true;
    }
    return table;
}

Json GrowthTable(const std::vector<Cost>& costs, const Collector& collected) {
    fmt::print("\n{:<50} {:<20} {:>24} {:>24} {:>24}\n", "how it grows", "with", "", "", "");
    Json table = Json::object();
    for (const Cost& cost : costs) {
        std::string line;
        Json sizes = Json::object();
        for (const long long size : cost.sizes) {
            const double seconds = collected.Median(CostName(cost, size));
            if (std::isnan(seconds)) continue;
            line += fmt::format(" {:>24}", fmt::format("{}: {}", size, Time(seconds)));
            sizes[std::to_string(size)] = seconds;
        }
        if (line.empty()) continue;
        fmt::print("{:<50} {:<20}{}\n", cost.what, cost.grows, line);
        table[cost.what] = sizes;
    }
    return table;
}

Json AllocationTable() {
    fmt::print("\n{:<50} {:>20}\n", "heap allocations", "a call");
    Json table = Json::object();
    for (const Counted& counted : CountedOperations()) {
        counted.operation();  // what happens on the first call only does not count
        const long long before = CountAllocations();
        counted.operation();
        const long long allocations = CountAllocations() - before;
        fmt::print("{:<50} {:>20}\n", counted.what, allocations);
        table[counted.what] = allocations;
    }
    const long long references = CountReferences();
    fmt::print("\n{:<50} {:>20}\n", "reference counts touched by two thousand streams and presets", references);
    table["references touched"] = references;
    return table;
}

/// FILE [OPTION...]: the JSON file, and options of Google Benchmark.
int Run(int argc, char** argv) {
    // A heap that gives memory back and takes it again would be FFmpeg's cost and not the library's: it alone allocates
    // in large pieces.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    std::free(std::malloc(30 << 20));
    av_log_set_level(AV_LOG_QUIET);

    std::array<std::string, 3> defaults = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=11",
                                           "--benchmark_min_time=0.05"};
    std::vector<char*> arguments = {argv[0]};
    for (std::string& option : defaults) arguments.push_back(option.data());
    arguments.insert(arguments.end(), argv + 2, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    std::vector<Row> rows;
    for (const auto& theme : {LoadingRows, CorrectionRows, FittingRows, BuildingRows, ThreadRows, PythonRows}) {
        const std::vector<Row> more = theme();
        rows.insert(rows.end(), more.begin(), more.end());
    }
    for (const Row& row : rows) {
        Register(row.id + "/ours", row.ours);
        Register(row.id + "/baseline", row.baseline);
    }
    const std::vector<Cost> costs = GrowthCosts();
    for (const Cost& cost : costs) {
        for (const long long size : cost.sizes) Register(CostName(cost, size), cost.make(size));
    }

    const double load = Load();
    Collector collected;
    benchmark::RunSpecifiedBenchmarks(&collected);
    fmt::print("FFmpeg {}, {} cores, load before {:.1f}, after {:.1f}\n\n", av_version_info(),
               std::thread::hardware_concurrency(), load, Load());
    Json report = {{"ffmpeg", av_version_info()}, {"load", {load, Load()}}};
    report["rows"] = RatioTable(rows, collected);
    report["growth"] = GrowthTable(costs, collected);
    report["allocations"] = AllocationTable();
    std::ofstream file(argv[1]);
    file << report.dump(2) << '\n';
    return file ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: norvex-bench FILE [OPTION...]\n", stderr);
        return 2;
    }
    try {
        return Run(argc, argv);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "norvex-bench: %s\n", exception.what());
        return 1;
    }
}
