#include "norvex/interfaces/Conf/IFormatCodec.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, IFormatCodec::CODEC_ID_AUTO) = "auto";

NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_CODEC_ID) = "codec_id";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_BITRATE) = "bitrate";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_BITRATE_MODE) = "bitrate_mode";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_QUALITY) = "quality";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_CODEC_OPTIONS_ENCODE) = "encode_options";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_PROFILE) = "profile";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_PRESET) = "preset";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_FORMAT) = "codec_format";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_GLOBAL_HEADER) = "global_header";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_THREAD_NUMBER) = "thread_number";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_FOURCC) = "fourcc";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_LOSSLESS) = "lossless";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_MAIN_STREAM) = "main_stream";

NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_BITRATE_MODE_CBR) = "cbr";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_BITRATE_MODE_VBR) = "vbr";
NORVEX_CONSTANT(const std::string, IFormatCodec::TAG_BITRATE_MODE_CBR_AUTO) = "cbr_auto";

}  // namespace Norvex::Conf
