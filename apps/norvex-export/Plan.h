/// The road from a request to settings that an encoder takes, through the rule book.
#pragma once

#include <functional>
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
    StreamKind kind = StreamKind::Video;
    int streamIndex = -1;                                ///< of the input
    std::string language;                                ///< empty where unknown
    std::string title;                                   ///< empty where it has none
    std::string source;                                  ///< what the input has, in words
    bool isCopied = false;                               ///< carried over unchanged; the rest is empty then
    Norvex::Core::Property asked;                        ///< the stream's flat tree after the preset was applied
    Norvex::Core::Property settled;                      ///< the same after correction
    std::vector<Norvex::Core::Property> sections;        ///< of a preset, that give the same again
    std::vector<Norvex::Conf::Finding> lookedAt;         ///< on what was asked, broken or not
    std::vector<Norvex::Conf::CorrectedValue> changes;   ///< by the helpers
    std::vector<Norvex::Conf::CorrectedValue> givenWay;  ///< by the program: what was not asked, to what was
    bool isAtSourceRate = false;                         ///< the rate was left to the source, which has its own
};

struct Plan {
    Request request;
    InputInfo input;
    std::string formatId;
    std::vector<StreamPlan> streams;  ///< in the order of the input
    std::vector<std::string> notes;   ///< what the user may want to know, a sentence each
    Norvex::Core::Property settled;   ///< the preset that gives the same again
    ExportJob job;
};

/// Takes the census of encoders. Once, before the first plan.
void TakeCensus();

/// Adds to the choices what the preset of that text says, where nothing else was chosen. Throws RequestError.
void ChooseFromPreset(Request& request, const std::string& presetText);

/// Tells which copies of a job FFmpeg cannot write: FindUnwritableCopies(), but for tests.
using TryCopies = std::function<std::vector<StreamFailure>(const ExportJob&)>;

/// Settles the request for this input. Throws RequestError.
///
/// What cannot be carried over unchanged is encoded, or left out, with a note; without `tryCopies` only the rule book
/// is asked about it.
Plan MakePlan(const Request& request, const InputInfo& input, const TryCopies& tryCopies = {});

}  // namespace NorvexExport
