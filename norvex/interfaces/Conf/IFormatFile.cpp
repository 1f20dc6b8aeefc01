#include "norvex/interfaces/Conf/IFormatFile.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_3G2) = "3g2";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_3GP) = "3gp";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AAC) = "adts";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AC3) = "ac3";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AIFF) = "aiff";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_APNG) = "apng";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_ASF) = "asf";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_ASS) = "ass";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AU) = "au";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AVI) = "avi";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_AVIF) = "avif";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_BMP) = "bmp";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_DPX) = "dpx";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_DVD) = "dvd";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_F4A) = "f4a";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_FLAC) = "flac";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_FLV) = "flv";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_GIF) = "gif";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_HEIC) = "heic";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_HEIF) = "heif";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_IPOD) = "ipod";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_JPEG) = "jpeg";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_JPEG2000) = "jpeg2000";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_JPEGLS) = "jpegls";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_M4A) = "m4a";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_M4B) = "m4b";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_M4R) = "m4r";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_M4V) = "m4v";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MATROSKA) = "matroska";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MKA) = "mka";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_QFX_1_0) = "qfx";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MOV) = "mov";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MP3) = "mp3";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MP4) = "mp4";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MPEG) = "mpeg";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MPEG1VIDEO) = "mpeg1video";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MPEG2TS) = "mpeg2ts";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MPEG2VIDEO) = "mpeg2video";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MPEGTS) = "mpegts";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_MXF) = "mxf";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_OGG) = "ogg";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_OGV) = "ogv";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PAM) = "pam";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PBM) = "pbm";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PCX) = "pcx";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PGM) = "pgm";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PGMYUV) = "pgmyuv";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PNG) = "png";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_PPM) = "ppm";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_SGI) = "sgi";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_SRT) = "srt";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_SSA) = "ssa";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_SVCD) = "svcd";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_SWF) = "swf";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_TARGA) = "targa";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_TIFF) = "tiff";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_VCD) = "vcd";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_VOB) = "vob";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_WAV) = "wav";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_WEBM) = "webm";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_WMA) = "wma";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_WMV) = "wmv";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_XBM) = "xbm";
NORVEX_CONSTANT(const std::string, IFormatFile::FORMAT_XWD) = "xwd";

NORVEX_CONSTANT(const std::string, IFormatFile::TAG_CONTAINER) = "container";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_DISABLE_FOR_LOSSLESS) = "disable_for_lossless";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_DISK_SIZE) = "disk_size";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_DVD_STANDARD) = "dvd_standard";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_PROGRESSIVE_READ) = "progressive_read";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_PSP_MODE) = "psp_mode";

NORVEX_CONSTANT(const std::string, IFormatFile::TAG_LIMITS) = "limits";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_LIMITS_VIDEO) = "video";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_LIMITS_AUDIO) = "audio";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_LIMITS_SUBTITLE) = "subtitle";
NORVEX_CONSTANT(const std::string, IFormatFile::TAG_LIMITS_OTHER) = "other";

NORVEX_CONSTANT(const std::string, IFormatFile::DVD_STANDARD_PAL) = "pal";
NORVEX_CONSTANT(const std::string, IFormatFile::DVD_STANDARD_NTSC) = "ntsc";

NORVEX_CONSTANT(const std::string, IFormatFile::DISK_TYPE_DVD_STANDARD) = "standard";
NORVEX_CONSTANT(const std::string, IFormatFile::DISK_TYPE_DVD_MINI) = "mini";
NORVEX_CONSTANT(const std::string, IFormatFile::DISK_TYPE_DVD_DOUBLE_LAYER) = "double layer";

}  // namespace Norvex::Conf
