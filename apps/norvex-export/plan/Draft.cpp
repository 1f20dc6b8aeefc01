#include "Draft.h"

#include <algorithm>

#include "Words.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

int Draft::LimitOf(const std::string& tag) const {
    using F = Norvex::Conf::IFormatFile;
    return static_cast<int>(formatTree[F::TAG_LIMITS][tag].GetInt64());
}

void Draft::LeaveOut(const std::vector<int>& streams, const std::string& reason) {
    if (streams.empty()) return;
    for (const StreamChoice& choice : plan.request.streams) {
        if (choice.stream && std::find(streams.begin(), streams.end(), *choice.stream) != streams.end()) {
            throw RequestError("--streams: stream " + choice.text + " cannot go over: " + reason);
        }
    }
    Note(Capitalised(reason) + "; " + StreamsText(streams) + (streams.size() == 1 ? " is" : " are") + " left out.");
}

void Draft::NoteCopyable() {
    for (std::vector<int>* const streams : {&copyable, &refused}) std::sort(streams->begin(), streams->end());
    const std::string unchanged = " could go over unchanged";
    if (!copyable.empty()) Note(Capitalised(StreamsText(copyable)) + unchanged + ": give --copy.");
    if (refused.empty()) return;
    Note(Capitalised(StreamsText(refused)) + unchanged + " with --copy=all: FFmpeg carries " +
         (refused.size() == 1 ? "it" : "them") + " in '" + plan.formatId + "', though the rule book refuses.");
}

void Draft::Add(StreamPlan stream, const StreamSource& source) {
    stream.streamIndex = source.streamIndex;
    stream.language = source.language;
    stream.title = source.title;
    plan.streams.push_back(std::move(stream));
}

void Draft::AddCopy(StreamKind kind, const StreamSource& source, std::string words) {
    StreamPlan stream;
    stream.kind = kind;
    stream.source = std::move(words);
    stream.isCopied = true;
    plan.job.copies.push_back(source.streamIndex);
    Add(std::move(stream), source);
}

}  // namespace NorvexExport
