/// What the program has to know beyond the rule book, in one place: what FFmpeg calls a codec or the options of an
/// encoder or muxer.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norvex/Conf/DataHelpers/Queries/FormatMuxers.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

using Norvex::Conf::KeepsAttachments;
using Norvex::Conf::KeepsCover;
using Norvex::Conf::MuxerOf;

/// The options, by FFmpeg's names, without which that muxer would write something else than the container.
std::vector<std::pair<std::string, std::string>> MuxerOptionsOf(const std::string& formatId);

/// Whether players begin sooner where the container's index stands before the media, which needs asking for.
bool HasMovableIndex(const std::string& formatId);

// What a container holds beside its streams, as FFmpeg's muxer writes it; KeepsCover and KeepsAttachments tell more.
bool HoldsChapters(const std::string& formatId);
/// Which way up a picture is shown.
bool HoldsOrientation(const std::string& formatId);

/// Whether the container holds one picture.
inline bool IsStill(const std::string& formatId) {
    return Norvex::Conf::HoldsOnePicture(formatId);
}

/// The container id that the extension of a path stands for, the extension where it stands for none, and nothing where
/// there is no extension. After the census.
std::string FormatOf(const std::string& path);

/// FFmpeg's name of the codec that writes what the rule book calls by this id.
std::string CodecNameOf(const std::string& codecId);

/// A text of the rule book under the encoder options of a codec, as FFmpeg's option and value; none where FFmpeg has no
/// option for it, or settles it by other means.
std::optional<std::pair<std::string, std::string>> EncoderOptionOf(const std::string& codecId, const std::string& tag,
                                                                   const std::string& value);

/// The option by which an encoder is told a quality of the rule book, and its value; none where it is told by other
/// means.
std::optional<std::pair<std::string, std::string>> QualityOptionOf(const std::string& codecId, long long quality);

/// The same for a bitrate mode.
std::optional<std::pair<std::string, std::string>> ModeOptionOf(const std::string& codecId, const std::string& mode);

/// FFmpeg's names of the pixel formats that a profile has; none where any will do that the encoder takes.
std::vector<std::string> PixelFormatsOf(const std::string& codecId, const std::string& profile);

/// Whether the shape of pixels that are not square is kept.
bool HoldsPixelShape(const std::string& formatId, const std::string& codecId);

/// Whether FFmpeg's encoder of the codec takes interlaced pictures as such.
bool HoldsFields(const std::string& codecId);

/// The greatest frame size within this one that the rules of a codec let pass, as far as they want whole steps of
/// pixels.
std::pair<long long, long long> FittingSize(const std::string& codecId, long long width, long long height);

/// What an encoder insists on for a frame size.
struct EncoderForm {
    Norvex::Core::Ratio frameRate;  ///< frames per second
    const char* pixelFormat;        ///< FFmpeg's name
};

/// Null for an encoder that takes any.
const EncoderForm* FormOf(const std::string& codecId, long long width, long long height);

}  // namespace NorvexExport
