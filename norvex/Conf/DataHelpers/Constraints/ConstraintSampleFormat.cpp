#include "norvex/Conf/DataHelpers/Constraints/ConstraintSampleFormat.h"

#include <algorithm>
#include <cstdlib>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintFailure.h"

namespace Norvex::Conf {

namespace {

std::vector<std::pair<SampleFormats, std::string>> WithNames(const std::vector<SampleFormats>& formats) {
    std::vector<std::pair<SampleFormats, std::string>> named;
    named.reserve(formats.size());
    for (const SampleFormats format : formats) named.emplace_back(format, SampleFmtRecord::Find(format).name);
    return named;
}

/// How far `candidate` is from `wanted`. The same arrangement counts against it: of two formats of equal width the
/// other arrangement is preferred.
unsigned Cost(const SampleFmtRecord& wanted, const SampleFmtRecord& candidate) {
    return static_cast<unsigned>(std::abs(wanted.bits - candidate.bits)) +
           (wanted.planar == candidate.planar ? 1U : 0U);
}

}  // namespace

SP<IPropertyConstraint> ConstraintSampleFormat::Create(const std::vector<SampleFormats>& formats) {
    return SP<IPropertyConstraint>(new ConstraintSampleFormat(formats));
}

ConstraintSampleFormat::ConstraintSampleFormat(const std::vector<SampleFormats>& formats)
    : m_values(WithNames(formats)) {}

void ConstraintSampleFormat::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    for (const auto& [format, name] : m_values) consumer->AddValue(name, Core::Property(name, name));
    consumer->EndValues();
}

bool ConstraintSampleFormat::IsListed(SampleFormats format) const {
    return std::any_of(m_values.begin(), m_values.end(),
                       [format](const auto& listed) { return listed.first == format; });
}

bool ConstraintSampleFormat::IsValid(const Core::Property& value) const {
    if (value.GetType() != PT_STRING) NORVEX_THROW(NotApplicable("ConstraintSampleFormat", PT_STRING));
    return IsListed(SampleFmtRecord::Find(value.GetString()).format);
}

bool ConstraintSampleFormat::Fixup(Core::Property& value) const {
    if (IsValid(value)) return true;
    if (m_values.empty()) return false;
    const SampleFmtRecord& wanted = SampleFmtRecord::Find(value.GetString());
    if (IsListed(wanted.twin)) {
        value = SampleFmtRecord::Find(wanted.twin).name;
        return true;
    }
    const auto nearest =
        std::min_element(m_values.begin(), m_values.end(), [&wanted](const auto& one, const auto& two) {
            return Cost(wanted, SampleFmtRecord::Find(one.first)) < Cost(wanted, SampleFmtRecord::Find(two.first));
        });
    value = nearest->second;
    return true;
}

std::string ConstraintSampleFormat::Description(const std::string& /*parameterName*/) const {
    return {};
}

}  // namespace Norvex::Conf
