// Whole films through norvex-export: made by the ffmpeg command, looked at with ffprobe.

#include <gmock/gmock.h>

#include "support/ProgramFixture.h"

namespace {

using nlohmann::json;
using namespace NorvexTest;

class FilmTest : public ProgramFixture {
protected:
    FilmTest() : ProgramFixture(NORVEX_EXPORT) {}

    /// Two pictures, two sounds, two subtitles, a font, a cover, two chapters, and tags of all sorts.
    void MakeFilm() const {
        Write("a.srt", "1\n00:00:00,200 --> 00:00:00,600\nOne\n");
        Write("font.ttf", "a font");
        Write("meta.txt",
              ";FFMETADATA1\ntitle=A film\ndate=2020-05-06\n"
              "[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=400\ntitle=One\n"
              "[CHAPTER]\nTIMEBASE=1/1000\nSTART=400\nEND=1000\ntitle=Two\n");
        Make("-f lavfi -i testsrc=s=32x32 -frames:v 1 cover.png");
        Make(
            "-f lavfi -i testsrc=s=160x120:d=1 -f lavfi -i testsrc=s=128x96:d=1 -f lavfi -i sine=d=1 "
            "-f lavfi -i sine=880:d=1 -i a.srt -i a.srt -f ffmetadata -i meta.txt -map 0 -map 1 -map 2 -map 3 -map 4 "
            "-map 5 -map_metadata 6 -map_chapters 6 -c:v libx264 -preset ultrafast -c:a aac -c:s:0 srt -c:s:1 ass "
            "-attach font.ttf -metadata:s:6 mimetype=font/ttf -attach cover.png -metadata:s:7 mimetype=image/png "
            "-metadata:s:7 filename=cover.png -metadata:s:0 title=Front -metadata:s:2 language=eng "
            "-metadata:s:3 language=ger -metadata:s:4 language=eng -metadata:s:5 language=ger -disposition:a:1 "
            "comment -disposition:s:1 forced film.mkv");
    }

    /// "h264 160x120 Front, aac eng" and so on, with what follows the streams: title and count of chapters.
    std::string Streams(const std::string& name) const {
        const json file = Probed("-show_streams -show_format -show_chapters", name);
        std::string text;
        for (const json& stream : file["streams"]) {
            const json tags = stream.value("tags", json::object());
            const json dispositions = stream["disposition"];
            if (stream.value("codec_name", "") == "bin_data") continue;  // the titles of the chapters
            text += (text.empty() ? "" : ", ") + stream.value("codec_name", stream.value("codec_type", ""));
            if (stream.contains("width") && stream["codec_type"] == "video") {
                text += " " + std::to_string(stream["width"].get<int>()) + "x" +
                        std::to_string(stream["height"].get<int>());
            }
            for (const json& data : stream.value("side_data_list", json::array())) {
                if (data.contains("rotation")) text += " turned by " + data["rotation"].dump();
            }
            const std::string language = tags.value("language", "und");
            if (language != "und") text += " " + language;
            const std::string title = tags.value("title", tags.value("handler_name", ""));  // as MP4 has it
            if (!title.empty() && title.find("Handler") == std::string::npos) text += " " + title;
            for (const char* const word : {"attached_pic", "comment", "forced"}) {
                if (dispositions.value(word, 0) != 0) text += std::string(" ") + word;
            }
        }
        const json tags = file.value(json::json_pointer("/format/tags"), json::object());
        if (tags.contains("title") || tags.contains("TITLE"))
            text += "; " + tags.value("title", tags.value("TITLE", ""));
        const std::size_t chapters = file.value("chapters", json::array()).size();
        if (chapters > 0) text += "; " + std::to_string(chapters) + " chapters";
        return text;
    }
};

TEST_F(FilmTest, TakesAllThatTheContainerHoldsAndTellsTheRest) {
    MakeFilm();
    const std::string pictures = "h264 160x120 Front, h264 128x96", end = "; A film; 2 chapters";
    const std::string rest = ", attachment, png 32x32 attached_pic" + end;
    const struct {
        std::string arguments, streams, told;
    } cases[] = {
        {"o.mkv", pictures + ", aac eng, aac ger comment, subrip eng, ass ger forced" + rest, ""},
        {"o.mkv --copy", pictures + ", aac eng, aac ger comment, subrip eng, ass ger forced" + rest, ""},
        {"o.mp4",
         pictures + ", aac eng, aac ger comment, mov_text eng, mov_text ger forced, png 32x32 attached_pic" + end,
         "'mp4' holds no attachments; stream 6 is left out."},
        {"o.mov --copy", "h264 160x120 Front, aac eng, aac ger, mov_text eng, mov_text ger" + end,
         "'mov' holds 1 picture; stream 1 is left out."},
        {"o.ts", "mpeg2video 160x120, mp2 eng, mp2 ger",
         "'mpegts' holds no subtitles of text; streams 4 and 5 are left out."},
        {"o.webm", "vp8 160x120 Front, vorbis eng, vorbis ger" + end, "'webm' holds no subtitles; streams 4 and 5"},
        {"o.avi", "h264 160x120 Front, mp3, mp3; A film", "'avi' holds no chapters; 2 are left out."},
        {"o.mp3", "mp3, mjpeg 32x32 attached_pic" + end, "streams 0 and 1 are left out."},
        {"o.wav", "pcm_s16le; A film", "'wav' holds no covers; stream 7 is left out."},
        {"o.mkv --streams 0,audio:ger", "h264 160x120 Front, aac ger comment" + end, ""},
        {"o.mkv --streams eng,video --no-subtitles", pictures + ", aac eng" + end, ""},
        {"o.mkv --copy --size:1 64x48 --audio:3 mp3",
         "h264 160x120 Front, h264 64x48, aac eng, mp3 ger comment, subrip eng, ass ger forced" + rest,
         "Something was asked of the sound of stream 3; it is encoded."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome outcome = Run("film.mkv " + c.arguments + " --save-preset one.json");
        ASSERT_EQ(outcome.status, 0) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr(c.told));
        const std::string name = c.arguments.substr(0, c.arguments.find(' '));
        EXPECT_EQ(Streams(name), c.streams);
        if (c.arguments.find("--copy") != std::string::npos) continue;  // a preset says nothing of what is copied
        const std::string choice = c.arguments.find("--streams") != std::string::npos ? c.arguments : name;
        EXPECT_EQ(Run("film.mkv " + choice + " --preset one.json --save-preset two.json --dry-run").status, 0);
        EXPECT_EQ(Read("two.json"), Read("one.json"));
        const Outcome check = RunOther(NORVEX_RULES, "check one.json");
        EXPECT_EQ(check.status, 0) << check.text;
    }
    for (const auto& [arguments, words] :
         {std::pair("o.mkv --streams 9", "'9' is no stream of the input; it has 0 picture, 1 picture, 2 sound eng"),
          {"o.mov --streams 0,1", "stream 1 cannot go over: 'mov' holds 1 picture"},
          {"o.mkv --audio-bitrate:0 64k", "stream 0 is no sound that goes over; take streams 2 and 3"}}) {
        EXPECT_THAT(Run(std::string("film.mkv ") + arguments).text, HasSubstr(words));
    }
}

TEST_F(FilmTest, TurnsPicturesUprightOrKeepsHowTheyAreTurned) {
    Make("-f lavfi -i testsrc=s=160x120:d=0.2 -c:v libx264 flat.mp4");
    const struct {
        std::array<int, 4> matrix;
        const char *arguments, *streams;
    } cases[] = {
        {{0, 1, -1, 0}, "o.mp4", "h264 120x160"},
        {{0, 1, -1, 0}, "o.mkv --copy", "h264 120x160"},  // by encoding: FFmpeg's muxer has no place for it
        {{0, 1, -1, 0}, "o.mov --copy", "h264 160x120 turned by -90"},
        {{-1, 0, 0, -1}, "o.avi", "h264 160x120"},
        {{-1, 0, 0, -1}, "o.mp4 --copy", "h264 160x120 turned by -180"},
        {{0, -1, 1, 0}, "o.png", "png 120x160"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        std::string film = Read("flat.mp4");
        // The matrix of the track's header, 16.16 big endian: its first, second, fourth and fifth number.
        const std::size_t matrix = film.find("tkhd") + 44;
        const std::size_t places[] = {0, 4, 12, 16};
        for (std::size_t i = 0; i < c.matrix.size(); ++i) {
            const char high = static_cast<char>(c.matrix[i] < 0 ? 0xff : 0);
            film.replace(matrix + places[i], 4, {high, static_cast<char>(c.matrix[i]), 0, 0});
        }
        Write("turned.mp4", film);
        const Outcome outcome = Run(std::string("turned.mp4 --quiet ") + c.arguments);
        EXPECT_EQ(outcome.text, "");
        EXPECT_EQ(Streams(std::string(c.arguments).substr(0, 5)), c.streams);
    }
}

TEST_F(FilmTest, PicturesKeepWhatTheCodecCanAndTheRestIsTold) {
    const struct {
        std::string make, arguments, picture, told;
    } cases[] = {
        {"format=yuv422p10le", "o.mov --video prores", "prores,320,180,1:1,yuv422p10le", ""},
        {"format=gray", "o.mov --video prores", "prores,320,180,1:1,yuv422p10le", ""},
        {"format=yuva444p10le", "o.mov --video prores", "prores,320,180,1:1,yuv422p10le",
         "loses its transparency and detail of its colours (4:4:4 becomes 4:2:2): 'prores' has it as yuv422p10le"},
        {"format=bgra", "o.webm", "vp8,320,180,1:1,yuv420p", "'vp8' has it as yuva420p here."},
        {"format=yuv420p10le", "o.mp4", "h264,320,180,1:1,yuv420p", "loses 2 of its 10 bits: 'h264'"},
        {"format=yuv420p10le", "o.mp4 --video hevc --profile main10 --encoder-preset fast",
         "hevc,320,180,1:1,yuv420p10le", ""},
        {"format=yuv422p10le", "o.mkv --profile high422", "h264,320,180,1:1,yuv422p10le", ""},
        {"format=yuv444p", "o.mp4 --video av1", "av1,320,180,1:1,yuv420p", "(4:4:4 becomes 4:2:0)"},
        {"format=yuv420p", "o.webp --quality 40", "webp,320,180,,yuv420p", ""},
        {"format=yuv420p", "o.jxl", "jpegxl,320,180,,rgb24", ""},
        {"format=yuv420p", "o.exr --codec-format float", "exr,320,180,1:1,gbrpf32le", ""},
        {"format=yuv420p", "o.mov --video dnxhd --profile dnxhd", "dnxhd,1280,720,1:1,yuv422p", ""},
        {"format=yuv420p", "o.mxf --video dnxhd --profile dnxhr_hqx", "dnxhd,320,180,1:1,yuv422p10le", ""},
        {"format=yuv420p", "o.mov --video cfhd --quality 1", "cfhd,320,176,1:1,yuv422p10le", ""},
        {"format=yuv444p", "o.pgm", "pgm,320,180,,gray", "loses its colours"},
        {"scale=4000:6000,setsar=1", "o.jpg", "mjpeg,2880,4320,1:1,yuvj420p",
         "is brought from 4000x6000 to 2880x4320."},
        {"scale=640:20,setsar=1", "o.png", "png,1024,32,1:1,rgb24", "is brought from 640x20 to 1024x32."},
        {"scale=9000:4,setsar=1", "o.png", "png,8192,32,1:1,rgb24", "is brought from 9000x4 to 8192x32, between bars."},
        {"scale=3:5,setsar=1 -c:v png", "o.mp4", "h264,32,54,1:1,yuv420p", "from 3x5 to 32x54."},
        {"scale=853:480,setsar=1", "o.mp4", "h264,852,480,1:1,yuv420p", ""},
        {"scale=720:576,setsar=64/45", "o.mp4", "h264,720,576,64:45,yuv420p", ""},
        {"scale=720:576,setsar=64/45", "o.flv", "flv1,1024,576,,yuv420p",
         "'flv1' has no place for the shape of pixels"},
        {"tinterlace=interleave_top,setfield=tff", "o.mp4", "h264,320,180,1:1,yuv420p,tt",
         "is interlaced, and stays so."},
        {"tinterlace=interleave_top,setfield=tff", "o.mp4 --size 160x90", "h264,160,90,1:1,yuv420p",
         "is interlaced, and its fields are made into whole pictures."},
        {"tinterlace=interleave_top,setfield=tff", "o.mp4 --deinterlace on", "h264,320,180,1:1,yuv420p",
         "is interlaced, and its fields are made into whole pictures."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.make + " to " + c.arguments);
        Make("-f lavfi -i testsrc2=s=320x180:r=50:d=0.1 -c:v ffv1 -vf " + c.make +
             (c.make.find("interlace") != std::string::npos ? " -flags +ildct in.mkv" : " in.mkv"));
        const Outcome outcome = Run("in.mkv " + c.arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr(c.told));
        std::string picture =
            RunOther("ffprobe",
                     "-v error -select_streams v:0 -show_entries "
                     "stream=codec_name,width,height,sample_aspect_ratio,pix_fmt,field_order -of csv=p=0 " +
                         c.arguments.substr(0, c.arguments.find(' ')))
                .text;
        for (const std::string& word :
             {std::string("\n"), std::string(",progressive"), std::string(",unknown"), std::string("N/A")}) {
            const std::size_t at = picture.find(word);
            if (at != std::string::npos) picture.erase(at, word.size());
        }
        EXPECT_EQ(picture, c.picture);
    }
}

TEST_F(FilmTest, WhatHdrTellsOfLightGoesOver) {
    Make(
        "-f lavfi -i testsrc2=s=320x180:d=0.2 -pix_fmt yuv420p10le -c:v libx265 -x265-params log-level=none:colorprim="
        "bt2020:transfer=smpte2084:colormatrix=bt2020nc:max-cll=1000,400:master-display='G(13250,34500)B(7500,3000)"
        "R(34000,16000)WP(15635,16450)L(10000000,1)' in.mkv");
    EXPECT_EQ(Run("in.mkv o.mp4 --video hevc --profile main10 --encoder-preset fast --quiet").text, "");
    for (const char* const entries : {"-show_entries stream_side_data", "-show_frames -read_intervals %+#1"}) {
        const std::string told = RunOther("ffprobe", std::string("-v error ") + entries + " o.mp4").text;
        for (const char* const value : {"red_x=34000/50000", "max_luminance=10000000/10000", "max_content=1000"}) {
            EXPECT_THAT(told, HasSubstr(value)) << entries;
        }
    }
}

TEST_F(FilmTest, RedIsRedInJpegs) {
    for (const char* const size : {"640x480", "1280x720"}) {
        Make(std::string("-f lavfi -i color=red:s=") + size + " -frames:v 1 in.png");
        EXPECT_EQ(Run("in.png o.jpg --quiet").text, "");
        Make("-i o.jpg -f rawvideo -pix_fmt rgb24 o.rgb");
        const std::string red = Read("o.rgb");  // of which conversions round the last bit
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(static_cast<unsigned char>(red.at(i)), i == 0 ? 254 : 0, 1) << size;
    }
}

TEST_F(FilmTest, GoesOnWithoutWhatCannotBeDecoded) {
    Make(
        "-f lavfi -i testsrc=s=64x48:d=1 -f lavfi -i sine=d=1 -f lavfi -i sine=d=1 -map 0 -map 1 -map 2 -c:v mpeg4 "
        "-c:a ac3 in.mkv");
    const json packets = Probed("-select_streams 2 -show_packets", "in.mkv");
    std::string film = Read("in.mkv");
    for (const json& packet : packets["packets"]) {
        const std::size_t size = std::stoul(packet["size"].get<std::string>()), head = 6;
        film.replace(std::stoul(packet["pos"].get<std::string>()) + head, size - head, size - head, '\0');
    }
    Write("in.mkv", film);
    const Outcome outcome = Run("in.mkv out.mkv --quiet");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.text,
                HasSubstr("stream 2 is left out: nothing of the audio stream of 'in.mkv' could be decoded"));
    EXPECT_EQ(Streams("out.mkv"), "h264 64x48, aac");
    EXPECT_EQ(Run("in.mkv out.mkv --quiet --streams 2").status, 1);
    EXPECT_EQ(FileCount(), 2U);
}

TEST_F(FilmTest, CopiesThatCannotBeWrittenAreEncodedAndTold) {
    Make(
        "-f lavfi -i testsrc=s=64x48:d=0.2 -f lavfi -i sine=d=0.2 -map 0 -map 0 -map 1 -map 1 -c:v:0 vp8 -c:v:1 "
        "libvpx-vp9 -c:a:0 flac -c:a:1 libopus in.mkv");
    const struct {
        const char *arguments, *streams, *told;
    } cases[] = {
        {"o.mov --streams 0", "h264 64x48", "The picture of stream 0 is encoded: FFmpeg says that "},
        {"o.mov --streams 1", "h264 64x48", "The picture of stream 1 is encoded: FFmpeg says that "},
        {"o.ogv --streams 1", "theora 64x48", "The picture of stream 1 is encoded: FFmpeg says that "},
        {"o.mov --streams 2", "aac", "The sound of stream 2 is encoded: FFmpeg says that "},
        {"o.mov --streams 3", "aac", "The sound of stream 3 is encoded: FFmpeg says that "},
        {"o.mkv --streams 0,2", "vp8 64x48, flac", ""},
    };
    for (const auto& c : cases) {
        const Outcome outcome = Run(std::string("in.mkv --copy ") + c.arguments);
        EXPECT_THAT(outcome.text, HasSubstr(c.told));
        EXPECT_EQ(Streams(std::string(c.arguments).substr(0, 5)), c.streams);
    }
}

TEST_F(FilmTest, TakesOneProgrammeUnlessAskedForMore) {
    Make(
        "-f lavfi -i testsrc=s=128x96:d=1 -f lavfi -i testsrc=s=64x48:d=1 -f lavfi -i sine=d=1 -map 0 -map 1 -map 2 "
        "-c:v mpeg2video -c:a mp2 -program title=One:st=0:st=2 -program title=Two:st=1 two.ts");
    EXPECT_THAT(Run("two.ts out.mkv").text, HasSubstr("Only one programme of the input is taken where --streams says"));
    EXPECT_EQ(Streams("out.mkv"), "h264 128x96, aac");
    EXPECT_EQ(Run("two.ts out.mkv --quiet --streams video,audio").text, "");
    EXPECT_EQ(Streams("out.mkv"), "h264 128x96, aac, h264 64x48");
}

TEST_F(FilmTest, PipesAreRefusedAndFilesKeepTheirModeAndNamesAreFilesWhateverTheyLookLike) {
    Make("-f lavfi -i sine=d=0.1 in.wav");
    ASSERT_EQ(RunOther("mkfifo", "pipe").status, 0);
    EXPECT_THAT(Run("pipe out.mp3").text, HasSubstr("'pipe'"));
    EXPECT_THAT(Run("/dev/stdin out.mp3", "cat in.wav |").text, HasSubstr("'/dev/stdin'"));
    Write("out.mp3", "old");
    RunOther("chmod", "640 out.mp3");
    EXPECT_EQ(Run("in.wav out.mp3 --quiet").text, "");
    EXPECT_EQ(RunOther("stat", "-c %a out.mp3").text, "640\n");
    RunOther("mv", "in.wav pipe:0");
    EXPECT_EQ(Run("pipe:0 pipe:1 --format mp3 --quiet").text, "");
    EXPECT_EQ(Streams("file:pipe:1"), "mp3");
    EXPECT_THAT(Run("http://127.0.0.1/clip.mp4 out.mp3").text, HasSubstr("No such file or directory"));
}

TEST_F(FilmTest, TheIndexStandsFirstUnlessItIsLeftBehind) {
    Make("-f lavfi -i testsrc=s=64x48:d=0.2 in.nut");
    for (const auto& [option, isFirst] : {std::pair("", true), {" --no-faststart", false}}) {
        EXPECT_EQ(Run(std::string("in.nut out.mp4 --quiet") + option).text, "");
        const std::string film = Read("out.mp4");
        EXPECT_EQ(film.find("moov") < film.find("mdat"), isFirst);
    }
}

}  // namespace
