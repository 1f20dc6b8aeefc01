#include "norvex/interfaces/Conf/IFormatCodec.h"

namespace Norvex::Conf {

const std::string IFormatCodec::CODEC_ID_AUTO = "auto";

const std::string IFormatCodec::TAG_CODEC_ID = "codec_id";
const std::string IFormatCodec::TAG_BITRATE = "bitrate";
const std::string IFormatCodec::TAG_BITRATE_MODE = "bitrate_mode";
const std::string IFormatCodec::TAG_QUALITY = "quality";
const std::string IFormatCodec::TAG_CODEC_OPTIONS_ENCODE = "encode_options";
const std::string IFormatCodec::TAG_PROFILE = "profile";
const std::string IFormatCodec::TAG_PRESET = "preset";
const std::string IFormatCodec::TAG_FORMAT = "codec_format";
const std::string IFormatCodec::TAG_GLOBAL_HEADER = "global_header";
const std::string IFormatCodec::TAG_THREAD_NUMBER = "thread_number";
const std::string IFormatCodec::TAG_FOURCC = "fourcc";
const std::string IFormatCodec::TAG_LOSSLESS = "lossless";
const std::string IFormatCodec::TAG_MAIN_STREAM = "main_stream";

const std::string IFormatCodec::TAG_BITRATE_MODE_CBR = "cbr";
const std::string IFormatCodec::TAG_BITRATE_MODE_VBR = "vbr";
const std::string IFormatCodec::TAG_BITRATE_MODE_CBR_AUTO = "cbr_auto";

}  // namespace Norvex::Conf
