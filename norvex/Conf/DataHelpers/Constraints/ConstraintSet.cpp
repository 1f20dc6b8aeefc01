#include "norvex/Conf/DataHelpers/Constraints/ConstraintSet.h"

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <cmath>
#include <optional>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintFailure.h"
#include "norvex/foundation/Localization.h"
#include "norvex/interfaces/Conf/Messages.h"

namespace Norvex::Conf {

namespace {

using Core::Property;

/// The gettext message. The parameter's name and the list of values take the places of the marks.
const char* const listMessage = "Parameter %1 must be one of the following values: %2";

template <class T>
ConstraintSet::ValueList<Property> ToProperties(const ConstraintSet::ValueList<T>& values) {
    ConstraintSet::ValueList<Property> properties;
    properties.reserve(values.size());
    for (const auto& [name, value] : values) properties.emplace_back(name, Property(std::string(), T(value)));
    return properties;
}

double ToDouble(const Core::Ratio& ratio) {
    if (ratio.denominator() < 1) return 0.0;
    return static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator());
}

/// The difference of two integers, also where it needs a bit more than they have.
double Distance(long long one, long long two) {
    const auto [smaller, larger] = std::minmax(one, two);
    return static_cast<double>(static_cast<unsigned long long>(larger) - static_cast<unsigned long long>(smaller));
}

double Distance(PropertyTypes type, const Property& entry, const Property& value) {
    switch (type) {
        case PT_DOUBLE:
            return std::abs(entry.GetDouble() - value.GetDouble());
        case PT_INT64:
            return Distance(entry.GetInt64(), value.GetInt64());
        default:
            return std::abs(ToDouble(entry.GetRatio()) - ToDouble(value.GetRatio()));
    }
}

}  // namespace

template <class T>
ConstraintSet::ConstraintSet(PropertyTypes type, const ValueList<T>& values)
    : m_type(type), m_values(ToProperties(values)) {}

SP<IPropertyConstraint> ConstraintSet::Create(const ValueList<bool>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(PT_BOOL, values));
}

SP<IPropertyConstraint> ConstraintSet::Create(const ValueList<double>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(PT_DOUBLE, values));
}

SP<IPropertyConstraint> ConstraintSet::Create(const ValueList<long long>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(PT_INT64, values));
}

SP<IPropertyConstraint> ConstraintSet::Create(const ValueList<std::string>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(PT_STRING, values));
}

SP<IPropertyConstraint> ConstraintSet::Create(const ValueList<Core::Ratio>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(PT_RATIO, values));
}

SP<IPropertyConstraint> ConstraintSet::Create(PropertyTypes type, const ValueList<Property>& values) {
    return SP<IPropertyConstraint>(new ConstraintSet(type, ValueList<Property>(values)));
}

SP<IPropertyConstraint> ConstraintSet::Create(PropertyTypes type, const Property& list) {
    ValueList<Property> values;
    values.reserve(list.Count());
    for (const Property& value : list) values.emplace_back(value.GetName(), value);
    return SP<IPropertyConstraint>(new ConstraintSet(type, std::move(values)));
}

void ConstraintSet::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    for (const auto& [name, value] : m_values) consumer->AddValue(name, value);
    consumer->EndValues();
}

bool ConstraintSet::IsValid(const Property& value) const {
    const auto isListed = [this](const Property& wanted) {
        return std::any_of(m_values.begin(), m_values.end(),
                           [&wanted](const auto& entry) { return entry.second == wanted; });
    };
    if (value.GetType() == m_type) return isListed(value);
    if (m_type != PT_RATIO || value.GetType() != PT_STRING) NORVEX_THROW(NotApplicable("ConstraintSet", m_type));
    const std::optional<Core::Ratio> ratio = Core::ParseRatio(value.GetString());
    return ratio && isListed(Property(std::string(), *ratio));
}

bool ConstraintSet::Fixup(Property& value) const {
    if (m_values.empty()) return false;
    if (IsValid(value)) return true;
    if (value.GetType() != m_type) return false;

    auto nearest = m_values.begin();
    switch (m_type) {
        case PT_STRING:
            break;  // texts have no distance
        case PT_DOUBLE:
        case PT_INT64:
        case PT_RATIO: {
            double smallest = Distance(m_type, nearest->second, value);
            for (auto entry = std::next(nearest); entry != m_values.end(); ++entry) {
                const double distance = Distance(m_type, entry->second, value);
                if (!(distance < smallest)) continue;
                smallest = distance;
                nearest = entry;
            }
            break;
        }
        default:
            return false;
    }
    value.CopyDataFrom(nearest->second);
    return true;
}

std::string ConstraintSet::Description(const std::string& parameterName) const {
    const Core::LocalizationDomain localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    std::string text = localization.manager.Translate(listMessage, localization.domain);
    boost::algorithm::replace_all(text, "%1", parameterName);
    if (m_values.empty()) return text;
    std::string names;
    for (const auto& [name, value] : m_values) names += name + ' ';
    boost::algorithm::replace_all(text, "%2", names);
    return text;
}

}  // namespace Norvex::Conf
