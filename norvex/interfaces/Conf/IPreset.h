#pragma once

#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex::Conf {

/// The outline of a preset: the container, its streams, and the codec and filter sections.
class NORVEX_API IPreset {
public:
    // Kinds of the catalogue, which are also the keys of their sections in a preset.
    static const std::string KEY_FORMAT;
    static const std::string KEY_FILTER_VIDEO_CODEC;
    static const std::string KEY_FILTER_AUDIO_CODEC;
    static const std::string KEY_FILTER_SUBTITLE_CODEC;

    // The streams of a preset: a child for each, named by the decimal digit of its position.
    static const std::string KEY_STREAMS;
    static const std::string KEY_TYPE_ID;  ///< kind of a stream, or implementation of a filter
    static const std::string
        INDEX;  ///< between KEY_STREAMS and a stream type: the pattern of every stream of that type

    // Values of KEY_TYPE_ID of a stream.
    static const std::string STREAM_TYPE_VIDEO;
    static const std::string STREAM_TYPE_AUDIO;
    static const std::string STREAM_TYPE_SUBTITLES_TEXT;
};

}  // namespace Norvex::Conf
