#include "support/MadeClip.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace NorvexTest {

namespace {

/// FFmpeg's expression for whether a moment lies in the mark.
std::string IsMarked(const ClipSettings& clip, const std::string& time, double delay) {
    const double begin = clip.markTime - delay - 1e-6;
    return fmt::format("between({},{},{})", time, begin, begin + ClipSettings::MARK_LENGTH);
}

std::string Pictures(const ClipSettings& clip) {
    // The noise is the same in all components, which random() would not be.
    const std::string light =
        fmt::format("'if({},255,{}+{}*X/(W-1)+mod(abs(43758.5*sin(12.99*X+78.23*Y+37.7*N)),17)-8)'",
                    IsMarked(clip, "T", clip.videoDelay), ClipSettings::RAMP_LEFT,
                    ClipSettings::RAMP_RIGHT - ClipSettings::RAMP_LEFT);
    const bool isYuv = clip.pixelFormat.compare(0, 3, "yuv") == 0;
    const std::string drawn = isYuv ? fmt::format("format=yuv444p,geq=lum={}:cb=128:cr=128", light)
                                    : fmt::format("format=gbrp,geq=r={0}:g={0}:b={0}", light);
    const std::string format = clip.pixelFormat == "pal8"
                                   ? "split[a][b],[a]palettegen=reserve_transparent=0[p],[b][p]paletteuse=dither=none"
                                   : "format=" + clip.pixelFormat;
    return fmt::format("color=size={}x{}:rate={}:duration={},{},setsar={}/{},{}", clip.width, clip.height,
                       clip.frameRate, static_cast<double>(clip.frames) / clip.frameRate, drawn, clip.aspectX,
                       clip.aspectY, format);
}

std::string Sound(const ClipSettings& clip) {
    const std::string gap = fmt::format("gte(t,{})*lt(t,{})", clip.gapBegin - 1e-6, clip.gapEnd - 1e-6);
    return fmt::format(
        "aevalsrc='(sin(2000*PI*t)+random(0)-0.5)*if({},0.5,0.01)':c=stereo:s=48000:d={},"
        "asetnsamples=960,aselect='not({})'",
        IsMarked(clip, "t", clip.audioDelay), clip.soundSeconds, gap);
}

std::string Time(double seconds) {
    return fmt::format("00:00:{:02d},{:03d}", static_cast<int>(seconds), static_cast<int>(seconds * 1000 + 0.5) % 1000);
}

void Run(const std::string& arguments) {
    const std::string command = "ffmpeg -nostdin -v error -y -copyts" + arguments;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("cannot make the clip: " + command);
}

}  // namespace

std::string MakeClip(const std::string& path, const ClipSettings& clip) {
    const std::string file = "'file:" + path;  // open, as the names of what goes with it begin alike
    std::string inputs, outputs;
    auto input = [&, count = 0](const std::string& words) mutable {
        inputs += ' ' + words;
        outputs += fmt::format(" -map {}", count++);
    };
    if (clip.frames > 0) input(fmt::format("-itsoffset {} -f lavfi -i \"{}\"", clip.videoDelay, Pictures(clip)));
    if (clip.soundSeconds > 0) input(fmt::format("-itsoffset {} -f lavfi -i \"{}\"", clip.audioDelay, Sound(clip)));
    if (!clip.titles.empty()) {
        std::ofstream titles(path + ".srt");
        for (const auto& [begin, end, text] : clip.titles)
            titles << "1\n" << Time(begin) << " --> " << Time(end) << '\n' << text << "\n\n";
        titles.close();
        input("-itsoffset 0 -i " + file + ".srt'");
    }
    if (clip.coverPicture) {
        Run(" -f lavfi -i color=size=32x32:duration=0.04 " + file + ".png'");
        outputs += " -attach " + file + ".png' -metadata:s:t mimetype=image/png -metadata:s:t filename=cover.png";
    }
    Run(inputs + outputs +
        fmt::format(" -fps_mode passthrough -c:v rawvideo -c:a pcm_s16le -c:s {} ", clip.titleCodec) +
        fmt::format("-output_ts_offset {} -f {} {}'", clip.startTime, clip.muxer, file));
    for (const char* const part : {".srt", ".png"}) std::remove((path + part).c_str());
    return path;
}

}  // namespace NorvexTest
