#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "norvex/Conf/Review/PresetCheck.h"

namespace Norvex::Conf {

/// One value that a correction changed.
struct CorrectedValue {
    enum class Reason {
        Broken,   ///< the former value broke a constraint or a rule
        Default,  ///< there was none, or none that could stay, and the helper's default took its place
        Helper,   ///< the helper worked it out, or took it away
    };

    std::string helperKind;
    std::string helperId;
    std::string path;                      ///< in the stream's node
    std::optional<Core::Property> before;  ///< empty where there was none
    std::optional<Core::Property> after;   ///< empty where it was taken away
    Reason reason = Reason::Helper;
    std::optional<Finding> broken;  ///< what the former value broke, beside the settled values of the others
};

struct CorrectionReport {
    std::vector<CorrectedValue> changes;  ///< in the order in which the helpers ran
    /// What the stream still breaks: validation asks for more than correction mends.
    std::vector<Finding> left;
    /// What a correction threw; the helpers behind it did not run. Where all ran, the first that a helper threw when it
    /// was asked for its defaults, constraints or rules, so that the report lacks what it would have said. Else null.
    std::exception_ptr failure;
};

/// Lets each helper correct the flat node of one stream, in their order, and tells what came of it. The node ends as it
/// would without the report, also where a helper throws. What helpers throw is kept in the report and does not pass;
/// null helpers are passed over. Of values that share a path, Broken and Default are told of the one that it leads to.
NORVEX_API CorrectionReport CorrectWithReport(Core::Property& stream, const std::vector<NamedHelper>& helpers);

}  // namespace Norvex::Conf
