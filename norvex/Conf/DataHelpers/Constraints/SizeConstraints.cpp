#include "norvex/Conf/DataHelpers/Constraints/SizeConstraints.h"

#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Conf {

SP<IPropertyConstraint> SizeConstraints::Create(const SizeList& sizes) {
    return SP<IPropertyConstraint>(new SizeConstraints(sizes));
}

void SizeConstraints::FillValueList(const SP<IConstraintConsumer>& consumer) const {
    for (const auto& [width, height] : m_sizes) {
        Core::Property size(Proc::IResize::FRAME_SIZE_MODE);
        size.SetChildT(IFormatCodecVideo::TAG_WIDTH, width);
        size.SetChildT(IFormatCodecVideo::TAG_HEIGHT, height);
        consumer->AddValue(std::to_string(width) + " x " + std::to_string(height), size);
    }
    consumer->EndValues();
}

bool SizeConstraints::IsValid(const Core::Property& value) const {
    return value.GetType() == PT_STRING && value.GetString() == Proc::IResize::FRAME_SIZE_CUSTOM;
}

bool SizeConstraints::Fixup(Core::Property& value) const {
    return IsValid(value);
}

std::string SizeConstraints::Description(const std::string& /*parameterName*/) const {
    return {};
}

}  // namespace Norvex::Conf
