#pragma once

#include <string>

#include "norvex/interfaces/Conf/IFormatCodec.h"

/// Why CodecIsSupported refuses a stream. Not for hosts: Fit.h tells them.

namespace Norvex::Conf {

/// The clause of CodecIsSupported that decides.
enum class Refusal {
    None,
    Unreadable,      ///< the description throws when it is asked, or lacks the codec's id
    NoMuxer,         ///< the container's id is the name of no muxer, though another muxer may write it
    NotListed,       ///< the book's own list for the muxer does not have the codec
    NoCodecData,     ///< AAC in transport and program streams
    NoTag,           ///< a stream without a tag, and the muxer's table has none for the codec
    UnknownTag,      ///< the muxer's table does not have the stream's tag
    OtherTag,        ///< the muxer's table gives the stream's tag to another codec
    BarredTag,       ///< the table has it, and the book does not want it there
    AviSound,        ///< sound that players of AVI do not know
    AviPixelFormat,  ///< H.264 of a pixel format that players of AVI do not know
};

/// Of a stream that is marked as going over unchanged, and that CodecIsSupported refuses. Throws what the description
/// throws.
Refusal WhyRefused(const std::string& formatId, const IFormatCodec& codec);

/// The clause in words, translated; empty for None.
std::string WordsFor(Refusal refusal, const std::string& formatId, const std::string& codecId, long long tag);

}  // namespace Norvex::Conf
