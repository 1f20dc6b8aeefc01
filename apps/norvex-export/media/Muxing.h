/// The container of the output.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "Basics.h"
#include "Files.h"
#include "Tags.h"

namespace NorvexExport::Media {

class Muxer {
public:
    /// Writes the container to `file`.
    Muxer(const std::string& container, const Options& options, const PendingFile& file);

    /// Fails as the muxer of the container would, until its header is written; nothing is kept.
    static Muxer OnTrial(const std::string& container, const Options& options);

    /// Takes what it is given and keeps none of it.
    static Muxer Discarding() { return Muxer("null", "nothing", ""); }

    bool WantsGlobalHeader() const { return (m_context->oformat->flags & AVFMT_GLOBALHEADER) != 0; }

    /// The number of a new stream, that is encoded from the source. All streams are added before Begin().
    int AddStream(const AVCodecContext& encoder, const AVStream& source);

    /// The filter that brings the packets of a stream into the form that this container wants, null where none is
    /// needed or where the muxer sees to it itself.
    const char* PacketFilterFor(const AVCodecParameters& source) const {
        const bool isPrefixed = source.extradata_size > 0 && source.extradata[0] == 1;  // rather than with start codes
        if (IsAvi() && source.codec_id == AV_CODEC_ID_H264 && isPrefixed) return "h264_mp4toannexb";
        // Transport streams have no other place for its header.
        const bool isBare = std::string_view(m_context->oformat->name) == "mpegts" && source.extradata_size > 0;
        return isBare && source.codec_id == AV_CODEC_ID_MPEG4 ? "dump_extra" : nullptr;
    }

    /// Whether cover pictures are files inside the file, and no streams.
    bool AttachesCovers() const { return std::string_view(m_context->oformat->name) == "matroska"; }

    /// Adds a cover picture as such a file. No packet of the stream is to follow.
    int AddAttachedCover(const AVStream& source);

    /// The same for a stream that goes over, of those parameters and with that rate of frames.
    int AddCopy(const AVStream& source, const AVCodecParameters& sourceParameters, AVRational frameRate);

    /// Says that the stream is the cover picture of the others.
    void MarkCover(int stream);

    /// Takes the tags and chapters of the film, which begins at `startTime` in AV_TIME_BASE units.
    void TakeTags(const AVFormatContext& input, std::int64_t startTime) { CopyFilmTags(input, startTime, *m_context); }

    void Begin();

    /// Whether the first stream must be a picture.
    bool WantsPictureFirst() const { return std::string_view(m_context->oformat->name) == "mxf"; }

    /// Whether the container tells when pictures are shown, rather than only in which order they are decoded.
    bool TellsTimes() const { return (m_context->oformat->flags & AVFMT_NOTIMESTAMPS) == 0 && !IsAvi(); }

    /// How much later what a stream of encoded sound tells has to come for the container's readers to play it with the
    /// pictures, in AV_TIME_BASE units. Those of AVI show a picture when those are decoded that it is made from, and
    /// play the silence that the encoder begins with.
    std::int64_t SoundDelay(int stream) const;

    /// Whether the streams of a container may begin apart, and their pictures stand at any time. In others all begin
    /// together, and the pictures follow each other at their rate.
    static bool PlacesStreams(const std::string& container);

    /// Whether the packets of one stream must be of rising times rather than of times that do not fall.
    bool WantsRisingTimes() const { return (m_context->oformat->flags & AVFMT_TS_NONSTRICT) == 0; }

    /// The clock of a stream, known after Begin().
    AVRational TimeBase(int stream) const { return m_context->streams[stream]->time_base; }

    /// Takes the packet's content, and leaves it empty. Its times count from `begin`, in AV_TIME_BASE units.
    void Write(AVPacket& packet, int stream, AVRational timeBase, std::int64_t begin = 0);

    /// Completes the file. Only then is it known that all of it was written.
    void Finish();

private:
    Muxer(const std::string& container, const std::string& quotedName, const std::string& url);

    void Open(const Options& options);

    /// Such as how the picture is to be turned, or what an encoder has of HDR. Newer versions keep it in the
    /// parameters.
    static void CopySideData(const AVStream& source, AVStream& stream);
    static void CopySideData(const AVCodecContext& encoder, AVStream& stream);
    static void CopySideData(const AVPacketSideData& data, AVStream& stream);

    /// How much later than they say the packets of a stream stand, in AV_TIME_BASE units: in AVI, those before the
    /// beginning would have the muxer move the pictures. These wait for whole pictures.
    std::int64_t Wait(const AVStream& stream) const;

    bool IsAvi() const { return std::string_view(m_context->oformat->name) == "avi"; }

    void CheckWriting(int result) const {
        if (result < 0) Fail("cannot write " + m_name, result);
    }

    void RequireOnePicture() const;

    /// The next picture would take the place of the one before it.
    [[noreturn]] void FailAsOnePicture() const {
        throw MediaError("the container " + Quoted(m_context->oformat->name) + " holds one picture alone");
    }

    std::string m_name;
    bool m_isOnePicture;
    long long m_packets = 0;
    std::unique_ptr<AVFormatContext, CloseOutput> m_context;
};

}  // namespace NorvexExport::Media
