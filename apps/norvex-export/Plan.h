/// The road from a request to settings that an encoder takes, through the rule book.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Media.h"
#include "Request.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// A request that cannot be carried out; what() says why, for the user.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A rule or a constraint that a stream did not keep.
struct Violation {
    std::string path;     ///< of the value, in the preset or the codec's section
    std::string value;    ///< as text
    std::string allowed;  ///< what would be allowed, in words
};

/// A value that was changed on the way.
struct Change {
    std::string path;  ///< in the stream's tree
    std::string from;  ///< as text, empty where it was absent
    std::string to;    ///< as text, empty where it was removed
    std::string by;    ///< who changed it: "format", "codec" or "rules"
};

struct StreamPlan {
    bool isVideo = false;
    std::string source;              ///< what the input has, in words
    Norvex::Core::Property asked;    ///< the stream's flat tree after the preset was applied
    Norvex::Core::Property settled;  ///< the same after correction
    std::vector<Violation> broken;   ///< before correction
    std::vector<Change> changes;
};

struct Plan {
    Request request;
    InputInfo input;
    std::string formatId;
    std::vector<StreamPlan> streams;
    std::vector<std::string> notes;  ///< what the user may want to know, a sentence each
    ExportJob job;
};

/// Takes the census of encoders. Once, before the first plan.
void TakeCensus();

/// Settles the request for this input. Throws RequestError.
Plan MakePlan(const Request& request, const InputInfo& input);

}  // namespace NorvexExport
