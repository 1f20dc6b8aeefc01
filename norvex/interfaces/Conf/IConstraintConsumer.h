#pragma once

#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/foundation/RefCount.h"

namespace Norvex::Conf {

/// Receives what a constraint allows, for instance to fill a control of a dialog. A host implements it. A list
/// comes as AddValue for each value and then EndValues; a range as its bounds and its step, if it has one. What it
/// throws passes through the constraint.
class NORVEX_API IConstraintConsumer : public IRefCountable {
public:
    /// Forgets what was received. The caller does this between constraints; constraints never do.
    virtual void Reset() = 0;
    virtual void AddValue(const std::string& name, const Core::Property& value) = 0;
    virtual void EndValues() = 0;
    virtual void SetMaxValue(double value) = 0;
    virtual void SetMaxValue(long long value) = 0;
    virtual void SetMinValue(double value) = 0;
    virtual void SetMinValue(long long value) = 0;
    virtual void SetStep(double step) = 0;
    virtual void SetStep(long long step) = 0;
    virtual Core::Property GetValue() const = 0;
    virtual void SetValue(const Core::Property& value) = 0;
};

}  // namespace Norvex::Conf
