/// The streams of the output, each of which carries one of the input to the muxer.
#pragma once

#include <memory>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "Encoding.h"
#include "Input.h"
#include "Muxing.h"
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

using OutputStreams = std::vector<std::unique_ptr<OutputStream>>;

/// The streams that the pass makes of what the job asks of the input, each added to the muxer.
OutputStreams MakeStreams(Input& input, const ExportJob& job, const Pass& pass, Muxer& muxer);

}  // namespace NorvexExport::Media
