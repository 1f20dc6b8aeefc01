/// What the program prints.
#pragma once

#include <string>

#include "Media.h"
#include "Plan.h"

namespace NorvexExport {

/// The plan as tables for a person. Colours are for terminals.
std::string PlanText(const Plan& plan, bool colours);

/// The plan, and what came of it where it was carried out, as one JSON document. Trees keep their order and types;
/// ratios are texts such as "30000/1001".
std::string PlanJson(const Plan& plan, const ExportResult* result);

/// One line about a finished export.
std::string ResultText(const Plan& plan, const ExportResult& result);

/// A progress bar on standard error, drawn over itself, and only where that is a terminal.
class ProgressBar {
public:
    explicit ProgressBar(bool wanted);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Show(const Progress& progress);

private:
    const bool m_visible;
    bool m_drawn = false;
};

}  // namespace NorvexExport
