#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/platform/LayoutRows.h"

namespace Norvex {

const std::map<AVCodecID, std::string>& GetFFCodecsMap() {
    static const std::map<AVCodecID, std::string>& codecs = Lasting([] {
        std::map<AVCodecID, std::string> names;
        const AVCodecDescriptor* codec = nullptr;
        while ((codec = avcodec_descriptor_next(codec)) != nullptr) names.emplace(codec->id, codec->name);
        return names;
    }());
    return codecs;
}

AVCodecID CodecIDFromTextID(const std::string& codecId) {
    // avcodec_descriptor_get_by_name() compares with one name after the other, and every question has a codec in it.
    using Row = std::pair<std::string_view, AVCodecID>;
    static const std::vector<Row>& rows = Lasting([] {
        std::vector<Row> byName;
        const AVCodecDescriptor* codec = nullptr;
        while ((codec = avcodec_descriptor_next(codec)) != nullptr) byName.emplace_back(codec->name, codec->id);
        std::sort(byName.begin(), byName.end());
        return byName;
    }());
    const auto row = std::lower_bound(rows.begin(), rows.end(), codecId,
                                      [](const Row& one, const std::string& name) { return one.first < name; });
    return row != rows.end() && row->first == codecId ? row->second : AV_CODEC_ID_NONE;
}

namespace Proc {

// The formats have FFmpeg's own numbers. One more of them needs a row of SampleFmtRecord.
static_assert(AV_SAMPLE_FMT_NB == static_cast<int>(SampleFormats::S64P) + 1);
static_assert(AV_SAMPLE_FMT_NONE == static_cast<int>(SampleFormats::None));

SampleFormats SampleFormatNorvexFromFFMPEG(AVSampleFormat format) {
    return static_cast<SampleFormats>(format);
}

bool IsZeroed(const AVChannelLayout* layout) {
    return layout == nullptr ||
           (layout->order == AV_CHANNEL_ORDER_UNSPEC && layout->nb_channels == 0 && layout->u.mask == 0);
}

bool IsValid(const AVChannelLayout& layout) {
    return av_channel_layout_check(&layout) != 0;
}

bool IsSupportedAVChannelLayoutMask(unsigned long long mask) {
    return Conf::FindLayoutRow(mask) != nullptr;
}

ChannelLayout NorvexFromAVChannelLayout(const AVChannelLayout& layout) {
    const Conf::LayoutRow* const row =
        layout.order == AV_CHANNEL_ORDER_NATIVE ? Conf::FindLayoutRow(layout.u.mask) : nullptr;
    return row != nullptr ? row->record.layout : ChannelLayout::Unknown;
}

}  // namespace Proc
}  // namespace Norvex
