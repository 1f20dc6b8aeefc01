#include "norvex/interfaces/Conf/FormatDescriptions.h"

namespace Norvex::Conf {

SP<const IFormatFile> FormatFile::Create(Core::Property settings) {
    return SP<const IFormatFile>(new FormatFile(std::move(settings)));
}

SP<const ICodecData> CodecData::Create(std::vector<std::uint8_t> bytes) {
    return SP<const ICodecData>(new CodecData(std::move(bytes)));
}

SP<const IFormatCodecAudio> FormatCodecAudio::Create(Core::Property settings, SP<const ICodecData> codecData) {
    return SP<const IFormatCodecAudio>(new FormatCodecAudio(std::move(settings), std::move(codecData)));
}

ChannelLayout FormatCodecAudio::GetChannelLayout() const {
    if (!m_settings.ChildExists(TAG_LAYOUT)) return ChannelLayout::Unknown;
    return LayoutRecord::Find(m_settings[TAG_LAYOUT].GetString()).layout;
}

SP<const IFormatCodecVideo> FormatCodecVideo::Create(Core::Property settings, int pixelFormat,
                                                     SP<const ICodecData> codecData) {
    return SP<const IFormatCodecVideo>(new FormatCodecVideo(std::move(settings), pixelFormat, std::move(codecData)));
}

SP<const IFormatCodecSubtitle> FormatCodecSubtitle::Create(Core::Property settings) {
    return SP<const IFormatCodecSubtitle>(new FormatCodecSubtitle(std::move(settings)));
}

}  // namespace Norvex::Conf
