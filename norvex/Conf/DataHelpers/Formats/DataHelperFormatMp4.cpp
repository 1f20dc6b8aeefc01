#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// The containers of the MP4 kind (ISO/IEC 14496-14). Only MP4 itself, with its two narrower variants, asks FFmpeg what
// the muxer carries; the others stand by their lists.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

/// The sample rates of MPEG-1 and MPEG-2 Audio Layer III (Hz). Those of MPEG-2.5, 8 to 12 kHz, are left out.
constexpr long long mp3SampleRates_mp4[] = {44100, 48000, 32000, 22050, 24000, 16000};

constexpr long long sampleRateList[] = {11025, 22050, 44100};  // Hz, of F4A: those of FLV

/// The muxer whose name FFmpeg is asked by. It is not always the format's own.
const std::string& MuxerOf(bool ipodMode, bool m4vMode) {
    if (ipodMode) return F::FORMAT_IPOD;
    return m4vMode ? F::FORMAT_M4V : F::FORMAT_MP4;
}

}  // namespace

DataHelperFormatMp4::DataHelperFormatMp4(const std::string& id, bool ipodMode, bool m4vMode)
    : m_formatId(id), m_ipodMode(ipodMode), m_m4vMode(m4vMode) {
    const bool plain = !m_ipodMode && !m_m4vMode;
    std::vector<std::string> video = {V::CODEC_ID_H264, V::CODEC_ID_MPEG4};
    if (plain) video.insert(video.end(), {V::CODEC_ID_H265, V::CODEC_ID_AV1, V::CODEC_ID_VP9, V::CODEC_ID_VC1});
    std::vector<std::string> audio = {A::CODEC_ID_AAC};
    if (!m_m4vMode) audio.push_back(A::CODEC_ID_AC3);
    if (plain) audio.push_back(A::CODEC_ID_MP3);
    const std::vector<std::string> subtitle = {S::CODEC_ID_DVD_SUBTITLE, S::CODEC_ID_MOV_TEXT};

    FormatValidator& validator = FormatValidator::Instance();
    const std::string& muxer = MuxerOf(m_ipodMode, m_m4vMode);
    SetVideoCodecs(validator.GetSupportedVideoCodecs(muxer, video, {}), V::CODEC_ID_H264);
    SetAudioCodecs(validator.GetSupportedAudioCodecs(muxer, audio, {}), A::CODEC_ID_AAC);
    SetSubtitleTextCodecs(validator.GetSupportedSubtitleCodecs(muxer, subtitle, {}), S::CODEC_ID_DVD_SUBTITLE);
}

SP<IDataHelper> DataHelperFormatMp4::Create(const std::string& id, bool ipodMode, bool m4vMode) {
    return Keeping(new DataHelperFormatMp4(id, ipodMode, m4vMode));
}

Core::Property DataHelperFormatMp4::GetDefaults() const {
    return FormatTree(
        m_formatId, {{V::TAG_GLOBAL_HEADER, true}, {F::TAG_PSP_MODE, false}, {F::TAG_PROGRESSIVE_READ, false}},
        {/*video*/ 2, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio, Stream::Subtitle});
}

void DataHelperFormatMp4::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), OneOf({A::CODEC_ID_MP3}), SampleRatePath(), OneOf(mp3SampleRates_mp4));
}

DataHelperFormatM4a::DataHelperFormatM4a(const std::string& id)
    : SoundWithCoverHelper({A::CODEC_ID_AAC, A::CODEC_ID_ALAC}, A::CODEC_ID_AAC), m_formatId(id) {}

SP<IDataHelper> DataHelperFormatM4a::Create(const std::string& id) {
    return Keeping(new DataHelperFormatM4a(id));
}

Core::Property DataHelperFormatM4a::GetDefaults() const {
    return FormatTree(m_formatId, {{V::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 1}, {Stream::Audio, Stream::Cover});
}

DataHelperFormatF4a::DataHelperFormatF4a() {
    SetAudioCodecs({A::CODEC_ID_MP3, A::CODEC_ID_AAC}, A::CODEC_ID_AAC);
}

SP<IDataHelper> DataHelperFormatF4a::Create() {
    return Keeping(new DataHelperFormatF4a);
}

Core::Property DataHelperFormatF4a::GetDefaults() const {
    return FormatTree(F::FORMAT_F4A,
                      {{V::TAG_GLOBAL_HEADER, true}, {F::TAG_PSP_MODE, false}, {F::TAG_PROGRESSIVE_READ, false}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Audio});
}

void DataHelperFormatF4a::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), AudioCodecsConstraint(), SampleRatePath(), OneOf(sampleRateList));
}

DataHelperFormat3gp::DataHelperFormat3gp(const std::string& id) : m_formatId(id) {
    SetVideoCodecs({V::CODEC_ID_H263, V::CODEC_ID_H264, V::CODEC_ID_MPEG4}, V::CODEC_ID_H263);
    SetAudioCodecs({A::CODEC_ID_AAC}, A::CODEC_ID_AAC);
}

SP<IDataHelper> DataHelperFormat3gp::Create(const std::string& id) {
    return Keeping(new DataHelperFormat3gp(id));
}

Core::Property DataHelperFormat3gp::GetDefaults() const {
    return FormatTree(m_formatId, {{V::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video, Stream::Audio});
}

}  // namespace Norvex::Conf
