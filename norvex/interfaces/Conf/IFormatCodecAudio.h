#pragma once

#include <string>

#include "norvex/foundation/Export.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"

namespace Norvex::Conf {

/// The vocabulary of audio codecs, and the description of one audio stream.
class NORVEX_API IFormatCodecAudio : public IFormatCodec {
public:
    // Codec ids.
    static const std::string CODEC_ID_AAC;
    static const std::string CODEC_ID_AC3;
    static const std::string CODEC_ID_ALAC;
    static const std::string CODEC_ID_AMR_NB;
    static const std::string CODEC_ID_DTS;
    static const std::string CODEC_ID_EAC3;
    static const std::string CODEC_ID_FLAC;
    static const std::string CODEC_ID_MP2;
    static const std::string CODEC_ID_MP3;
    static const std::string CODEC_ID_PCM_BLURAY;
    static const std::string CODEC_ID_PCM_S16BE;
    static const std::string CODEC_ID_PCM_S16LE;
    static const std::string CODEC_ID_PCM_S24BE;
    static const std::string CODEC_ID_PCM_S24LE;
    static const std::string CODEC_ID_PCM_S32BE;
    static const std::string CODEC_ID_PCM_S32LE;
    static const std::string CODEC_ID_PCM_S8;
    static const std::string CODEC_ID_PCM_U16BE;
    static const std::string CODEC_ID_PCM_U16LE;
    static const std::string CODEC_ID_PCM_U24BE;
    static const std::string CODEC_ID_PCM_U24LE;
    static const std::string CODEC_ID_PCM_U32BE;
    static const std::string CODEC_ID_PCM_U32LE;
    static const std::string CODEC_ID_PCM_U8;
    static const std::string CODEC_ID_TRUEHD;
    static const std::string CODEC_ID_VORBIS;
    static const std::string CODEC_ID_WMAV2;

    // Parameters. The texts of sample rate, sample format and layout occur in no other tag: correction finds rules by
    // them.
    static const std::string TAG_SAMPLE_RATE;         ///< integer, Hz
    static const std::string TAG_SAMPLE_FORMAT;       ///< string, a name of SampleFmtRecord
    static const std::string TAG_LAYOUT;              ///< string, a name of LayoutRecord
    static const std::string TAG_BITS_PER_SAMPLE;     ///< integer
    static const std::string TAG_FORMAT_CODEC_AUDIO;  ///< name of the flat node of one audio stream

    // Channel layouts by FFmpeg's own names, each a row of LayoutRecord. Unknown leaves the layout as it is.
    static const std::string TAG_CH_LAYOUT_2POINT1;
    static const std::string TAG_CH_LAYOUT_2_1;
    static const std::string TAG_CH_LAYOUT_2_2;
    static const std::string TAG_CH_LAYOUT_3POINT1;
    static const std::string TAG_CH_LAYOUT_4POINT0;
    static const std::string TAG_CH_LAYOUT_4POINT1;
    static const std::string TAG_CH_LAYOUT_5POINT0;
    static const std::string TAG_CH_LAYOUT_5POINT0_BACK;
    static const std::string TAG_CH_LAYOUT_5POINT1;
    static const std::string TAG_CH_LAYOUT_5POINT1_BACK;
    static const std::string TAG_CH_LAYOUT_6POINT0;
    static const std::string TAG_CH_LAYOUT_6POINT0_FRONT;
    static const std::string TAG_CH_LAYOUT_6POINT1;
    static const std::string TAG_CH_LAYOUT_6POINT1_BACK;
    static const std::string TAG_CH_LAYOUT_6POINT1_FRONT;
    static const std::string TAG_CH_LAYOUT_7POINT0;
    static const std::string TAG_CH_LAYOUT_7POINT0_FRONT;
    static const std::string TAG_CH_LAYOUT_7POINT1;
    static const std::string TAG_CH_LAYOUT_7POINT1_WIDE;
    static const std::string TAG_CH_LAYOUT_7POINT1_WIDE_BACK;
    static const std::string TAG_CH_LAYOUT_22POINT2;
    static const std::string TAG_CH_LAYOUT_HEXADECAGONAL;
    static const std::string TAG_CH_LAYOUT_HEXAGONAL;
    static const std::string TAG_CH_LAYOUT_MONO;
    static const std::string TAG_CH_LAYOUT_OCTAGONAL;
    static const std::string TAG_CH_LAYOUT_QUAD;
    static const std::string TAG_CH_LAYOUT_STEREO;
    static const std::string TAG_CH_LAYOUT_STEREO_DOWNMIX;
    static const std::string TAG_CH_LAYOUT_SURROUND;
    static const std::string TAG_CH_LAYOUT_UNKNOWN;
    // Layouts with channels above. Two majors of FFmpeg mean different ones by "5.1.2" and by "5.1.4": the names of
    // these four are those of the FFmpeg that is running.
    static const std::string TAG_CH_LAYOUT_3POINT1POINT2;
    static const std::string TAG_CH_LAYOUT_5POINT1POINT2;
    static const std::string TAG_CH_LAYOUT_5POINT1POINT2_BACK;
    static const std::string TAG_CH_LAYOUT_5POINT1POINT4;
    static const std::string TAG_CH_LAYOUT_5POINT1POINT4_BACK;
    static const std::string TAG_CH_LAYOUT_7POINT1POINT2;
    static const std::string TAG_CH_LAYOUT_7POINT1POINT4;
    static const std::string TAG_CH_LAYOUT_7POINT2POINT3;
    static const std::string TAG_CH_LAYOUT_9POINT1POINT4;
    static const std::string TAG_CH_LAYOUT_9POINT1POINT6;
    static const std::string TAG_CH_LAYOUT_BINAURAL;
    static const std::string TAG_CH_LAYOUT_CUBE;

    // AAC profiles (ISO/IEC 14496-3 object types) by FFmpeg's names.
    static const std::string TAG_AAC_PROFILE_ELD;
    static const std::string TAG_AAC_PROFILE_HE;
    static const std::string TAG_AAC_PROFILE_HE_V2;
    static const std::string TAG_AAC_PROFILE_LD;
    static const std::string TAG_AAC_PROFILE_LOW;
    static const std::string TAG_AAC_PROFILE_LTP;
    static const std::string TAG_AAC_PROFILE_SSR;

    virtual ChannelLayout GetChannelLayout() const = 0;
};

}  // namespace Norvex::Conf
