#include "norvex/Conf/DataHelpers/Constraints/ConstraintMethod.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Filters/FilterHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;
using Proc::IResize;

/// Frames per second, the book's own choice. Those of NTSC are exact ratios under rounded labels.
const ConstraintSet::ValueList<Core::Ratio>& FrameRates() {
    // clang-format off
    static const auto& rates = Lasting(ConstraintSet::ValueList<Core::Ratio>{
        {"Auto",  Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE},
        {"1",     {1, 1}},
        {"2",     {2, 1}},
        {"5",     {5, 1}},
        {"8",     {8, 1}},
        {"10",    {10, 1}},
        {"12",    {12, 1}},
        {"15",    {15, 1}},
        {"16",    {16, 1}},
        {"20",    {20, 1}},
        {"23.97", {24000, 1001}},
        {"24",    {24, 1}},
        {"25",    {25, 1}},
        {"29.97", {30000, 1001}},
        {"30",    {30, 1}},
        {"48",    {48, 1}},
        {"50",    {50, 1}},
        {"59.94", {60000, 1001}},
        {"60",    {60, 1}},
        {"100",   {100, 1}},
        {"120",   {120, 1}},
        {"240",   {240, 1}},
    });
    // clang-format on
    return rates;
}

constexpr Name frameSizeModes[] = {
    IResize::FRAME_SIZE_CUSTOM,        IResize::FRAME_SIZE_CUSTOM_SCALE,     IResize::FRAME_SIZE_ORIGINAL,
    IResize::FRAME_SIZE_HALF_ORIGINAL, IResize::FRAME_SIZE_QUARTER_ORIGINAL,
};

constexpr Name resizeModes[] = {
    IResize::MODE_SMART_FIT, IResize::MODE_UP_TO, IResize::MODE_LETTERBOX,
    IResize::MODE_STRETCH,   IResize::MODE_AUTO,  IResize::MODE_CROP,
};

constexpr Name resizeMethods[] = {
    IResize::METHOD_POINT,
    IResize::METHOD_FAST_BILINEAR,
    IResize::METHOD_BILINEAR,
    IResize::METHOD_BICUBIC,
};

}  // namespace

SP<IDataHelper> DataHelperVideoResample::Create() {
    return Keeping(new DataHelperVideoResample);
}

Core::Property DataHelperVideoResample::GetDefaults() const {
    return Proc::IFilterFrameRate::MakeSettings(Core::Ratio(25, 1));
}

void DataHelperVideoResample::GetConstraints(ConstraintMap& constraints) const {
    constraints[V::TAG_FPS] = ConstraintSet::Create(FrameRates());
}

void DataHelperVideoResample::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    const Core::Ratio rate = preset[V::TAG_FPS].GetRatio();
    if (rate != Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE) stream[V::TAG_FPS] = rate;
}

SP<IDataHelper> DataHelperVideoResize::Create() {
    return Keeping(new DataHelperVideoResize);
}

Core::Property DataHelperVideoResize::GetDefaults() const {
    Proc::SettingsResizer settings;
    settings.SetCustomMode(Proc::SettingsResizer::CustomModes::Letterbox, {800, 600, 1, 1});
    return Proc::IFilterResize::Settings2Property(settings);
}

void DataHelperVideoResize::GetValidationRules(RuleList& rules) const {
    const SP<IPropertyConstraint> even = ConstraintMethod::CreateEven(IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE);
    AddRule(rules, std::string(), nullptr, WidthPath(), even);
    AddRule(rules, std::string(), nullptr, HeightPath(), even);
}

void DataHelperVideoResize::GetConstraints(ConstraintMap& constraints) const {
    constraints[Path(IResize::CLASS_ID, IResize::FRAME_SIZE_MODE)] = OneOf(frameSizeModes);
    constraints[Path(IResize::CLASS_ID, IResize::MODE)] = OneOf(resizeModes);
    // The bounds are the book's own choice.
    constraints[Path(IResize::CLASS_ID, V::TAG_WIDTH)] = ConstraintRange::Create(32LL, 8192LL, 2LL);
    constraints[Path(IResize::CLASS_ID, V::TAG_HEIGHT)] = ConstraintRange::Create(32LL, 4320LL, 2LL);
    constraints[Path(IResize::CLASS_ID, IResize::METHOD)] = OneOf(resizeMethods);
}

void DataHelperVideoResize::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    const auto read = [&stream](const std::string& tag) { return static_cast<std::int32_t>(stream[tag].GetInt64()); };
    const FrameInfo input = {read(V::TAG_WIDTH), read(V::TAG_HEIGHT), read(V::TAG_ASPECTX), read(V::TAG_ASPECTY)};
    const FrameInfo output = Proc::IFilterResize::Property2Settings(preset).GetOutputFrameSize(input);
    stream[V::TAG_WIDTH] = output.width;
    stream[V::TAG_HEIGHT] = output.height;
    stream[V::TAG_ASPECTX] = output.aspectX;
    stream[V::TAG_ASPECTY] = output.aspectY;
}

}  // namespace Norvex::Conf
