#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"

// Still pictures, and the animated GIF.

namespace Norvex::Conf {

namespace {

using F = IFormatFile;
using V = IFormatCodecVideo;

/// Frames per second: the source's own, or one of the book's choice that GIF's delays of whole hundredths of a second
/// come near to.
PairList<Core::Ratio> GifRates() {
    return {
        {"Auto", Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE},
        {"8", {8, 1}},
        {"10", {10, 1}},
        {"12", {12, 1}},
        {"12", {12, 1}},
        {"12", {12, 1}},
        {"15", {15, 1}},
        {"20", {20, 1}},
        {"23.97", {24000, 1001}},
        {"24", {24, 1}},
        {"25", {25, 1}},
        {"29.97", {30000, 1001}},
        {"30", {30, 1}},
    };
}

}  // namespace

DataHelperFormatImage::DataHelperFormatImage(const std::string& id, const std::string& codec) : m_formatId(id) {
    SetVideoCodecs({codec}, codec);
}

SP<IDataHelper> DataHelperFormatImage::Create(const std::string& id, const std::string& codec) {
    return Keeping(new DataHelperFormatImage(id, codec));
}

Core::Property DataHelperFormatImage::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

DataHelperFormatHeic::DataHelperFormatHeic() {
    SetVideoCodecs({V::CODEC_ID_H265}, V::CODEC_ID_H265);
}

SP<IDataHelper> DataHelperFormatHeic::Create() {
    return Keeping(new DataHelperFormatHeic);
}

Core::Property DataHelperFormatHeic::GetDefaults() const {
    return FormatTree(F::FORMAT_HEIC, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

DataHelperFormatHeif::DataHelperFormatHeif() {
    SetVideoCodecs({V::CODEC_ID_H265}, V::CODEC_ID_H265);
}

SP<IDataHelper> DataHelperFormatHeif::Create() {
    return Keeping(new DataHelperFormatHeif);
}

Core::Property DataHelperFormatHeif::GetDefaults() const {
    return FormatTree(F::FORMAT_HEIF, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

DataHelperFormatAvif::DataHelperFormatAvif() {
    SetVideoCodecs({V::CODEC_ID_AV1}, V::CODEC_ID_AV1);
}

SP<IDataHelper> DataHelperFormatAvif::Create() {
    return Keeping(new DataHelperFormatAvif);
}

Core::Property DataHelperFormatAvif::GetDefaults() const {
    return FormatTree(F::FORMAT_AVIF, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

DataHelperFormatGif::DataHelperFormatGif() {
    SetVideoCodecs({V::CODEC_ID_GIF}, V::CODEC_ID_GIF);
}

SP<IDataHelper> DataHelperFormatGif::Create() {
    return Keeping(new DataHelperFormatGif);
}

Core::Property DataHelperFormatGif::GetDefaults() const {
    return FormatTree(F::FORMAT_GIF, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

void DataHelperFormatGif::GetValidationRules(RuleList& rules) const {
    // The repeats, here and above, are meant: a list is offered as it is written.
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_GIF, V::CODEC_ID_GIF}), FrameRatePath(),
            ConstraintSet::Create(GifRates()));
}

}  // namespace Norvex::Conf
