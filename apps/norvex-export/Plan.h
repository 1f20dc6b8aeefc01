/// The road from a request to settings that an encoder takes, through the rule book.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "Media.h"
#include "Request.h"
#include "norvex/Conf/Review/CorrectionReport.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// A request that cannot be carried out; what() says why, for the user.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What becomes of one stream.
struct StreamPlan {
    enum class Kind { Video, Audio, Subtitle };

    Kind kind = Kind::Video;
    std::string source;                                  ///< what the input has, in words
    bool isCopied = false;                               ///< carried over unchanged; the rest is empty then
    Norvex::Core::Property asked;                        ///< the stream's flat tree after the preset was applied
    Norvex::Core::Property settled;                      ///< the same after correction
    std::vector<Norvex::Conf::Finding> lookedAt;         ///< on what was asked, broken or not
    std::vector<Norvex::Conf::CorrectedValue> changes;   ///< by the helpers
    std::vector<Norvex::Conf::CorrectedValue> givenWay;  ///< by the program: what was not asked, to what was
    bool isAtSourceRate = false;                         ///< the rate was left to the source, which has its own
};

struct Plan {
    Request request;
    InputInfo input;
    std::string formatId;
    std::vector<StreamPlan> streams;
    std::vector<std::string> notes;  ///< what the user may want to know, a sentence each
    Norvex::Core::Property settled;  ///< the preset that gives the same again
    ExportJob job;
};

/// Takes the census of encoders. Once, before the first plan.
void TakeCensus();

/// Adds to the choices what the preset of that text says, where nothing else was chosen. Throws RequestError.
void ChooseFromPreset(Request& request, const std::string& presetText);

/// Settles the request for this input. Throws RequestError.
Plan MakePlan(const Request& request, const InputInfo& input);

}  // namespace NorvexExport
