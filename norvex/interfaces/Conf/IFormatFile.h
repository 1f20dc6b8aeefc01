#pragma once

#include <string>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"
#include "norvex/foundation/RefCount.h"

namespace Norvex::Conf {

/// The vocabulary of containers, and the description of one. A host may derive from it; FormatFile is a plain
/// implementation.
class NORVEX_API IFormatFile : public IRefCountable {
public:
    // Container ids: the short name of FFmpeg's muxer where there is one of that name, else a plain word.
    static const std::string FORMAT_3G2;
    static const std::string FORMAT_3GP;
    static const std::string FORMAT_AAC;
    static const std::string FORMAT_AC3;
    static const std::string FORMAT_AIFF;
    static const std::string FORMAT_APNG;
    static const std::string FORMAT_ASF;
    static const std::string FORMAT_ASS;
    static const std::string FORMAT_AU;
    static const std::string FORMAT_AVI;
    static const std::string FORMAT_AVIF;
    static const std::string FORMAT_BMP;
    static const std::string FORMAT_DPX;
    static const std::string FORMAT_DVD;
    static const std::string FORMAT_F4A;
    static const std::string FORMAT_FLAC;
    static const std::string FORMAT_FLV;
    static const std::string FORMAT_GIF;
    static const std::string FORMAT_HEIC;
    static const std::string FORMAT_HEIF;
    static const std::string FORMAT_IPOD;
    static const std::string FORMAT_JPEG;
    static const std::string FORMAT_JPEG2000;
    static const std::string FORMAT_JPEGLS;
    static const std::string FORMAT_M4A;
    static const std::string FORMAT_M4B;
    static const std::string FORMAT_M4R;
    static const std::string FORMAT_M4V;
    static const std::string FORMAT_MATROSKA;
    static const std::string FORMAT_MKA;
    static const std::string FORMAT_QFX_1_0;
    static const std::string FORMAT_MOV;
    static const std::string FORMAT_MP3;
    static const std::string FORMAT_MP4;
    static const std::string FORMAT_MPEG;
    static const std::string FORMAT_MPEG1VIDEO;
    static const std::string FORMAT_MPEG2TS;
    static const std::string FORMAT_MPEG2VIDEO;
    static const std::string FORMAT_MPEGTS;
    static const std::string FORMAT_MXF;
    static const std::string FORMAT_OGG;
    static const std::string FORMAT_OGV;
    static const std::string FORMAT_PAM;
    static const std::string FORMAT_PBM;
    static const std::string FORMAT_PCX;
    static const std::string FORMAT_PGM;
    static const std::string FORMAT_PGMYUV;
    static const std::string FORMAT_PNG;
    static const std::string FORMAT_PPM;
    static const std::string FORMAT_SGI;
    static const std::string FORMAT_SRT;
    static const std::string FORMAT_SSA;
    static const std::string FORMAT_SVCD;
    static const std::string FORMAT_SWF;
    static const std::string FORMAT_TARGA;
    static const std::string FORMAT_TIFF;
    static const std::string FORMAT_VCD;
    static const std::string FORMAT_VOB;
    static const std::string FORMAT_WAV;
    static const std::string FORMAT_WEBM;
    static const std::string FORMAT_WMA;
    static const std::string FORMAT_WMV;
    static const std::string FORMAT_XBM;
    static const std::string FORMAT_XWD;

    // Parameters of a container.
    static const std::string TAG_CONTAINER;  ///< string, a container id
    static const std::string TAG_DISABLE_FOR_LOSSLESS;
    static const std::string TAG_DISK_SIZE;         ///< integer, bytes
    static const std::string TAG_DVD_STANDARD;      ///< string
    static const std::string TAG_PROGRESSIVE_READ;  ///< bool, index in front of the media
    static const std::string TAG_PSP_MODE;          ///< bool

    // How many streams of each kind the container may hold; TAG_LIMITS is a node with the others as integers.
    static const std::string TAG_LIMITS;
    static const std::string TAG_LIMITS_VIDEO;
    static const std::string TAG_LIMITS_AUDIO;
    static const std::string TAG_LIMITS_SUBTITLE;
    static const std::string TAG_LIMITS_OTHER;

    // Values of TAG_DVD_STANDARD.
    static const std::string DVD_STANDARD_PAL;
    static const std::string DVD_STANDARD_NTSC;

    // Display names of the values of TAG_DISK_SIZE.
    static const std::string DISK_TYPE_DVD_STANDARD;
    static const std::string DISK_TYPE_DVD_MINI;
    static const std::string DISK_TYPE_DVD_DOUBLE_LAYER;

    // Values of TAG_DISK_SIZE: the usable bytes of DVD-5, of the 8 cm disc and of DVD-9.
    static constexpr long long DISK_SIZE_DVD_STANDARD = 4700372992;
    static constexpr long long DISK_SIZE_DVD_MINI = 1459978240;
    static constexpr long long DISK_SIZE_DVD_DOUBLE_LAYER = 8543666176;

    /// The container's settings, with TAG_CONTAINER as a direct child.
    virtual const Core::Property& GetProperty() const = 0;
};

}  // namespace Norvex::Conf
