#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// AVI.

namespace Norvex::Conf {

using A = IFormatCodecAudio;
using F = IFormatFile;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

DataHelperFormatAvi::DataHelperFormatAvi() {
    const std::vector<std::string> video = {
        V::CODEC_ID_H264, V::CODEC_ID_MPEG1VIDEO, V::CODEC_ID_MPEG2VIDEO, V::CODEC_ID_MPEG4, V::CODEC_ID_MJPEG,
    };
    const std::vector<std::string> audio = {A::CODEC_ID_AAC, A::CODEC_ID_MP3, A::CODEC_ID_MP2, A::CODEC_ID_PCM_S16LE};
    FormatValidator& validator = FormatValidator::Instance();
    SetVideoCodecs(validator.GetSupportedVideoCodecs(F::FORMAT_AVI, video, {}), V::CODEC_ID_H264);
    SetAudioCodecs(validator.GetSupportedAudioCodecs(F::FORMAT_AVI, audio, {}), A::CODEC_ID_MP3);
    SetSubtitleTextCodecs(validator.GetSupportedSubtitleCodecs(F::FORMAT_AVI, {S::CODEC_ID_XSUB}, {}),
                          S::CODEC_ID_XSUB);
}

SP<IDataHelper> DataHelperFormatAvi::Create() {
    return Keeping(new DataHelperFormatAvi);
}

Core::Property DataHelperFormatAvi::GetDefaults() const {
    return FormatTree(F::FORMAT_AVI, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 0},
                      {Stream::Video, Stream::Audio, Stream::Subtitle});
}

void DataHelperFormatAvi::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), OneOf({A::CODEC_ID_AAC}), LayoutPath(),
            LayoutsOf({A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO}));
}

}  // namespace Norvex::Conf
