/// What all streams of the output are to the export.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "norvex-export/Media.h"

namespace NorvexExport::Media {

/// One stream of the output: takes the packets of one stream of the input, and gives the muxer its own.
class OutputStream {
public:
    virtual ~OutputStream() = default;

    virtual int SourceIndex() const = 0;
    virtual void Take(const AVPacket& packet) = 0;
    /// False where further packets of the input would change nothing.
    virtual bool WantsMore() const = 0;
    /// Gives the muxer all that is left. Throws MediaError where the input held nothing.
    virtual void Finish() = 0;
    /// How far the stream has come on the time line of the output.
    virtual double Seconds() const = 0;
    virtual void Report(ExportResult& result) const = 0;
};

}  // namespace NorvexExport::Media
