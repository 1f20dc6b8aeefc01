#include "Report.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "Summary.h"
#include "Terminal.h"
#include "norvex/Norvex.h"
#include "norvex/document/TreeForm.h"

namespace NorvexExport {

namespace {

using Norvex::Conf::CorrectedValue;
using Norvex::Conf::Finding;
using Norvex::Core::Property;
using Norvex::Core::PropertyValueToString;
using Norvex::Document::PlainFormOf;
using Norvex::Document::Value;

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

std::string TextOf(const std::optional<Property>& value) {
    return value ? PropertyValueToString(*value) : "-";
}

/// What a helper is called: "format mp4", "codec aac", or a filter's class id.
std::string HelperName(const std::string& kind, const std::string& id) {
    if (id.empty()) return kind;
    return (kind == Norvex::Conf::IPreset::KEY_FORMAT ? "format " : "codec ") + id;
}

/// All that was changed, in the order in which it happened.
std::vector<std::pair<const CorrectedValue*, std::string>> ChangesOf(const StreamPlan& stream) {
    std::vector<std::pair<const CorrectedValue*, std::string>> changes;
    for (const CorrectedValue& change : stream.changes) {
        changes.emplace_back(&change, HelperName(change.helperKind, change.helperId));
    }
    for (const CorrectedValue& change : stream.givenWay) changes.emplace_back(&change, "your choice");
    return changes;
}

std::vector<Finding> BrokenOf(const StreamPlan& stream) {
    std::vector<Finding> broken;
    for (const Finding& finding : stream.lookedAt) {
        if (finding.verdict == Finding::Verdict::Violated) broken.push_back(finding);
    }
    return Norvex::Conf::TellOnce(std::move(broken));
}

/// Every value of the settled tree, and with it what it was where something changed it; removed ones at the end.
std::vector<Row> RowsOf(const StreamPlan& stream) {
    std::vector<Row> rows;
    CollectRows(stream.settled, {}, rows);
    for (const auto& [change, by] : ChangesOf(stream)) {
        const std::string& path = change->path;
        auto row = std::find_if(rows.begin(), rows.end(), [&path](const Row& r) { return r.path == path; });
        if (row == rows.end()) {
            rows.push_back({path, TextOf(change->before), "-", by});
            continue;
        }
        // The first change of a value knows what was asked, the last one who had the last word.
        if (row->by.empty()) row->asked = TextOf(change->before);
        row->by = by;
    }
    return rows;
}

const char* KindName(StreamKind kind) {
    switch (kind) {
        case StreamKind::Video:
            return "video";
        case StreamKind::Audio:
            return "audio";
        case StreamKind::Subtitle:
            return "subtitles";
        case StreamKind::Cover:
            return "cover";
        case StreamKind::Attachment:
            return "attachment";
        case StreamKind::Data:
            break;
    }
    return "data";
}

/// Such as "audio 2, eng, Commentary".
std::string HeadingOf(const StreamPlan& stream) {
    std::string text = fmt::format("{} {}", KindName(stream.kind), stream.streamIndex);
    if (!stream.language.empty()) text += ", " + stream.language;
    if (!stream.title.empty()) text += ", " + stream.title;
    return text;
}

/// One line: who looked, at what, and what came of it.
std::string FindingText(const Finding& finding) {
    std::string verdict = NameOf(finding.verdict);
    std::replace(verdict.begin(), verdict.end(), '_', ' ');
    std::string text =
        fmt::format("{:<15} {:<20} {}", verdict, HelperName(finding.helperKind, finding.helperId), finding.path);
    if (finding.value) text += " = " + PropertyValueToString(*finding.value);
    const bool isViolated = finding.verdict == Finding::Verdict::Violated;
    const std::string allowed =
        isViolated || !finding.constraint ? finding.allowed.words : WhatIsAllowed(*finding.constraint).words;
    if (!allowed.empty()) text += "; allowed: " + allowed;
    if (!finding.conditionPath.empty()) text += "; when " + finding.conditionPath + " = " + TextOf(finding.condition);
    return text;
}

std::string ExplainText(const StreamPlan& stream, const Style& style) {
    std::string text = fmt::format("  {}looked at:{}\n", style.dim, style.reset);
    for (const Finding& finding : stream.lookedAt) text += "  - " + FindingText(finding) + '\n';
    const auto changes = ChangesOf(stream);
    if (!changes.empty()) text += fmt::format("  {}changed:{}\n", style.dim, style.reset);
    for (const auto& [change, by] : changes) {
        text +=
            fmt::format("  - {}: {} became {} by {}", change->path, TextOf(change->before), TextOf(change->after), by);
        if (change->broken) {
            text += ": " + change->broken->message;
        } else if (change->reason == CorrectedValue::Reason::Default) {
            text += ", its default";
        }
        text += '\n';
    }
    return text;
}

std::string StreamText(const StreamPlan& stream, bool explain, const Style& style) {
    if (stream.isCopied) {
        return fmt::format("\n{}{}{}  {}carried over unchanged: {}{}\n", style.bold, HeadingOf(stream), style.reset,
                           style.dim, stream.source, style.reset);
    }
    const std::vector<Row> rows = RowsOf(stream);
    std::size_t path = 4;
    std::size_t asked = 5;
    std::size_t settled = 7;
    for (const Row& row : rows) {
        path = std::max(path, row.path.size());
        asked = std::max(asked, row.asked.size());
        settled = std::max(settled, row.settled.size());
    }
    std::string text = fmt::format("\n{}{}{}  {}from {}{}\n", style.bold, HeadingOf(stream), style.reset, style.dim,
                                   stream.source, style.reset);
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
    if (const auto broken = BrokenOf(stream); !broken.empty()) {
        text += fmt::format("  {}broken before:{}\n", style.warning, style.reset);
        for (const Finding& finding : broken) text += "  - " + finding.message + '\n';
    }
    return explain ? text + ExplainText(stream, style) : text;
}

Value FindingJson(const Finding& finding) {
    return {{"helper", HelperName(finding.helperKind, finding.helperId)},
            {"kind", NameOf(finding.source)},
            {"verdict", NameOf(finding.verdict)},
            {"path", finding.path},
            {"value", finding.value ? PlainFormOf(*finding.value) : Value()},
            {"conditionPath", finding.conditionPath},
            {"condition", finding.condition ? PlainFormOf(*finding.condition) : Value()},
            {"allowed", finding.allowed.words},
            {"message", finding.message}};
}

std::string BytesText(std::uintmax_t bytes) {
    if (bytes < 1000) return fmt::format("{} bytes", bytes);
    if (bytes < 1000000) return fmt::format("{:.1f} kB", static_cast<double>(bytes) / 1e3);
    if (bytes < 1000000000) return fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6);
    return fmt::format("{:.2f} GB", static_cast<double>(bytes) / 1e9);
}

/// "0:12", "1:05" or "2:00:01".
std::string ClockText(double seconds) {
    const auto whole = static_cast<long long>(std::min(seconds, 1e9));
    if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

/// "12.34 s", and longer ones as a clock shows them.
std::string DurationText(double seconds) {
    return seconds < 60 ? fmt::format("{:.2f} s", seconds) : ClockText(seconds);
}

/// Times real time.
std::string SpeedText(double seconds, double elapsed) {
    return fmt::format("{:.{}f}x", seconds / elapsed, seconds < 10 * elapsed ? 2 : 0);
}

std::size_t ColumnsOf(int file) {
    winsize size{};
    constexpr std::size_t usual = 80;
    return ioctl(file, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

}  // namespace

std::string PlanText(const Plan& plan, bool colours) {
    const Style& style = colours ? g_coloured : g_plain;
    const double seconds = plan.job.span.LengthOf(plan.input.duration);
    const char* const about = plan.input.isDurationGuessed ? "about " : "";
    const std::string lasting = seconds > 0 ? fmt::format(", {}{:.2f} s", about, seconds) : std::string();
    std::string text =
        fmt::format("{}{}{} -> {}{}{}  {}{}{}{}\n", style.bold, plan.request.input, style.reset, style.bold,
                    plan.request.output, style.reset, style.dim, plan.formatId, lasting, style.reset);
    if (plan.request.verbose || plan.request.explain) {
        for (const StreamPlan& stream : plan.streams) text += StreamText(stream, plan.request.explain, style);
    } else {
        text += SummaryText(plan);
    }
    for (const std::string& note : plan.notes) text += "\n" + note + "\n";
    if (!plan.request.savePresetFile.empty()) text += "\nSaved the preset to " + plan.request.savePresetFile + ".\n";
    if (plan.request.dryRun) text += "\nNothing was encoded: this was a dry run.\n";
    return text;
}

std::string PlanJson(const Plan& plan, const ExportResult* result) {
    Value::List streams;
    for (const StreamPlan& stream : plan.streams) {
        Value::List broken;
        for (const Finding& finding : BrokenOf(stream)) broken.push_back(FindingJson(finding));
        Value::List changes;
        for (const auto& [change, by] : ChangesOf(stream)) {
            changes.push_back({{"path", change->path},
                               {"from", change->before ? PlainFormOf(*change->before) : Value()},
                               {"to", change->after ? PlainFormOf(*change->after) : Value()},
                               {"by", by},
                               {"reason", NameOf(change->reason)},
                               {"message", change->broken ? change->broken->message : std::string()}});
        }
        Value json = {{"type", KindName(stream.kind)},
                      {"index", stream.streamIndex},
                      {"language", stream.language},
                      {"title", stream.title},
                      {"source", stream.source},
                      {"copied", stream.isCopied},
                      {"asked", PlainFormOf(stream.asked)},
                      {"settled", PlainFormOf(stream.settled)},
                      {"broken", broken},
                      {"changes", changes}};
        if (plan.request.explain) {
            for (const Finding& finding : stream.lookedAt) json["lookedAt"].Append(FindingJson(finding));
        }
        streams.push_back(json);
    }
    Value document = {{"input", plan.request.input}, {"output", plan.request.output},
                      {"format", plan.formatId},     {"muxer", plan.job.muxer},
                      {"streams", streams},          {"notes", Value::List(plan.notes.begin(), plan.notes.end())}};
    if (!plan.request.savePresetFile.empty()) document["savedPreset"] = plan.request.savePresetFile;
    if (result != nullptr) {
        Value::List leftOut;
        for (const StreamFailure& stream : result->leftOut) {
            leftOut.push_back({{"index", stream.streamIndex}, {"reason", stream.reason}});
        }
        document["result"] = {{"videoFrames", result->videoFrames},
                              {"audioSamples", result->audioSamples},
                              {"subtitles", result->subtitles},
                              {"copiedPackets", result->copiedPackets},
                              {"duration", result->duration},
                              {"bytes", result->bytes},
                              {"elapsed", result->elapsed},
                              {"leftOut", leftOut},
                              {"jumps", result->jumps},
                              {"damagedStamps", result->damagedStamps}};
    }
    // A file name need not be UTF-8; what is not is shown by the replacement character.
    return Norvex::Document::WriteJson(document) + '\n';
}

std::string ResultText(const Plan& plan, const ExportResult& result) {
    std::string text = fmt::format("\nWrote {} ({}, {}) in {}", plan.request.output, BytesText(result.bytes),
                                   DurationText(result.duration), DurationText(result.elapsed));
    if (result.duration > 0 && result.elapsed > 0) text += ", " + SpeedText(result.duration, result.elapsed);
    text += '\n';
    if (result.jumps > 0) {
        text += fmt::format("The input's time jumps {}: the film goes on where it was.\n",
                            result.jumps == 1 ? "once" : fmt::format("{} times", result.jumps));
    }
    if (result.damagedStamps > 0) {
        text += fmt::format("{} of the input made up for.\n",
                            result.damagedStamps == 1 ? "One damaged time stamp"
                                                      : fmt::format("{} damaged time stamps", result.damagedStamps));
    }
    return text;
}

std::string ProgressText(const Progress& progress, double elapsed, std::size_t columns) {
    const bool isTotalKnown = progress.secondsTotal > 0;
    const double part = isTotalKnown ? std::min(1.0, progress.secondsDone / progress.secondsTotal) : 0.0;
    std::string text = isTotalKnown ? fmt::format("{:3.0f} %", part * 100) : DurationText(progress.secondsDone);
    const auto add = [&](bool isKnown, const std::string& field) {
        if (isKnown && text.size() + 2 + field.size() <= columns) text += "  " + field;
    };
    const bool isUnderWay = elapsed > 1;  // the first moments tell nothing
    add(progress.passes > 1, fmt::format("pass {} of {}", progress.pass, progress.passes));
    add(isUnderWay, SpeedText(progress.secondsDone, elapsed));
    add(isUnderWay && progress.videoFrames > 0,
        fmt::format("{:.0f} fps", static_cast<double>(progress.videoFrames) / elapsed));
    add(isUnderWay && part > 0, ClockText(elapsed * (1 - part) / part) + " left");
    add(progress.bytes > 0, BytesText(progress.bytes));
    constexpr std::size_t widest = 40;
    constexpr std::size_t narrowest = 5;
    const std::size_t room = columns > text.size() + 3 ? columns - text.size() - 3 : 0;
    if (!isTotalKnown || room < narrowest) return text;
    const std::size_t width = std::min(room, widest);
    const auto filled = static_cast<std::size_t>(part * static_cast<double>(width));
    std::string bar = std::string(filled, '=') + (filled < width ? ">" : "");
    bar.resize(width, ' ');
    return "[" + bar + "] " + text;
}

ProgressBar::ProgressBar(bool wanted) : m_visible(wanted && ClearsLines(STDERR_FILENO)) {}

ProgressBar::~ProgressBar() {
    if (m_drawn) std::fputs("\r\033[K", stderr);
}

void ProgressBar::Show(const Progress& progress) {
    if (!m_visible) return;
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - m_begin).count();
    // A character in the last column would begin a new line on some terminals.
    const std::string line = "\r\033[K" + ProgressText(progress, elapsed, ColumnsOf(STDERR_FILENO) - 1);
    std::fputs(line.c_str(), stderr);
    m_drawn = true;
}

}  // namespace NorvexExport
