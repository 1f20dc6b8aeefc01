#pragma once

#include <string>

#include "norvex/foundation/Export.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"

namespace Norvex::Conf {

/// The vocabulary of subtitle codecs.
class NORVEX_API IFormatCodecSubtitle : public IFormatCodec {
public:
    // Codec ids.
    static const std::string CODEC_ID_ASS;
    static const std::string CODEC_ID_DVB_SUBTITLE;
    static const std::string CODEC_ID_DVB_TELETEXT;
    static const std::string CODEC_ID_DVD_SUBTITLE;
    static const std::string CODEC_ID_HDMV_PGS_SUBTITLE;
    static const std::string CODEC_ID_HDMV_TEXT_SUBTITLE;
    static const std::string CODEC_ID_MOV_TEXT;
    static const std::string CODEC_ID_SRT;
    static const std::string CODEC_ID_SSA;
    static const std::string CODEC_ID_SUBRIP;
    static const std::string CODEC_ID_TEXT;
    static const std::string CODEC_ID_XSUB;
};

}  // namespace Norvex::Conf
