#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// The lossless video codecs: FFV1 (RFC 9043), HuffYUV, and FFmpeg's variant of that, which takes more pixel formats.
// The estimates are of camera pictures at 8 bits, which shrink to about half.

namespace Norvex::Conf {

namespace {

using MV = ModernVideo;
using V = IFormatCodecVideo;

}  // namespace

DataHelperVideoCodecFfv1::DataHelperVideoCodecFfv1() : EstimatedCodecHelper(MV::CODEC_ID_FFV1, 6.0) {
    m_options.Add(MV::TAG_LEVEL, 3, {3});  // the version of RFC 9043 with slices and checksums; 4 is not finished
    m_options.Add(MV::TAG_CODER, "range_tab", {"range_tab", "range_def", "rice"});
    m_options.Add(MV::TAG_CONTEXT, 0, {0, 1});
    // Of the counts that the encoder can make a grid of, those from 4 to 30.
    m_options.Add(MV::TAG_SLICES, 4, {4, 6, 9, 12, 15, 16, 20, 24, 30});
    m_options.Add(MV::TAG_SLICE_CRC, true);
}

Core::Property DataHelperVideoCodecFfv1::GetDefaults() const {
    Core::Property defaults = EstimatedCodecHelper::GetDefaults();
    defaults.SetChildT(V::TAG_MAX_I_FRAME_INTERVAL, 1);  // each frame can be decoded, and lost, alone
    defaults.SetChildT(V::TAG_GLOBAL_HEADER, true);
    return defaults;
}

DataHelperVideoCodecHuffYuv::DataHelperVideoCodecHuffYuv(const std::string& codecId)
    : EstimatedCodecHelper(codecId, 8.0) {
    // The median goes with YUV alone.
    m_options.Add(MV::TAG_PREDICTION, "left", {"left", "plane", "median"});
}

}  // namespace Norvex::Conf
