#include "norvex/interfaces/Conf/IPreset.h"

namespace Norvex::Conf {

const std::string IPreset::KEY_FORMAT = "format";
const std::string IPreset::KEY_FILTER_VIDEO_CODEC = "video_codec";
const std::string IPreset::KEY_FILTER_AUDIO_CODEC = "audio_codec";
const std::string IPreset::KEY_FILTER_SUBTITLE_CODEC = "subtitle_codec";

const std::string IPreset::KEY_STREAMS = "streams";
const std::string IPreset::KEY_TYPE_ID = "type";
const std::string IPreset::INDEX = "_any_";

const std::string IPreset::STREAM_TYPE_VIDEO = "video";
const std::string IPreset::STREAM_TYPE_AUDIO = "audio";
const std::string IPreset::STREAM_TYPE_SUBTITLES_TEXT = "subtitles_text";

}  // namespace Norvex::Conf
