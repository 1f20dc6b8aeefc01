#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"

// The formats of video discs. Only the sample rate reaches correction; the bitrates are checked and not mended. The
// constraint on the bitrate is the wider of the two words about it.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using C = IFormatCodec;
using F = IFormatFile;
using P = IPreset;
using V = IFormatCodecVideo;

constexpr long long lowestBitrate = 100000;  // bits per second, the book's own

}  // namespace

DataHelperFormatDVD::DataHelperFormatDVD(const std::string& id) : m_formatId(id) {
    SetVideoCodecs({V::CODEC_ID_MPEG1VIDEO, V::CODEC_ID_MPEG2VIDEO}, V::CODEC_ID_MPEG2VIDEO);
    std::vector<std::string> audio = {A::CODEC_ID_MP2};
    if (id == F::FORMAT_DVD) audio.push_back(A::CODEC_ID_AC3);
    SetAudioCodecs(audio, A::CODEC_ID_MP2);
}

SP<IDataHelper> DataHelperFormatDVD::Create(const std::string& id) {
    return Keeping(new DataHelperFormatDVD(id));
}

Core::Property DataHelperFormatDVD::GetDefaults() const {
    // DVD-Video has up to nine angles, eight streams of sound and 32 of subtitles.
    return FormatTree(m_formatId,
                      {{C::TAG_GLOBAL_HEADER, false},
                       {F::TAG_DVD_STANDARD, F::DVD_STANDARD_NTSC},
                       {F::TAG_DISK_SIZE, F::DISK_SIZE_DVD_STANDARD}},
                      {/*video*/ 9, /*audio*/ 8, /*subtitle*/ 32, /*other*/ 0}, {Stream::Video, Stream::Audio});
}

void DataHelperFormatDVD::GetValidationRules(RuleList& rules) const {
    // The highest bitrates of pictures and the sample rate are DVD-Video's; the bitrate of sound is the book's own.
    const std::string videoBitratePath = Path(P::KEY_FILTER_VIDEO_CODEC, C::TAG_BITRATE);
    const std::string audioModePath = Path(P::KEY_FILTER_AUDIO_CODEC, C::TAG_BITRATE_MODE);
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_MPEG2VIDEO}), videoBitratePath,
            ConstraintRange::Create(lowestBitrate, 9800000LL, 0LL));
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_MPEG1VIDEO}), videoBitratePath,
            ConstraintRange::Create(lowestBitrate, 1856000LL, 0LL));

    // AC-3 also for the discs that do not offer it.
    const SP<IPropertyConstraint> isDiscSound = OneOf({A::CODEC_ID_AC3, A::CODEC_ID_MP2});
    AddRule(rules, AudioCodecIdPath(), isDiscSound, audioModePath, OneOf({C::TAG_BITRATE_MODE_CBR}));
    AddRule(rules, AudioCodecIdPath(), isDiscSound, AudioBitratePath(), OneOf({256000LL}));
    AddRule(rules, AudioCodecIdPath(), isDiscSound, SampleRatePath(), OneOf({48000LL}));
}

void DataHelperFormatDVD::GetConstraints(ConstraintMap& constraints) const {
    FormatHelper::GetConstraints(constraints);
    constraints[F::TAG_DVD_STANDARD] = OneOf({F::DVD_STANDARD_NTSC, F::DVD_STANDARD_PAL});
    constraints[F::TAG_DISK_SIZE] = ConstraintSet::Create(PairList<long long>{
        {F::DISK_TYPE_DVD_MINI, F::DISK_SIZE_DVD_MINI},
        {F::DISK_TYPE_DVD_STANDARD, F::DISK_SIZE_DVD_STANDARD},
        {F::DISK_TYPE_DVD_DOUBLE_LAYER, F::DISK_SIZE_DVD_DOUBLE_LAYER},
    });
    // The video stream of the default tree by its name, and no pattern for every stream.
    const std::string firstStream = Path(P::KEY_STREAMS, "0", P::KEY_FILTER_VIDEO_CODEC);
    constraints[Path(firstStream, C::TAG_BITRATE_MODE)] =
        OneOf({C::TAG_BITRATE_MODE_CBR_AUTO, C::TAG_BITRATE_MODE_CBR});
    constraints[Path(firstStream, C::TAG_BITRATE)] = ConstraintRange::Create(lowestBitrate, V::MAX_VIDEO_BITRATE, 0LL);
}

}  // namespace Norvex::Conf
