#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/pixfmt.h>
#include <libavutil/samplefmt.h>
}

#include <map>
#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"

namespace Norvex {

/// Every codec that FFmpeg describes: its number and its name, which is the codec id of the system.
NORVEX_API const std::map<AVCodecID, std::string>& GetFFCodecsMap();

/// The reverse of GetFFCodecsMap; AV_CODEC_ID_NONE for a text that is no codec's name, such as one with a NUL in it.
NORVEX_API AVCodecID CodecIDFromTextID(const std::string& codecId);

namespace Proc {

/// An encoder of the running build, or none, and what it declares. The lists belong to FFmpeg and live as long as
/// the process; null stands for an encoder that declares none, and for no encoder. Members of AVCodec may be reached
/// where there is an encoder only.
class NORVEX_API SafeEncoderCodec {
public:
    SafeEncoderCodec() = default;
    explicit SafeEncoderCodec(const AVCodec* codec) : m_codec(codec) {}

    explicit operator bool() const { return m_codec != nullptr; }
    const AVCodec* operator->() const { return m_codec; }
    const AVCodec* Get() const { return m_codec; }

    /// The encoder's frame rates as it lists them; empty when it has no such list.
    std::vector<AVRational> GetSupportedFrameRates() const;
    /// Ends with AV_PIX_FMT_NONE.
    const AVPixelFormat* GetSupportedPixelFormats() const;
    /// Ends with AV_SAMPLE_FMT_NONE.
    const AVSampleFormat* GetSupportedSampleFormats() const;
    /// Hz; ends with 0.
    const int* GetSupportedSampleRates() const;
    /// Ends with an entry for which IsZeroed holds.
    const AVChannelLayout* GetSupportedChannelLayouts() const;
    /// Whether the encoder has the option and, as far as the option says, takes the value: by the name of a constant
    /// or as a number within its bounds. Names are FFmpeg's.
    bool TakesOption(const std::string& option, const std::string& value) const;

private:
    const AVCodec* m_codec = nullptr;
};

/// FFmpeg's default encoder of a codec, when `implName` is ImplNames::FFMPEG and the build has one; else empty.
NORVEX_API SafeEncoderCodec FindEncoder(const std::string& codecId, const std::string& implName);

NORVEX_API SampleFormats SampleFormatNorvexFromFFMPEG(AVSampleFormat format);

/// Whether this is the entry that ends a list of layouts, or no list at all.
NORVEX_API bool IsZeroed(const AVChannelLayout* layout);
NORVEX_API bool IsValid(const AVChannelLayout& layout);
/// Whether there is a ChannelLayout for a mask of AV_CH_ bits.
NORVEX_API bool IsSupportedAVChannelLayoutMask(unsigned long long mask);
/// The ChannelLayout of a native layout, Unknown for a mask that has none.
NORVEX_API ChannelLayout NorvexFromAVChannelLayout(const AVChannelLayout& layout);

}  // namespace Proc
}  // namespace Norvex
