#include "norvex/Conf/DataHelpers/Constraints/ConstraintChannelLayout.h"

#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintFailure.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"

namespace Norvex::Conf {

SP<IPropertyConstraint> ConstraintChannelLayout::Create(const std::vector<std::string>& layouts) {
    return SP<IPropertyConstraint>(new ConstraintChannelLayout(layouts));
}

SP<IPropertyConstraint> ConstraintChannelLayout::Create(
    const std::vector<std::pair<std::string, std::string>>& layouts) {
    std::vector<std::string> names;
    names.reserve(layouts.size());
    for (const auto& layout : layouts) names.push_back(layout.second);
    return SP<IPropertyConstraint>(new ConstraintChannelLayout(std::move(names)));
}

void ConstraintChannelLayout::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    for (const std::string& name : m_values) consumer->AddValue(name, Core::Property(name, name));
    consumer->EndValues();
}

bool ConstraintChannelLayout::IsValid(const Core::Property& value) const {
    // The class word of the plain set is what callers know this constraint by.
    if (value.GetType() != PT_STRING) NORVEX_THROW(NotApplicable("ConstraintSet", PT_STRING));
    return std::find(m_values.begin(), m_values.end(), value.GetString()) != m_values.end();
}

bool ConstraintChannelLayout::Fixup(Core::Property& value) const {
    if (IsValid(value)) return true;
    if (m_values.empty()) return false;
    try {
        value = Nearest(value.GetString());
    } catch (const FormatException&) {
        value = m_values.back();
    }
    return true;
}

const std::string& ConstraintChannelLayout::Nearest(const std::string& layout) const {
    const int target = LayoutRecord::Find(layout).channels;
    const std::string* best = &m_values.front();
    int bestChannels = LayoutRecord::Find(*best).channels;
    for (const std::string& name : m_values) {
        const int channels = LayoutRecord::Find(name).channels;
        const bool nearerFromAbove = channels < bestChannels && channels >= target;
        const bool nearerFromBelow = channels > bestChannels && channels <= target;
        if (!nearerFromAbove && !nearerFromBelow) continue;
        best = &name;
        bestChannels = channels;
    }
    return *best;
}

std::string ConstraintChannelLayout::Description(const std::string& /*parameterName*/) const {
    return {};
}

}  // namespace Norvex::Conf
