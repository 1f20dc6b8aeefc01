#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <string>

#include "norvex/Norvex.h"

namespace NorvexBench {

/// One stream of a codec: what is asked for, of which part is against the rules, and what an encoder is opened with.
struct AudioCase {
    std::string codec;
    long long sampleRate;  ///< Hz
    std::string sampleFormat;
    std::string layout;
    long long bitrate;  ///< bits per second
    int legalRate;      ///< what the encoder opens with
    AVSampleFormat legalFormat;
    int legalChannels;
    long long legalBitrate;
    double bound;  ///< the highest cost of a correction, as a part of opening the encoder
};

const AudioCase& FindCase(const std::string& codec);

Norvex::SP<const Norvex::Conf::IDataHelper> AudioHelper(const std::string& codec);

/// The flat node of the stream, as it is asked for.
Norvex::Core::Property AskedStream(const AudioCase& audio);
/// Puts back what a correction changed.
void AskAgain(Norvex::Core::Property& stream, const AudioCase& audio);

/// Opens FFmpeg's encoder and drops it; whether it took the settings.
bool OpenEncoder(const AudioCase& audio, int sampleRate, AVSampleFormat format);

}  // namespace NorvexBench
