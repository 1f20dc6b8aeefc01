/// A preset judged, and mended.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/foundation/Property.h"

namespace NorvexRules {

struct Judgement {
    std::vector<Norvex::Conf::Finding> broken;
    /// Rules about values that the preset leaves out: the source's own will have to keep them.
    std::vector<Norvex::Conf::Finding> open;
    Norvex::Core::Property mended;
    std::vector<Norvex::Conf::Finding> left;  ///< what the mended preset still breaks
};

/// Automatic values pass. Mending takes, for what is broken, the value that its constraint makes of it.
Judgement Judge(const Norvex::Core::Property& preset);

std::string JudgementText(const Judgement& judgement);
std::string JudgementJson(const Judgement& judgement);

}  // namespace NorvexRules
