#include "Report.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace NorvexExport {

namespace {

using Json = nlohmann::ordered_json;
using Norvex::Core::Property;

/// Escape sequences, or nothing.
struct Style {
    const char* bold;
    const char* dim;
    const char* changed;
    const char* warning;
    const char* reset;
};
constexpr Style g_plain = {"", "", "", "", ""};
constexpr Style g_coloured = {"\033[1m", "\033[2m", "\033[33m", "\033[31m", "\033[0m"};

Json ToJson(const Property& node) {
    switch (node.GetType()) {
        case Norvex::PT_BOOL:
            return node.GetBool();
        case Norvex::PT_DOUBLE:
            return node.GetDouble();
        case Norvex::PT_INT64:
            return node.GetInt64();
        case Norvex::PT_STRING:
            return node.GetString();
        case Norvex::PT_RATIO:
            return Norvex::Core::PropertyValueToString(node);
        case Norvex::PT_NONE:
            return nullptr;
        case Norvex::PT_NODE:
            break;
    }
    Json object = Json::object();
    for (const Property& child : node) object[child.GetName()] = ToJson(child);
    return object;
}

struct Row {
    std::string path;
    std::string asked;
    std::string settled;
    std::string by;
};

void CollectRows(const Property& node, const std::string& path, std::vector<Row>& rows) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : path + Property::SEPARATOR + child.GetName();
        if (child.GetType() == Norvex::PT_NODE) {
            CollectRows(child, below, rows);
        } else {
            const std::string value = Norvex::Core::PropertyValueToString(child);
            rows.push_back({below, value, value, {}});
        }
    }
}

/// Every value of the settled tree, and with it what it was where something changed it; removed ones at the end.
std::vector<Row> RowsOf(const StreamPlan& stream) {
    std::vector<Row> rows;
    CollectRows(stream.settled, {}, rows);
    for (const Change& change : stream.changes) {
        auto row = std::find_if(rows.begin(), rows.end(), [&change](const Row& r) { return r.path == change.path; });
        if (row == rows.end()) {
            rows.push_back({change.path, change.from, "-", change.by});
            continue;
        }
        // The first change of a value knows what was asked, the last one who had the last word.
        if (row->by.empty()) row->asked = change.from.empty() ? "-" : change.from;
        row->by = change.by;
    }
    return rows;
}

std::string StreamText(const StreamPlan& stream, const Style& style) {
    const std::vector<Row> rows = RowsOf(stream);
    std::size_t path = 4;
    std::size_t asked = 5;
    std::size_t settled = 7;
    for (const Row& row : rows) {
        path = std::max(path, row.path.size());
        asked = std::max(asked, row.asked.size());
        settled = std::max(settled, row.settled.size());
    }
    std::string text = fmt::format("\n{}{}{}  {}from {}{}\n", style.bold, stream.isVideo ? "Video" : "Audio",
                                   style.reset, style.dim, stream.source, style.reset);
    text += fmt::format("  {}{:<{}}  {:<{}}  {:<{}}  by{}\n", style.dim, "", path, "asked", asked, "settled", settled,
                        style.reset);
    for (const Row& row : rows) {
        const bool changed = !row.by.empty();
        std::string line =
            fmt::format("  {:<{}}  {:<{}}  {}{:<{}}{}  {}", row.path, path, row.asked, asked,
                        changed ? style.changed : "", row.settled, settled, changed ? style.reset : "", row.by);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    if (stream.broken.empty()) return text;
    text += fmt::format("  {}broken before:{}\n", style.warning, style.reset);
    for (const Violation& violation : stream.broken) {
        text += fmt::format("  - {} = {}: allowed is {}\n", violation.path, violation.value, violation.allowed);
    }
    return text;
}

std::string BytesText(std::uintmax_t bytes) {
    if (bytes < 1000) return fmt::format("{} bytes", bytes);
    if (bytes < 1000000) return fmt::format("{:.1f} kB", static_cast<double>(bytes) / 1e3);
    return fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
}

}  // namespace

std::string PlanText(const Plan& plan, bool colours) {
    const Style& style = colours ? g_coloured : g_plain;
    std::string text =
        fmt::format("{}{}{} -> {}{}{}  {}{}, {:.2f} s{}\n", style.bold, plan.request.input, style.reset, style.bold,
                    plan.request.output, style.reset, style.dim, plan.formatId, plan.input.duration, style.reset);
    for (const StreamPlan& stream : plan.streams) text += StreamText(stream, style);
    for (const std::string& note : plan.notes) text += "\n" + note + "\n";
    return text;
}

std::string PlanJson(const Plan& plan, const ExportResult* result) {
    Json streams = Json::array();
    for (const StreamPlan& stream : plan.streams) {
        Json broken = Json::array();
        for (const Violation& v : stream.broken) {
            broken.push_back({{"path", v.path}, {"value", v.value}, {"allowed", v.allowed}});
        }
        Json changes = Json::array();
        for (const Change& c : stream.changes) {
            changes.push_back({{"path", c.path},
                               {"from", c.from.empty() ? Json() : Json(c.from)},
                               {"to", c.to.empty() ? Json() : Json(c.to)},
                               {"by", c.by}});
        }
        streams.push_back({{"type", stream.isVideo ? "video" : "audio"},
                           {"source", stream.source},
                           {"asked", ToJson(stream.asked)},
                           {"settled", ToJson(stream.settled)},
                           {"broken", broken},
                           {"changes", changes}});
    }
    Json document = {{"input", plan.request.input}, {"output", plan.request.output},
                     {"format", plan.formatId},     {"muxer", plan.job.muxer},
                     {"streams", streams},          {"notes", plan.notes}};
    if (result != nullptr) {
        document["result"] = {{"videoFrames", result->videoFrames},
                              {"audioSamples", result->audioSamples},
                              {"duration", result->duration},
                              {"bytes", result->bytes}};
    }
    // A file name need not be UTF-8; what is not is shown by the replacement character.
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string ResultText(const Plan& plan, const ExportResult& result) {
    return fmt::format("\nWrote {} ({}, {:.2f} s)\n", plan.request.output, BytesText(result.bytes), result.duration);
}

ProgressBar::ProgressBar(bool wanted) : m_visible(wanted && isatty(STDERR_FILENO) != 0) {}

ProgressBar::~ProgressBar() {
    if (m_drawn) std::fputs("\r\033[K", stderr);
}

void ProgressBar::Show(const Progress& progress) {
    if (!m_visible) return;
    constexpr int width = 40;
    const double part = progress.secondsTotal > 0 ? std::min(1.0, progress.secondsDone / progress.secondsTotal) : 0.0;
    const int filled = static_cast<int>(part * width);
    std::string line = "\r\033[K[";
    for (int i = 0; i < width; ++i) line += i < filled ? '=' : (i == filled ? '>' : ' ');
    line += progress.secondsTotal > 0 ? fmt::format("] {:3.0f} %", part * 100)
                                      : fmt::format("] {:.1f} s", progress.secondsDone);
    if (progress.passes > 1) line += fmt::format("  pass {} of {}", progress.pass, progress.passes);
    std::fputs(line.c_str(), stderr);
    m_drawn = true;
}

}  // namespace NorvexExport
