#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"

namespace Norvex::Conf {

const std::string IFormatCodecSubtitle::CODEC_ID_ASS = "ass";
const std::string IFormatCodecSubtitle::CODEC_ID_DVB_SUBTITLE = "dvb_subtitle";
const std::string IFormatCodecSubtitle::CODEC_ID_DVB_TELETEXT = "dvb_teletext";
const std::string IFormatCodecSubtitle::CODEC_ID_DVD_SUBTITLE = "dvd_subtitle";
const std::string IFormatCodecSubtitle::CODEC_ID_HDMV_PGS_SUBTITLE = "hdmv_pgs_subtitle";
const std::string IFormatCodecSubtitle::CODEC_ID_HDMV_TEXT_SUBTITLE = "hdmv_text_subtitle";
const std::string IFormatCodecSubtitle::CODEC_ID_MOV_TEXT = "mov_text";
const std::string IFormatCodecSubtitle::CODEC_ID_SRT = "srt";
const std::string IFormatCodecSubtitle::CODEC_ID_SSA = "ssa";
const std::string IFormatCodecSubtitle::CODEC_ID_SUBRIP = "subrip";
const std::string IFormatCodecSubtitle::CODEC_ID_TEXT = "text";
const std::string IFormatCodecSubtitle::CODEC_ID_XSUB = "xsub";

}  // namespace Norvex::Conf
