#include "norvex/interfaces/Conf/IFormatFile.h"

namespace Norvex::Conf {

const std::string IFormatFile::FORMAT_3G2 = "3g2";
const std::string IFormatFile::FORMAT_3GP = "3gp";
const std::string IFormatFile::FORMAT_AAC = "adts";
const std::string IFormatFile::FORMAT_AC3 = "ac3";
const std::string IFormatFile::FORMAT_AIFF = "aiff";
const std::string IFormatFile::FORMAT_APNG = "apng";
const std::string IFormatFile::FORMAT_ASF = "asf";
const std::string IFormatFile::FORMAT_ASS = "ass";
const std::string IFormatFile::FORMAT_AU = "au";
const std::string IFormatFile::FORMAT_AVI = "avi";
const std::string IFormatFile::FORMAT_AVIF = "avif";
const std::string IFormatFile::FORMAT_BMP = "bmp";
const std::string IFormatFile::FORMAT_DPX = "dpx";
const std::string IFormatFile::FORMAT_DVD = "dvd";
const std::string IFormatFile::FORMAT_F4A = "f4a";
const std::string IFormatFile::FORMAT_FLAC = "flac";
const std::string IFormatFile::FORMAT_FLV = "flv";
const std::string IFormatFile::FORMAT_GIF = "gif";
const std::string IFormatFile::FORMAT_HEIC = "heic";
const std::string IFormatFile::FORMAT_HEIF = "heif";
const std::string IFormatFile::FORMAT_IPOD = "ipod";
const std::string IFormatFile::FORMAT_JPEG = "jpeg";
const std::string IFormatFile::FORMAT_JPEG2000 = "jpeg2000";
const std::string IFormatFile::FORMAT_JPEGLS = "jpegls";
const std::string IFormatFile::FORMAT_M4A = "m4a";
const std::string IFormatFile::FORMAT_M4B = "m4b";
const std::string IFormatFile::FORMAT_M4R = "m4r";
const std::string IFormatFile::FORMAT_M4V = "m4v";
const std::string IFormatFile::FORMAT_MATROSKA = "matroska";
const std::string IFormatFile::FORMAT_MKA = "mka";
const std::string IFormatFile::FORMAT_QFX_1_0 = "qfx";
const std::string IFormatFile::FORMAT_MOV = "mov";
const std::string IFormatFile::FORMAT_MP3 = "mp3";
const std::string IFormatFile::FORMAT_MP4 = "mp4";
const std::string IFormatFile::FORMAT_MPEG = "mpeg";
const std::string IFormatFile::FORMAT_MPEG1VIDEO = "mpeg1video";
const std::string IFormatFile::FORMAT_MPEG2TS = "mpeg2ts";
const std::string IFormatFile::FORMAT_MPEG2VIDEO = "mpeg2video";
const std::string IFormatFile::FORMAT_MPEGTS = "mpegts";
const std::string IFormatFile::FORMAT_MXF = "mxf";
const std::string IFormatFile::FORMAT_OGG = "ogg";
const std::string IFormatFile::FORMAT_OGV = "ogv";
const std::string IFormatFile::FORMAT_PAM = "pam";
const std::string IFormatFile::FORMAT_PBM = "pbm";
const std::string IFormatFile::FORMAT_PCX = "pcx";
const std::string IFormatFile::FORMAT_PGM = "pgm";
const std::string IFormatFile::FORMAT_PGMYUV = "pgmyuv";
const std::string IFormatFile::FORMAT_PNG = "png";
const std::string IFormatFile::FORMAT_PPM = "ppm";
const std::string IFormatFile::FORMAT_SGI = "sgi";
const std::string IFormatFile::FORMAT_SRT = "srt";
const std::string IFormatFile::FORMAT_SSA = "ssa";
const std::string IFormatFile::FORMAT_SVCD = "svcd";
const std::string IFormatFile::FORMAT_SWF = "swf";
const std::string IFormatFile::FORMAT_TARGA = "targa";
const std::string IFormatFile::FORMAT_TIFF = "tiff";
const std::string IFormatFile::FORMAT_VCD = "vcd";
const std::string IFormatFile::FORMAT_VOB = "vob";
const std::string IFormatFile::FORMAT_WAV = "wav";
const std::string IFormatFile::FORMAT_WEBM = "webm";
const std::string IFormatFile::FORMAT_WMA = "wma";
const std::string IFormatFile::FORMAT_WMV = "wmv";
const std::string IFormatFile::FORMAT_XBM = "xbm";
const std::string IFormatFile::FORMAT_XWD = "xwd";

const std::string IFormatFile::TAG_CONTAINER = "container";
const std::string IFormatFile::TAG_DISABLE_FOR_LOSSLESS = "disable_for_lossless";
const std::string IFormatFile::TAG_DISK_SIZE = "disk_size";
const std::string IFormatFile::TAG_DVD_STANDARD = "dvd_standard";
const std::string IFormatFile::TAG_PROGRESSIVE_READ = "progressive_read";
const std::string IFormatFile::TAG_PSP_MODE = "psp_mode";

const std::string IFormatFile::TAG_LIMITS = "limits";
const std::string IFormatFile::TAG_LIMITS_VIDEO = "video";
const std::string IFormatFile::TAG_LIMITS_AUDIO = "audio";
const std::string IFormatFile::TAG_LIMITS_SUBTITLE = "subtitle";
const std::string IFormatFile::TAG_LIMITS_OTHER = "other";

const std::string IFormatFile::DVD_STANDARD_PAL = "pal";
const std::string IFormatFile::DVD_STANDARD_NTSC = "ntsc";

const std::string IFormatFile::DISK_TYPE_DVD_STANDARD = "standard";
const std::string IFormatFile::DISK_TYPE_DVD_MINI = "mini";
const std::string IFormatFile::DISK_TYPE_DVD_DOUBLE_LAYER = "double layer";

}  // namespace Norvex::Conf
