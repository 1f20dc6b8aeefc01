#pragma once

#include <string>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"
#include "norvex/foundation/RefCount.h"
#include "norvex/interfaces/Conf/MediaType.h"

namespace Norvex::Conf {

/// The data that a codec keeps outside its packets, such as parameter sets (FFmpeg's extradata).
class NORVEX_API ICodecData : public IRefCountable {
public:
    /// Bytes.
    virtual long long GetDataSize() const = 0;
};

/// The vocabulary that all codecs share, and the description of one stream. A host may derive from
/// IFormatCodecAudio and IFormatCodecVideo; FormatCodecAudio and FormatCodecVideo are plain implementations.
class NORVEX_API IFormatCodec : public IRefCountable {
public:
    // The codec id by which the system picks the codec.
    static const std::string CODEC_ID_AUTO;

    // What all codecs share.
    static const std::string TAG_CODEC_ID;              ///< string, FFmpeg's name of the codec
    static const std::string TAG_BITRATE;               ///< integer, bits per second
    static const std::string TAG_BITRATE_MODE;          ///< string, one of the three below
    static const std::string TAG_QUALITY;               ///< integer, a quantiser from 1, the best, to MAX_QUALITY
    static const std::string TAG_CODEC_OPTIONS_ENCODE;  ///< node, encoder options
    static const std::string TAG_PROFILE;               ///< string, under TAG_CODEC_OPTIONS_ENCODE
    static const std::string TAG_PRESET;                ///< string, under TAG_CODEC_OPTIONS_ENCODE
    static const std::string TAG_FORMAT;                ///< string, sub-format of a codec
    static const std::string TAG_GLOBAL_HEADER;         ///< bool, headers are stored once and not with the frames
    static const std::string TAG_THREAD_NUMBER;         ///< integer, encoder threads
    static const std::string TAG_FOURCC;                ///< integer, the tag that a stream has, 0 for none
    static const std::string TAG_LOSSLESS;              ///< bool, the stream is carried over unchanged
    static const std::string TAG_MAIN_STREAM;           ///< bool

    // Values of TAG_BITRATE_MODE: constant, variable, and constant at a bitrate that the system chooses.
    static const std::string TAG_BITRATE_MODE_CBR;
    static const std::string TAG_BITRATE_MODE_VBR;
    static const std::string TAG_BITRATE_MODE_CBR_AUTO;

    /// The end of the quality scale, x264's coarsest quantiser for 8 bits. A quality is a quantiser, as in FFmpeg:
    /// 1 is the best.
    static constexpr long long MAX_QUALITY = 51;

    /// The stream's settings as direct children.
    virtual const Core::Property& GetProperty() const = 0;
    virtual MediaType GetMediaType() const = 0;
    /// What the codec keeps outside its packets, or null.
    virtual SP<const ICodecData> GetCodecData() const = 0;
};

}  // namespace Norvex::Conf
