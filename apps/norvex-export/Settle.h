/// One stream's way from a preset to legal settings.
#pragma once

#include <string>
#include <vector>

#include "Plan.h"
#include "norvex/Conf/Review/PresetCheck.h"

namespace NorvexExport {

/// What the settings of one stream are made from.
struct StreamRules {
    Norvex::Conf::NamedHelper format;
    Norvex::Core::Property formatTree;
    Norvex::Conf::NamedHelper codec;
    /// The filters' sections, in the order in which they are applied. Values may be automatic.
    std::vector<Norvex::Core::Property> filters;
    const Request& request;
};

/// `stream` starts as the source's values under the flat node's name. Throws RequestError where what was chosen
/// contradicts itself or the rule book.
StreamPlan Settle(const StreamRules& rules, Norvex::Core::Property stream);

/// A helper's defaults with what was chosen in their section.
Norvex::Core::Property WithChoices(Norvex::Core::Property section, const Request& request);

}  // namespace NorvexExport
