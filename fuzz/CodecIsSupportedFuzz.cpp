// Streams that exist, and the containers that they might go into.

#include <typeinfo>
#include <vector>

#include "Input.h"
#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    NorvexFuzz::Input input(data, size);
    while (!input.IsEmpty()) {
        Property file("file");
        if (input.Number(8) == 0) {
            file = input.Tree("file", 3);
        } else {
            file.SetChildT(IFormatFile::TAG_CONTAINER, input.Text());
        }
        Property settings = input.Tree("stream", 3);
        if (settings.GetType() == PT_NODE && input.Number(8) != 0) {
            settings.SetChildT(IFormatCodec::TAG_CODEC_ID, input.Text());
            settings.SetChildT(IFormatCodec::TAG_FOURCC, input.Integer());
            settings.SetChildT(IFormatCodec::TAG_LOSSLESS, input.Flag());
            settings.SetChildT(IFormatCodec::TAG_MAIN_STREAM, input.Flag());
        }
        SP<const ICodecData> bytes;
        if (input.Flag()) bytes = CodecData::Create(std::vector<std::uint8_t>(input.Number(4)));
        SP<const IFormatCodec> codec;
        switch (input.Number(3)) {
            case 0:
                codec = FormatCodecVideo::Create(settings, static_cast<int>(input.Integer()), bytes);
                break;
            case 1:
                codec = FormatCodecAudio::Create(settings, bytes);
                break;
            default:
                codec = FormatCodecSubtitle::Create(settings);
        }
        try {
            (void)CodecIsSupported(FormatFile::Create(file), codec);
        } catch (const Core::PropertyException&) {
        } catch (const FormatException&) {
        }
    }
    return 0;
}
