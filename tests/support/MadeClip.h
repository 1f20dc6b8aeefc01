#pragma once

#include <string>
#include <vector>

namespace NorvexTest {

/// What a made clip holds. Its streams are uncompressed, so that what is read back can be told to the pixel.
///
/// Each picture is a ramp of luma from RAMP_LEFT at the left edge to RAMP_RIGHT at the right one with a little
/// noise on it, and the sound is a faint tone with noise as well. During the mark the pictures are white and the tone
/// is loud.
struct ClipSettings {
    static constexpr int RAMP_LEFT = 50;        ///< of 255, on the scale of the pixel format's own range
    static constexpr int RAMP_RIGHT = 130;      ///< the same
    static constexpr double MARK_LENGTH = 0.2;  ///< seconds

    std::string muxer = "nut";  ///< FFmpeg's short name; it must take raw video and PCM
    double startTime = 0;       ///< seconds that the clip's clock shows where the clip begins
    double markTime = 0.4;      ///< seconds after the beginning

    int frames = 20;  ///< 0 for no pictures
    int width = 64;
    int height = 48;
    std::string pixelFormat = "yuv420p";  ///< FFmpeg's name
    int aspectX = 0;                      ///< shape of one pixel, 0 where the clip does not say
    int aspectY = 1;
    int frameRate = 25;     ///< frames per second
    double videoDelay = 0;  ///< seconds from the beginning of the clip to the first picture

    double soundSeconds = 0.8;  ///< 0 for no sound
    double audioDelay = 0;      ///< seconds from the beginning of the clip to the first sample
    double gapBegin = 0;        ///< seconds after the beginning from which ...
    double gapEnd = 0;          ///< ... to which there is no sound at all

    bool coverPicture = false;  ///< a PNG of 32 by 32 pixels, for the muxer "matroska"

    struct Title {
        double begin, end;  ///< seconds after the beginning
        std::string text;
    };
    std::vector<Title> titles;          ///< subtitles, for the muxer "matroska"
    std::string titleCodec = "subrip";  ///< FFmpeg's name
};

/// Writes the clip to `path` with the program ffmpeg, and returns `path`. Throws std::runtime_error.
std::string MakeClip(const std::string& path, const ClipSettings& clip);

}  // namespace NorvexTest
