#pragma once

#include <cstdint>
#include <vector>

#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

namespace Norvex::Conf {

/// A container described by a settings tree of its own.
class NORVEX_API FormatFile final : public RefCounted<IFormatFile> {
public:
    static SP<const IFormatFile> Create(Core::Property settings);

    const Core::Property& GetProperty() const override { return m_settings; }

private:
    explicit FormatFile(Core::Property settings) : m_settings(std::move(settings)) {}

    const Core::Property m_settings;
};

/// A codec's data as bytes of its own.
class NORVEX_API CodecData final : public RefCounted<ICodecData> {
public:
    static SP<const ICodecData> Create(std::vector<std::uint8_t> bytes);

    long long GetDataSize() const override { return static_cast<long long>(m_bytes.size()); }
    const std::vector<std::uint8_t>& GetData() const { return m_bytes; }

private:
    explicit CodecData(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    const std::vector<std::uint8_t> m_bytes;
};

/// An audio stream described by a settings tree of its own.
class NORVEX_API FormatCodecAudio final : public RefCounted<IFormatCodecAudio> {
public:
    /// `codecData` may be null.
    static SP<const IFormatCodecAudio> Create(Core::Property settings, SP<const ICodecData> codecData);

    const Core::Property& GetProperty() const override { return m_settings; }
    MediaType GetMediaType() const override { return MediaType::Audio; }
    SP<const ICodecData> GetCodecData() const override { return m_codecData; }
    /// The layout that TAG_LAYOUT names; Unknown without that child. Throws FormatException for a name that is none,
    /// and Core::PropertyException for what is no text.
    ChannelLayout GetChannelLayout() const override;

private:
    FormatCodecAudio(Core::Property settings, SP<const ICodecData> codecData)
        : m_settings(std::move(settings)), m_codecData(std::move(codecData)) {}

    const Core::Property m_settings;
    const SP<const ICodecData> m_codecData;
};

/// A video stream described by a settings tree of its own.
class NORVEX_API FormatCodecVideo final : public RefCounted<IFormatCodecVideo> {
public:
    /// `pixelFormat` is the number of an AVPixelFormat, -1 for none; `codecData` may be null.
    static SP<const IFormatCodecVideo> Create(Core::Property settings, int pixelFormat, SP<const ICodecData> codecData);

    const Core::Property& GetProperty() const override { return m_settings; }
    MediaType GetMediaType() const override { return MediaType::Video; }
    SP<const ICodecData> GetCodecData() const override { return m_codecData; }
    int GetPixelFormat() const override { return m_pixelFormat; }

private:
    FormatCodecVideo(Core::Property settings, int pixelFormat, SP<const ICodecData> codecData)
        : m_settings(std::move(settings)), m_pixelFormat(pixelFormat), m_codecData(std::move(codecData)) {}

    const Core::Property m_settings;
    const int m_pixelFormat;
    const SP<const ICodecData> m_codecData;
};

/// A stream that is neither picture nor sound, such as subtitles, described by a settings tree of its own.
class NORVEX_API FormatCodecSubtitle final : public RefCounted<IFormatCodecSubtitle> {
public:
    static SP<const IFormatCodecSubtitle> Create(Core::Property settings);

    const Core::Property& GetProperty() const override { return m_settings; }
    MediaType GetMediaType() const override { return MediaType::None; }
    SP<const ICodecData> GetCodecData() const override { return nullptr; }

private:
    explicit FormatCodecSubtitle(Core::Property settings) : m_settings(std::move(settings)) {}

    const Core::Property m_settings;
};

}  // namespace Norvex::Conf
