#include "norvex/Conf/DataHelpers/Constraints/FakeConstraintConsumer.h"

#include <boost/any.hpp>

namespace Norvex::Conf {

namespace {

const char* const minValueId = "minValue";
const char* const midValueId = "midValue";
const char* const maxValueId = "maxValue";

/// Half way between two integers, cut towards zero. Of one sign, their sum may need a bit more than they have.
long long Middle(long long min, long long max) {
    if ((min < 0) != (max < 0)) return (min + max) / 2;
    return min / 2 + max / 2 + (min % 2 + max % 2) / 2;
}

/// The value on the grid through `min` that stands for `mid`; nothing keeps it within the bounds. Every integer lies
/// on a grid of ones.
long long OnGrid(long long mid, long long min, long long step) {
    if (step == 0 || step == 1 || step == -1) return mid;
    const auto grid = static_cast<unsigned long long>(mid / step * step);
    return static_cast<long long>(grid + static_cast<unsigned long long>(min % step));
}

template <class T>
Core::Property RangeTree(T min, T mid, T max) {
    Core::Property range{std::string()};
    range.SetChildT(minValueId, min);
    range.SetChildT(midValueId, mid);
    range.SetChildT(maxValueId, max);
    return range;
}

}  // namespace

struct FakeConstraintConsumer::Impl {
    boost::any min;  ///< nothing where it was not set, which reading it tells
    boost::any max;
    long long step = 0;
    Core::Property values{std::string()};
    PropertyTypes rangeType = PT_NONE;
};

SP<IConstraintConsumer> FakeConstraintConsumer::Create() {
    return SP<IConstraintConsumer>(new FakeConstraintConsumer);
}

FakeConstraintConsumer::FakeConstraintConsumer() : m_impl(std::make_unique<Impl>()) {}

FakeConstraintConsumer::~FakeConstraintConsumer() = default;

void FakeConstraintConsumer::Reset() {
    m_impl->values.RemoveAll();
    m_impl->min.clear();
    m_impl->max.clear();
}

void FakeConstraintConsumer::AddValue(const std::string& name, const Core::Property& value) {
    m_impl->values.SetChild(name, value);
}

void FakeConstraintConsumer::EndValues() {}

void FakeConstraintConsumer::SetMaxValue(double value) {
    m_impl->max = value;
    m_impl->rangeType = PT_DOUBLE;
}

void FakeConstraintConsumer::SetMaxValue(long long value) {
    m_impl->max = value;
    m_impl->rangeType = PT_INT64;
}

void FakeConstraintConsumer::SetMinValue(double value) {
    m_impl->min = value;
    m_impl->rangeType = PT_DOUBLE;
}

void FakeConstraintConsumer::SetMinValue(long long value) {
    m_impl->min = value;
    m_impl->rangeType = PT_INT64;
}

void FakeConstraintConsumer::SetStep(double /*step*/) {}

void FakeConstraintConsumer::SetStep(long long step) {
    m_impl->step = step;
}

Core::Property FakeConstraintConsumer::GetValue() const {
    if (!m_impl->values.IsEmpty()) return m_impl->values;
    if (m_impl->rangeType == PT_INT64) {
        const auto min = boost::any_cast<long long>(m_impl->min);
        const auto max = boost::any_cast<long long>(m_impl->max);
        return RangeTree(min, OnGrid(Middle(min, max), min, m_impl->step), max);
    }
    if (m_impl->rangeType == PT_DOUBLE) {
        const auto min = boost::any_cast<double>(m_impl->min);
        const auto max = boost::any_cast<double>(m_impl->max);
        return RangeTree(min, (min + max) * 0.5, max);
    }
    return Core::Property(std::string());
}

void FakeConstraintConsumer::SetValue(const Core::Property& /*value*/) {}

}  // namespace Norvex::Conf
