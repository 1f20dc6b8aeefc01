#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

// No class id holds the text of an audio tag: correction finds rules by looking for those in paths.

namespace Norvex::Proc {

NORVEX_CONSTANT(const std::string, ImplNames::DEFAULT) = "default";
NORVEX_CONSTANT(const std::string, ImplNames::FFMPEG) = "ffmpeg";

NORVEX_CONSTANT(const std::string, IFilterResample::CLASS_ID) = "filter_resample";
NORVEX_CONSTANT(const std::string, IResample::CLASS_ID) = "resample";
NORVEX_CONSTANT(const std::string, SettingsFilterResample::CLASS_ID) = "resample";

NORVEX_CONSTANT(const std::string, IFilterAudioVolume::CLASS_ID) = "filter_volume";
NORVEX_CONSTANT(const std::string, IFilterAudioVolume::VOLUME_VALUE) = "volume";

NORVEX_CONSTANT(const std::string, IFilterAudioFormatter::CLASS_ID) = "filter_formatter";
NORVEX_CONSTANT(const std::string, IFilterAudioFormatter::PACKET_DURATION) = "packet_duration";
NORVEX_CONSTANT(const std::string, IAudioFormatter::CLASS_ID) = "formatter";

NORVEX_CONSTANT(const std::string, IFilterFrameRate::CLASS_ID) = "filter_rate";
const Core::Ratio SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE;

NORVEX_CONSTANT(const std::string, IFilterResize::CLASS_ID) = "filter_resize";
NORVEX_CONSTANT(const std::string, IResize::CLASS_ID) = "resize";

NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_MODE) = "frame_size_mode";
NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_CUSTOM) = "custom";
NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_CUSTOM_SCALE) = "custom_scale";
NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_ORIGINAL) = "original";
NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_HALF_ORIGINAL) = "half_original";
NORVEX_CONSTANT(const std::string, IResize::FRAME_SIZE_QUARTER_ORIGINAL) = "quarter_original";

NORVEX_CONSTANT(const std::string, IResize::MODE) = "mode";
NORVEX_CONSTANT(const std::string, IResize::MODE_SMART_FIT) = "smart_fit";
NORVEX_CONSTANT(const std::string, IResize::MODE_UP_TO) = "up_to";
NORVEX_CONSTANT(const std::string, IResize::MODE_LETTERBOX) = "letterbox";
NORVEX_CONSTANT(const std::string, IResize::MODE_STRETCH) = "stretch";
NORVEX_CONSTANT(const std::string, IResize::MODE_AUTO) = "auto";
NORVEX_CONSTANT(const std::string, IResize::MODE_CROP) = "crop";

NORVEX_CONSTANT(const std::string, IResize::METHOD) = "method";
NORVEX_CONSTANT(const std::string, IResize::METHOD_POINT) = "point";
NORVEX_CONSTANT(const std::string, IResize::METHOD_FAST_BILINEAR) = "fast_bilinear";
NORVEX_CONSTANT(const std::string, IResize::METHOD_BILINEAR) = "bilinear";
NORVEX_CONSTANT(const std::string, IResize::METHOD_BICUBIC) = "bicubic";

NORVEX_CONSTANT(const std::string, IResize::SCALE) = "scale";
NORVEX_CONSTANT(const std::string, IResize::BACKGROUND_COLOR) = "background_color";

}  // namespace Norvex::Proc
