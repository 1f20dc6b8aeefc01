/// What the program prints.
#pragma once

#include <chrono>
#include <string>

#include "Media.h"
#include "Plan.h"

namespace NorvexExport {

/// The plan for a person: what it comes to, or as tables where that was asked for. Colours are for terminals.
std::string PlanText(const Plan& plan, bool colours);

/// The plan, and what came of it where it was carried out, as one JSON document. Trees keep their order and types;
/// ratios are texts such as "30000/1001".
std::string PlanJson(const Plan& plan, const ExportResult* result);

/// One line about a finished export.
std::string ResultText(const Plan& plan, const ExportResult& result);

/// How far an export has come, in one line of at most so many columns: a bar, the speed, the time left, the size so
/// far. `elapsed` is in seconds.
std::string ProgressText(const Progress& progress, double elapsed, std::size_t columns);

/// The line of ProgressText on standard error, drawn over itself, and only where that is a terminal that can.
class ProgressBar {
public:
    explicit ProgressBar(bool wanted);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Show(const Progress& progress);

private:
    const bool m_visible;
    const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    bool m_drawn = false;
};

}  // namespace NorvexExport
