/// A plan in the making.
#pragma once

#include <string>
#include <vector>

#include "norvex-export/Plan.h"
#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexExport {

/// The plan, and by what its streams are planned.
struct Draft {
    Plan plan;
    Norvex::Conf::NamedHelper format;
    Norvex::Core::Property formatTree;
    std::vector<StreamFailure> unwritable;  ///< what an earlier draft would have carried over
    std::vector<int> copyable;              ///< encoded, though --copy would carry them over unchanged
    std::vector<int> refused;               ///< the same with --copy=all

    /// How many streams of a kind the container may hold, by the tag of the limit.
    int LimitOf(const std::string& tag) const;

    /// Tells of the streams that are encoded and need not be.
    void NoteCopyable();

    void Note(std::string sentence) { plan.notes.push_back(std::move(sentence)); }

    /// Tells that streams do not go into the output, with a reason such as "'wav' holds no pictures". Throws
    /// RequestError where the user has named one of them by its number.
    template <class Source>
    void LeaveOut(const std::vector<const Source*>& streams, const std::string& reason) {
        std::vector<int> numbers;
        for (const Source* const stream : streams) numbers.push_back(stream->streamIndex);
        LeaveOut(numbers, reason);
    }
    void LeaveOut(const std::vector<int>& streams, const std::string& reason);

    /// A stream whose settings stand.
    void Add(StreamPlan stream, const StreamSource& source);
    /// A stream that is carried over unchanged.
    void AddCopy(StreamKind kind, const StreamSource& source, std::string words);
};

}  // namespace NorvexExport
