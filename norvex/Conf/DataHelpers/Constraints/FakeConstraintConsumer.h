#pragma once

#include <memory>

#include "norvex/interfaces/Conf/IConstraintConsumer.h"

namespace Norvex::Conf {

/// Stands in for a user interface: a constraint fills it, and GetValue gives back what the constraint offered.
/// Reset it before each constraint; it keeps the step and the type of the last range all the same.
class NORVEX_API FakeConstraintConsumer final : public RefCounted<IConstraintConsumer> {
public:
    static SP<IConstraintConsumer> Create();

    void Reset() override;
    /// A second value of the same display name takes the place of the first.
    void AddValue(const std::string& name, const Core::Property& value) override;
    void EndValues() override;
    void SetMaxValue(double value) override;
    void SetMaxValue(long long value) override;
    void SetMinValue(double value) override;
    void SetMinValue(long long value) override;
    void SetStep(double step) override;
    void SetStep(long long step) override;
    /// The listed values under their display names, if there are any; else "minValue", "midValue" and "maxValue" of
    /// the range; else an empty node. Throws boost::bad_any_cast when the range was reset and not set again.
    Core::Property GetValue() const override;
    void SetValue(const Core::Property& value) override;

private:
    struct Impl;

    FakeConstraintConsumer();
    ~FakeConstraintConsumer() override;

    const std::unique_ptr<Impl> m_impl;
};

}  // namespace Norvex::Conf
