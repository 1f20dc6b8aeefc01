#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_ASS) = "ass";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_DVB_SUBTITLE) = "dvb_subtitle";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_DVB_TELETEXT) = "dvb_teletext";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_DVD_SUBTITLE) = "dvd_subtitle";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_HDMV_PGS_SUBTITLE) = "hdmv_pgs_subtitle";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_HDMV_TEXT_SUBTITLE) = "hdmv_text_subtitle";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_MOV_TEXT) = "mov_text";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_SRT) = "srt";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_SSA) = "ssa";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_SUBRIP) = "subrip";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_TEXT) = "text";
NORVEX_CONSTANT(const std::string, IFormatCodecSubtitle::CODEC_ID_XSUB) = "xsub";

}  // namespace Norvex::Conf
