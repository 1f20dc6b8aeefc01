#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// The containers of the Flash kind (Adobe Flash Video File Format 10.1; SWF 19). Both bind the sample rate
// of whatever audio codec they carry, those that FFmpeg adds included. Their rates are lists of their own, since they
// come from two documents; of both they are those that FFmpeg's muxer names when it refuses another (flvenc.c,
// swfenc.c).

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

constexpr long long availableSampleRateList[] = {11025, 22050, 44100};  // Hz, of FLV

constexpr long long availableSampleRateList_swf[] = {11025, 22050, 44100};  // Hz

}  // namespace

DataHelperFormatFlv::DataHelperFormatFlv() {
    const std::vector<std::string> video = {V::CODEC_ID_FLV1, V::CODEC_ID_H264};
    const std::vector<std::string> neverVideo = {V::CODEC_ID_H263, V::CODEC_ID_MPEG4, V::CODEC_ID_H265};
    FormatValidator& validator = FormatValidator::Instance();
    SetVideoCodecs(validator.GetSupportedVideoCodecs(F::FORMAT_FLV, video, neverVideo), V::CODEC_ID_FLV1);
    SetAudioCodecs(validator.GetSupportedAudioCodecs(F::FORMAT_FLV, {A::CODEC_ID_MP3, A::CODEC_ID_AAC}, {}),
                   A::CODEC_ID_AAC);
    SetSubtitleTextCodecs(validator.GetSupportedSubtitleCodecs(F::FORMAT_FLV, {S::CODEC_ID_TEXT}, {}),
                          S::CODEC_ID_TEXT);
}

SP<IDataHelper> DataHelperFormatFlv::Create() {
    return Keeping(new DataHelperFormatFlv);
}

Core::Property DataHelperFormatFlv::GetDefaults() const {
    return FormatTree(
        F::FORMAT_FLV,
        {{IFormatCodec::TAG_GLOBAL_HEADER, true}, {F::TAG_PSP_MODE, false}, {F::TAG_PROGRESSIVE_READ, false}},
        {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video, Stream::Audio, Stream::Subtitle});
}

void DataHelperFormatFlv::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), AudioCodecsConstraint(), SampleRatePath(), OneOf(availableSampleRateList));
}

DataHelperFormatSwf::DataHelperFormatSwf() {
    SetVideoCodecs({V::CODEC_ID_FLV1, V::CODEC_ID_MJPEG}, V::CODEC_ID_MJPEG);
    SetAudioCodecs({A::CODEC_ID_MP3}, A::CODEC_ID_MP3);
}

SP<IDataHelper> DataHelperFormatSwf::Create() {
    return Keeping(new DataHelperFormatSwf);
}

Core::Property DataHelperFormatSwf::GetDefaults() const {
    return FormatTree(F::FORMAT_SWF, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video, Stream::Audio});
}

void DataHelperFormatSwf::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), AudioCodecsConstraint(), SampleRatePath(), OneOf(availableSampleRateList_swf));
}

}  // namespace Norvex::Conf
