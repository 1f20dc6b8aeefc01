// Settles one AAC stream through the installed library, and reads a failure's tags across its boundary.

#include <norvex/Norvex.h>

#include <iostream>

namespace {

using namespace Norvex;
using A = Conf::IFormatCodecAudio;

bool CorrectsABitrate() {
    const auto aac = CreateDataHelper(Conf::IPreset::KEY_FILTER_AUDIO_CODEC, A::CODEC_ID_AAC);
    Core::Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT(A::TAG_CODEC_ID, A::CODEC_ID_AAC);
    stream.SetChildT(A::TAG_SAMPLE_RATE, 48000);
    stream.SetChildT(A::TAG_SAMPLE_FORMAT, "s16");
    stream.SetChildT(A::TAG_LAYOUT, A::TAG_CH_LAYOUT_STEREO);
    stream.SetChildT(A::TAG_BITRATE, 100000);
    aac->CorrectFormatCodec(stream);
    std::cout << "100000 becomes " << stream[A::TAG_BITRATE].GetInt64() << '\n';
    return stream[A::TAG_BITRATE].GetInt64() == 96000;
}

bool ReadsTheTagsOfAFailure() {
    try {
        CreateDataHelper(Conf::IPreset::KEY_FILTER_AUDIO_CODEC, "no such codec");
    } catch (const Conf::HelperException& failure) {
        const auto* const id = boost::get_error_info<Conf::HelperException::TagTypeIsNotFound>(failure);
        return id != nullptr && *id == "no such codec" && boost::get_error_info<TagCallStack>(failure) != nullptr;
    }
    return false;
}

}  // namespace

int main() {
    return CorrectsABitrate() && ReadsTheTagsOfAFailure() ? 0 : 1;
}
