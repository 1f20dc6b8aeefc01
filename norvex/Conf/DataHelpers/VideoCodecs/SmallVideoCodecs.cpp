#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// The video codecs that differ in their tables alone. What sets one apart from the rest, on purpose:
//
//   AV1, HAP           VBR is the first mode that a user is offered
//   WMV2               the encoder's own scale of quality, the quantiser from 1 to 31
//   HAP                the formats of FFmpeg's encoder
//   UT Video           lossless: nothing about the bitrate to choose
//   RLE, UT Video,
//   WMV2, WMV3         start without a quality
//   AV1                starts without a bitrate
//   ProRes, RLE,
//   UT Video           the encoder's frame rates are a rule (the base class says so)
//
// Profiles and presets are set and not limited.

namespace Norvex::Conf {

using V = IFormatCodecVideo;

DataHelperVideoCodecAV1::DataHelperVideoCodecAV1() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_AV1) {}

SP<IDataHelper> DataHelperVideoCodecAV1::Create() {
    return Keeping(new DataHelperVideoCodecAV1);
}

Core::Property DataHelperVideoCodecAV1::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_AV1},
        {V::TAG_QUALITY, 18},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_VBR},
        {V::TAG_GLOBAL_HEADER, true},
        {V::TAG_CODEC_OPTIONS_ENCODE,
         {
             {V::TAG_PROFILE, V::TAG_AV1_PROFILE_MAIN},
             {V::TAG_PRESET, V::TAG_AV1_PRESET_FASTER},
             {V::TAG_USE_HW_CONTEXT, true},
         }},
    });
}

void DataHelperVideoCodecAV1::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_VBR, V::TAG_BITRATE_MODE_CBR});
}

DataHelperVideoCodecHAP::DataHelperVideoCodecHAP() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_HAP) {}

SP<IDataHelper> DataHelperVideoCodecHAP::Create() {
    return Keeping(new DataHelperVideoCodecHAP);
}

Core::Property DataHelperVideoCodecHAP::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_HAP},
        {V::TAG_QUALITY, 10},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_GLOBAL_HEADER, true},
        {V::TAG_CODEC_OPTIONS_ENCODE, {{V::TAG_FORMAT, V::TAG_FORMAT_HAP}}},
    });
}

void DataHelperVideoCodecHAP::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_VBR, V::TAG_BITRATE_MODE_CBR});
    constraints[Path(V::TAG_CODEC_OPTIONS_ENCODE, V::TAG_FORMAT)] =
        OneOf({V::TAG_FORMAT_HAP, V::TAG_FORMAT_HAP_Q, V::TAG_FORMAT_HAP_ALPHA});
}

DataHelperVideoCodecProres::DataHelperVideoCodecProres() : VideoCodecHelper(V::CODEC_ID_PRORES) {}

SP<IDataHelper> DataHelperVideoCodecProres::Create() {
    return Keeping(new DataHelperVideoCodecProres);
}

Core::Property DataHelperVideoCodecProres::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_PRORES},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 1},
        {V::TAG_CODEC_OPTIONS_ENCODE,
         {{V::TAG_PROFILE, V::TAG_PRORES_PROFILE_422}, {V::TAG_DISABLE_TRANSPARENCY, false}}},
    });
}

void DataHelperVideoCodecProres::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecRLE::DataHelperVideoCodecRLE() : VideoCodecHelper(V::CODEC_ID_QTRLE) {}

SP<IDataHelper> DataHelperVideoCodecRLE::Create() {
    return Keeping(new DataHelperVideoCodecRLE);
}

Core::Property DataHelperVideoCodecRLE::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_QTRLE},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {{V::TAG_DISABLE_TRANSPARENCY, false}}},
    });
}

void DataHelperVideoCodecRLE::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecTheora::DataHelperVideoCodecTheora() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_THEORA) {}

SP<IDataHelper> DataHelperVideoCodecTheora::Create() {
    return Keeping(new DataHelperVideoCodecTheora);
}

Core::Property DataHelperVideoCodecTheora::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_THEORA},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 1},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecTheora::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecUTVideo::DataHelperVideoCodecUTVideo() : VideoCodecHelper(V::CODEC_ID_UTVIDEO) {}

SP<IDataHelper> DataHelperVideoCodecUTVideo::Create() {
    return Keeping(new DataHelperVideoCodecUTVideo);
}

Core::Property DataHelperVideoCodecUTVideo::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_UTVIDEO},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

DataHelperVideoCodecVP8::DataHelperVideoCodecVP8() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_VP8) {}

SP<IDataHelper> DataHelperVideoCodecVP8::Create() {
    return Keeping(new DataHelperVideoCodecVP8);
}

Core::Property DataHelperVideoCodecVP8::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_VP8},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 10},
        {V::TAG_CODEC_OPTIONS_ENCODE, {{V::TAG_DISABLE_TRANSPARENCY, false}}},
    });
}

void DataHelperVideoCodecVP8::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecVP9::DataHelperVideoCodecVP9() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_VP9) {}

SP<IDataHelper> DataHelperVideoCodecVP9::Create() {
    return Keeping(new DataHelperVideoCodecVP9);
}

Core::Property DataHelperVideoCodecVP9::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_VP9},
        {V::TAG_QUALITY, 10},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_VBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_CODEC_OPTIONS_ENCODE,
         {
             {V::TAG_PROFILE, V::TAG_VP9_PROFILE_0},
             {V::TAG_USE_HW_CONTEXT, true},
             {V::TAG_DISABLE_TRANSPARENCY, false},
         }},
    });
}

void DataHelperVideoCodecVP9::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecWmv2::DataHelperVideoCodecWmv2() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_WMV2) {}

SP<IDataHelper> DataHelperVideoCodecWmv2::Create() {
    return Keeping(new DataHelperVideoCodecWmv2);
}

Core::Property DataHelperVideoCodecWmv2::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_WMV2},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecWmv2::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
    constraints[V::TAG_QUALITY] = ConstraintRange::Create(1LL, 31LL, 0LL);
}

DataHelperVideoCodecWmv3::DataHelperVideoCodecWmv3() : AnyFrameRateVideoCodecHelper(V::CODEC_ID_WMV3) {}

SP<IDataHelper> DataHelperVideoCodecWmv3::Create() {
    return Keeping(new DataHelperVideoCodecWmv3);
}

Core::Property DataHelperVideoCodecWmv3::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_WMV3},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecWmv3::GetConstraints(ConstraintMap& constraints) const {
    AnyFrameRateVideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

}  // namespace Norvex::Conf
