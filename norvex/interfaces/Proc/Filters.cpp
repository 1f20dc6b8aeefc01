#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

// No class id holds the text of an audio tag: correction finds rules by looking for those in paths.

namespace Norvex::Proc {

const std::string ImplNames::DEFAULT = "default";
const std::string ImplNames::FFMPEG = "ffmpeg";

const std::string IFilterResample::CLASS_ID = "filter_resample";
const std::string IResample::CLASS_ID = "resample";
const std::string SettingsFilterResample::CLASS_ID = "resample";

const std::string IFilterAudioVolume::CLASS_ID = "filter_volume";
const std::string IFilterAudioVolume::VOLUME_VALUE = "volume";

const std::string IFilterAudioFormatter::CLASS_ID = "filter_formatter";
const std::string IFilterAudioFormatter::PACKET_DURATION = "packet_duration";
const std::string IAudioFormatter::CLASS_ID = "formatter";

const std::string IFilterFrameRate::CLASS_ID = "filter_rate";
const Core::Ratio SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE;

const std::string IFilterResize::CLASS_ID = "filter_resize";
const std::string IResize::CLASS_ID = "resize";

const std::string IResize::FRAME_SIZE_MODE = "frame_size_mode";
const std::string IResize::FRAME_SIZE_CUSTOM = "custom";
const std::string IResize::FRAME_SIZE_CUSTOM_SCALE = "custom_scale";
const std::string IResize::FRAME_SIZE_ORIGINAL = "original";
const std::string IResize::FRAME_SIZE_HALF_ORIGINAL = "half_original";
const std::string IResize::FRAME_SIZE_QUARTER_ORIGINAL = "quarter_original";

const std::string IResize::MODE = "mode";
const std::string IResize::MODE_SMART_FIT = "smart_fit";
const std::string IResize::MODE_UP_TO = "up_to";
const std::string IResize::MODE_LETTERBOX = "letterbox";
const std::string IResize::MODE_STRETCH = "stretch";
const std::string IResize::MODE_AUTO = "auto";
const std::string IResize::MODE_CROP = "crop";

const std::string IResize::METHOD = "method";
const std::string IResize::METHOD_POINT = "point";
const std::string IResize::METHOD_FAST_BILINEAR = "fast_bilinear";
const std::string IResize::METHOD_BILINEAR = "bilinear";
const std::string IResize::METHOD_BICUBIC = "bicubic";

const std::string IResize::SCALE = "scale";
const std::string IResize::BACKGROUND_COLOR = "background_color";

}  // namespace Norvex::Proc
