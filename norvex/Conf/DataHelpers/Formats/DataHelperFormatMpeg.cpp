#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"

// MPEG program and transport streams (ISO/IEC 13818-1, ISO/IEC 11172-1), and MXF (SMPTE 377). None of them asks FFmpeg:
// what players of these formats take is less than what can be written.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

/// Frames per second: the frame_rate_code table of ISO/IEC 13818-2 (6.3.3).
PairList<Core::Ratio> ProgramStreamRates() {
    return {
        {"23.97", {24000, 1001}}, {"24", {24, 1}}, {"25", {25, 1}},          {"29.97", {30000, 1001}},
        {"30", {30, 1}},          {"50", {50, 1}}, {"59.94", {60000, 1001}}, {"60", {60, 1}},
    };
}

}  // namespace

DataHelperFormatVOB::DataHelperFormatVOB(const std::string& id) : m_formatId(id) {
    SetVideoCodecs({V::CODEC_ID_MPEG1VIDEO, V::CODEC_ID_MPEG2VIDEO}, V::CODEC_ID_MPEG2VIDEO);
    SetAudioCodecs({A::CODEC_ID_MP2, A::CODEC_ID_AC3}, A::CODEC_ID_MP2);
}

SP<IDataHelper> DataHelperFormatVOB::Create(const std::string& id) {
    return Keeping(new DataHelperFormatVOB(id));
}

Core::Property DataHelperFormatVOB::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

void DataHelperFormatVOB::GetValidationRules(RuleList& rules) const {
    PairList<Core::Ratio> rates = ProgramStreamRates();
    // The book's own: the standard has no code for it.
    rates.insert(rates.begin(), {"20", {20, 1}});
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_MPEG2VIDEO, V::CODEC_ID_MPEG1VIDEO}), FrameRatePath(),
            ConstraintSet::Create(rates));
}

DataHelperFormatMpeg1::DataHelperFormatMpeg1(const std::string& id) : m_formatId(id) {
    SetVideoCodecs({V::CODEC_ID_MPEG1VIDEO}, V::CODEC_ID_MPEG1VIDEO);
    SetAudioCodecs({A::CODEC_ID_MP2, A::CODEC_ID_MP3}, A::CODEC_ID_MP2);
}

SP<IDataHelper> DataHelperFormatMpeg1::Create(const std::string& id) {
    return Keeping(new DataHelperFormatMpeg1(id));
}

Core::Property DataHelperFormatMpeg1::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

void DataHelperFormatMpeg1::GetValidationRules(RuleList& rules) const {
    // That the codec is listed twice is meant: a list is offered as it is written.
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_MPEG1VIDEO, V::CODEC_ID_MPEG1VIDEO}), FrameRatePath(),
            ConstraintSet::Create(ProgramStreamRates()));
}

DataHelperFormatMpegTS::DataHelperFormatMpegTS() {
    SetVideoCodecs({V::CODEC_ID_MPEG2VIDEO, V::CODEC_ID_H264, V::CODEC_ID_H265}, V::CODEC_ID_MPEG2VIDEO);
    SetAudioCodecs({A::CODEC_ID_MP2, A::CODEC_ID_MP3, A::CODEC_ID_AAC, A::CODEC_ID_AC3}, A::CODEC_ID_MP2);
    SetSubtitleTextCodecs({S::CODEC_ID_DVB_SUBTITLE, S::CODEC_ID_DVB_TELETEXT}, S::CODEC_ID_DVB_SUBTITLE);
}

SP<IDataHelper> DataHelperFormatMpegTS::Create() {
    return Keeping(new DataHelperFormatMpegTS);
}

Core::Property DataHelperFormatMpegTS::GetDefaults() const {
    return FormatTree(F::FORMAT_MPEGTS, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

DataHelperFormatMpeg2TS::DataHelperFormatMpeg2TS() {
    SetVideoCodecs({V::CODEC_ID_MPEG2VIDEO, V::CODEC_ID_H264, V::CODEC_ID_H265}, V::CODEC_ID_H264);
    SetAudioCodecs({A::CODEC_ID_PCM_BLURAY, A::CODEC_ID_AC3, A::CODEC_ID_TRUEHD, A::CODEC_ID_EAC3},
                   A::CODEC_ID_PCM_BLURAY);
    SetSubtitleTextCodecs({S::CODEC_ID_HDMV_PGS_SUBTITLE, S::CODEC_ID_HDMV_TEXT_SUBTITLE},
                          S::CODEC_ID_HDMV_PGS_SUBTITLE);
}

SP<IDataHelper> DataHelperFormatMpeg2TS::Create() {
    return Keeping(new DataHelperFormatMpeg2TS);
}

Core::Property DataHelperFormatMpeg2TS::GetDefaults() const {
    return FormatTree(F::FORMAT_MPEG2TS, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

DataHelperFormatMxf::DataHelperFormatMxf() {
    SetVideoCodecs({V::CODEC_ID_H264, V::CODEC_ID_MPEG2VIDEO}, V::CODEC_ID_MPEG2VIDEO);
    SetAudioCodecs({A::CODEC_ID_PCM_S16LE}, A::CODEC_ID_PCM_S16LE);
}

SP<IDataHelper> DataHelperFormatMxf::Create() {
    return Keeping(new DataHelperFormatMxf);
}

Core::Property DataHelperFormatMxf::GetDefaults() const {
    return FormatTree(
        F::FORMAT_MXF,
        {{IFormatCodec::TAG_GLOBAL_HEADER, false}, {F::TAG_PSP_MODE, false}, {F::TAG_PROGRESSIVE_READ, true}},
        {/*video*/ 1, /*audio*/ 8, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

void DataHelperFormatMxf::GetValidationRules(RuleList& rules) const {
    // FFmpeg's muxer (mxfenc.c) has this sample rate alone.
    AddRule(rules, AudioCodecIdPath(), AudioCodecsConstraint(), SampleRatePath(), OneOf({48000LL}));
    AddRule(rules, VideoCodecIdPath(), VideoCodecsConstraint(), FrameRatePath(),
            ConstraintSet::Create(ProgramStreamRates()));
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_H264}), FormatProfilePath(),
            OneOf({V::TAG_X264_PROFILE_BASELINE}));
}

}  // namespace Norvex::Conf
