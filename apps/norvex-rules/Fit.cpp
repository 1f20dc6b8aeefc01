#include "Fit.h"

#include <fmt/format.h>

#include <algorithm>

#include "norvex/Conf/Review/EnumeratorNames.h"
#include "norvex/document/TreeForm.h"
#include "norvex/foundation/Property.h"

namespace NorvexRules {

namespace {

using namespace Norvex::Conf;
using Norvex::Core::PropertyValueToString;
using Norvex::Document::PlainFormOf;
using Norvex::Document::Value;
using Answer = StreamFit::Answer;

/// What the table says of one stream.
std::string CellOf(const StreamFit& fit) {
    if (fit.answer == Answer::AsItIs) return "as it is";
    std::string cell = fit.isEncoded ? "> " + (fit.encodedTo.empty() ? "?" : fit.encodedTo) : "-";
    if (fit.answer == Answer::Refused) cell += '*';
    if (!fit.changes.empty()) cell += fmt::format(" ~{}", fit.changes.size());
    return cell;
}

template <class Predicate>
bool HasStream(const FormatFit& fit, const Predicate& predicate) {
    return std::any_of(fit.streams.begin(), fit.streams.end(), predicate);
}

bool HoldsSomething(const FormatFit& fit) {
    return HasStream(fit, [](const StreamFit& s) { return s.answer != Answer::LeftOut && !s.isOnePicture; });
}

bool HoldsPicture(const FormatFit& fit) {
    return HasStream(fit, [](const StreamFit& s) { return s.isOnePicture; });
}

std::string LinesOfStreams(const FileStreams& file) {
    std::string text = fmt::format("{} ({})\n", file.path, file.container);
    for (std::size_t i = 0; i < file.streams.size(); ++i) {
        text += fmt::format("  {:>2}  {}\n", i, file.streams[i].words);
    }
    return text;
}

/// Ids in lines that fit a terminal.
std::string Wrapped(const std::vector<std::string>& ids) {
    constexpr std::size_t width = 78;
    std::string text;
    std::string line = " ";
    for (const std::string& id : ids) {
        if (line.size() + id.size() + 1 > width) text += std::exchange(line, " ") + '\n';
        line += ' ' + id;
    }
    return text + line + '\n';
}

std::string Capitalised(std::string sentence) {
    // Names of codecs and containers stay as they are written.
    static const char* const words[] = {"the ", "this ", "nothing "};
    const bool isWord = std::any_of(std::begin(words), std::end(words), [&](const std::string& word) {
        return sentence.compare(0, word.size(), word) == 0;
    });
    if (isWord) sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
    return sentence;
}

std::string SentenceOf(const StreamFit& fit) {
    std::string text = Capitalised(fit.reason);
    if (fit.answer == Answer::AsItIs) return text + ".";
    if (!fit.isEncoded) return text + ": left out.";
    text += fit.encodedTo.empty() ? "; encoded, codec unknown" : "; encoded to " + fit.encodedTo;
    for (const ChangedSetting& change : fit.changes) {
        text += fmt::format(", {} {} instead of {}", change.path, PropertyValueToString(change.after),
                            PropertyValueToString(change.before));
    }
    return text + ".";
}

Value FormOf(const StreamLimits& limits) {
    return {{"video", limits.video}, {"audio", limits.audio}, {"subtitle", limits.subtitle}, {"other", limits.other}};
}

Value FormOf(const StreamFit& fit) {
    Value::List changes;
    for (const ChangedSetting& change : fit.changes) {
        changes.push_back(
            {{"path", change.path}, {"before", PlainFormOf(change.before)}, {"after", PlainFormOf(change.after)}});
    }
    return {{"answer", NameOf(fit.answer)},
            {"encoded", fit.isEncoded},
            {"codec", fit.encodedTo.empty() ? Value() : Value(fit.encodedTo)},
            {"changes", changes},
            {"onePicture", fit.isOnePicture},
            {"reason", fit.reason}};
}

std::string Counted(const StreamLimits& limits) {
    return fmt::format("video {}, audio {}, subtitles {}, other {}", limits.video, limits.audio, limits.subtitle,
                       limits.other);
}

}  // namespace

std::string FitText(const FileStreams& file, const std::vector<FormatFit>& fits) {
    std::vector<std::vector<std::string>> rows = {{""}};
    for (std::size_t i = 0; i < file.streams.size(); ++i)
        rows[0].push_back(fmt::format("{} {}", i, file.streams[i].codecId));
    std::vector<std::string> pictures;
    std::vector<std::string> others;
    for (const FormatFit& fit : fits) {
        if (!HoldsSomething(fit)) {
            (HoldsPicture(fit) ? pictures : others).push_back(fit.formatId);
            continue;
        }
        std::vector<std::string> row = {fit.formatId};
        for (const StreamFit& stream : fit.streams) row.push_back(CellOf(stream));
        rows.push_back(std::move(row));
    }
    std::vector<std::size_t> widths(rows[0].size());
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text = LinesOfStreams(file) + '\n';
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) text += fmt::format("{:<{}}", row[i], widths[i] + 2);
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    text +=
        "\n> encoded to, - left out, ~ so many settings change,\n"
        "* FFmpeg carries it unchanged and the rule book refuses: --format ID says why\n";
    if (!pictures.empty()) text += "Hold the first picture:\n" + Wrapped(pictures);
    if (!others.empty()) text += "Hold none of it:\n" + Wrapped(others);
    return text;
}

std::string FitSentences(const FileStreams& file, const FormatFit& fit) {
    std::string text =
        LinesOfStreams(file) + fmt::format("\n{} holds at most: {}\n", fit.formatId, Counted(fit.limits));
    for (std::size_t i = 0; i < fit.streams.size(); ++i) {
        text += fmt::format("  {:>2}  {}\n", i, SentenceOf(fit.streams[i]));
    }
    return text;
}

std::string FitJson(const FileStreams& file, const std::vector<FormatFit>& fits) {
    Value document = {{"norvex-fit", g_fitVersion}, {"file", file.path}, {"container", file.container}};
    document["streams"] = Value::List();
    for (std::size_t i = 0; i < file.streams.size(); ++i) {
        const StreamKind kind = fits.empty() ? StreamKind::Other : fits.front().streams[i].kind;
        document["streams"].Append(
            {{"kind", NameOf(kind)}, {"codec", file.streams[i].codecId}, {"words", file.streams[i].words}});
    }
    document["formats"] = Value::List();
    for (const FormatFit& fit : fits) {
        Value::List streams;
        for (const StreamFit& stream : fit.streams) streams.push_back(FormOf(stream));
        document["formats"].Append({{"id", fit.formatId},
                                    {"limits", FormOf(fit.limits)},
                                    {"lost", fit.CountLost()},
                                    {"encoded", fit.CountEncoded()},
                                    {"changes", fit.CountChanges()},
                                    {"streams", streams}});
    }
    return WriteJson(document) + '\n';
}

std::string HoldingText(const std::vector<HoldingFormat>& formats) {
    if (formats.empty()) return "No container holds all of these.\n";
    std::string text;
    std::vector<std::string> others;
    for (const HoldingFormat& format : formats) {
        if (format.isEncodable) {
            text += fmt::format("{:<14} at most {}\n", format.formatId, Counted(format.limits));
        } else {
            others.push_back(format.formatId);
        }
    }
    if (!others.empty()) text += "This FFmpeg cannot write all of it to:\n" + Wrapped(others);
    return text;
}

std::string HoldingJson(const std::vector<HoldingFormat>& formats) {
    Value::List list;
    for (const HoldingFormat& format : formats) {
        list.push_back({{"id", format.formatId}, {"limits", FormOf(format.limits)}, {"encodable", format.isEncodable}});
    }
    return WriteJson(list) + '\n';
}

}  // namespace NorvexRules
