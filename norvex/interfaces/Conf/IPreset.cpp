#include "norvex/interfaces/Conf/IPreset.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, IPreset::KEY_FORMAT) = "format";
NORVEX_CONSTANT(const std::string, IPreset::KEY_FILTER_VIDEO_CODEC) = "video_codec";
NORVEX_CONSTANT(const std::string, IPreset::KEY_FILTER_AUDIO_CODEC) = "audio_codec";
NORVEX_CONSTANT(const std::string, IPreset::KEY_FILTER_SUBTITLE_CODEC) = "subtitle_codec";

NORVEX_CONSTANT(const std::string, IPreset::KEY_STREAMS) = "streams";
NORVEX_CONSTANT(const std::string, IPreset::KEY_TYPE_ID) = "type";
NORVEX_CONSTANT(const std::string, IPreset::INDEX) = "_any_";

NORVEX_CONSTANT(const std::string, IPreset::STREAM_TYPE_VIDEO) = "video";
NORVEX_CONSTANT(const std::string, IPreset::STREAM_TYPE_AUDIO) = "audio";
NORVEX_CONSTANT(const std::string, IPreset::STREAM_TYPE_SUBTITLES_TEXT) = "subtitles_text";

}  // namespace Norvex::Conf
