// Stands in the place of the library's own source that looks at encoders.

#include "support/FakeBuild.h"

#include <algorithm>
#include <stdexcept>

#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace {

/// An encoder with its lists ended as FFmpeg ends them.
struct Entry {
    AVCodec codec{};
    NorvexTest::FakeEncoder lists;
};

/// By codec id. A map, so that an entry keeps its address.
std::map<std::string, Entry> g_build;

const NorvexTest::FakeEncoder& ListsOf(const AVCodec* codec) {
    const auto entry = std::find_if(g_build.begin(), g_build.end(),
                                    [codec](const auto& candidate) { return &candidate.second.codec == codec; });
    if (entry == g_build.end()) throw std::logic_error("an encoder of a build that is gone");
    return entry->second.lists;
}

template <class T>
void End(std::vector<T>& list, const T& terminator) {
    if (!list.empty()) list.push_back(terminator);
}

template <class T>
const T* ListOrNull(const std::vector<T>& list) {
    return list.empty() ? nullptr : list.data();
}

}  // namespace

namespace NorvexTest {

FakeBuild::FakeBuild(const std::map<std::string, FakeEncoder>& encoders) {
    for (const auto& [codecId, encoder] : encoders) {
        FakeEncoder& lists = g_build[codecId].lists;
        lists = encoder;
        End(lists.sampleFormats, AV_SAMPLE_FMT_NONE);
        End(lists.sampleRates, 0);
        End(lists.layouts, AVChannelLayout{});
    }
}

FakeBuild::~FakeBuild() {
    g_build.clear();
}

AVChannelLayout NativeLayout(unsigned long long mask) {
    AVChannelLayout layout{};
    if (av_channel_layout_from_mask(&layout, mask) != 0) throw std::invalid_argument("not a mask");
    return layout;
}

AVChannelLayout UnorderedLayout(int channels) {
    AVChannelLayout layout{};
    layout.order = AV_CHANNEL_ORDER_UNSPEC;
    layout.nb_channels = channels;
    return layout;
}

}  // namespace NorvexTest

namespace Norvex::Proc {

SafeEncoderCodec FindEncoder(const std::string& codecId, const std::string& implName) {
    const auto entry = g_build.find(codecId);
    if (implName != ImplNames::FFMPEG || entry == g_build.end()) return {};
    return SafeEncoderCodec(&entry->second.codec);
}

std::vector<AVRational> SafeEncoderCodec::GetSupportedFrameRates() const {
    return ListsOf(m_codec).frameRates;
}

const AVPixelFormat* SafeEncoderCodec::GetSupportedPixelFormats() const {
    return nullptr;  // which nothing of the rule book asks for
}

const AVSampleFormat* SafeEncoderCodec::GetSupportedSampleFormats() const {
    return ListOrNull(ListsOf(m_codec).sampleFormats);
}

const int* SafeEncoderCodec::GetSupportedSampleRates() const {
    return ListOrNull(ListsOf(m_codec).sampleRates);
}

const AVChannelLayout* SafeEncoderCodec::GetSupportedChannelLayouts() const {
    return ListOrNull(ListsOf(m_codec).layouts);
}

bool SafeEncoderCodec::TakesOption(const std::string& option, const std::string& value) const {
    const auto& options = ListsOf(m_codec).options;
    const auto found = options.find(option);
    return found != options.end() && std::count(found->second.begin(), found->second.end(), value) != 0;
}

}  // namespace Norvex::Proc
