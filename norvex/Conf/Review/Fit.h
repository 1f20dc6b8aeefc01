#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"

/// What may become of a file in a container: which of its streams go over as they are, which are encoded, which are
/// left out, and why. Fill the encoder census of FormatValidator before.

namespace Norvex::Conf {

enum class StreamKind {
    Video,
    Audio,
    Subtitle,
    Cover,  ///< a picture beside film or sound: a video stream with IFormatCodecVideo::TAG_COVER_FLAG
    Other,  ///< attachments, data
};

/// A value of a stream that encoding changes.
struct ChangedSetting {
    std::string path;  ///< in the description
    Core::Property before;
    Core::Property after;
};

/// What becomes of one stream in one container.
struct StreamFit {
    enum class Answer {
        AsItIs,   ///< the rule book and FFmpeg take it unchanged
        Refused,  ///< FFmpeg's muxer carries it unchanged, and the rule book refuses that
        Encoded,
        LeftOut,
    };

    Answer answer = Answer::LeftOut;
    StreamKind kind = StreamKind::Other;
    std::string codecId;  ///< as the description has it; empty where it cannot be read
    /// Whether it is encoded unless a host goes against the rule book: always where the answer is Encoded, and mostly
    /// where it is Refused, which else means that it is left out.
    bool isEncoded = false;
    /// What it is encoded to: the same codec if the container offers it and it can be encoded, else the container's
    /// default, or for subtitles the first that is text. Empty while the census is empty: only the running build could
    /// tell.
    std::string encodedTo;
    std::vector<ChangedSetting> changes;  ///< of an encoded stream, of what its description holds
    bool isOnePicture = false;            ///< nothing but the first picture of a film goes over
    std::string reason;                   ///< one sentence, translated; of Refused it gives the clause
};

/// How many streams of each kind a container may hold.
struct StreamLimits {
    int video = 0;
    int audio = 0;
    int subtitle = 0;
    int other = 0;  ///< covers of a film among them, attachments and data
};

struct NORVEX_API FormatFit {
    std::string formatId;
    StreamLimits limits;
    std::vector<StreamFit> streams;  ///< in the order of the descriptions

    /// Of what goes over by the rule book: nothing of these streams, or a film's first picture.
    int CountLost() const noexcept;
    int CountEncoded() const noexcept;
    int CountChanges() const noexcept;
};

/// What becomes of the described streams in a container. The descriptions are those of CodecIsSupported: it is asked on
/// a copy that is marked as the main stream and as going over unchanged, whatever the description says. Where streams
/// are too many for the container, the first of a kind that can go go. A subtitle's, attachment's or data's description
/// is an IFormatCodecSubtitle, which tells by its codec what it is.
///
/// Never throws for what a description holds or does; a null one is left out. Throws HelperException for an unknown
/// container, and what a helper of the host's own throws when it is asked for its defaults or constraints.
NORVEX_API FormatFit FitInto(const std::string& formatId, const std::vector<SP<const IFormatCodec>>& streams);

/// The same for every container of the catalogue, the best first: least lost, then least encoded, then fewest settings
/// changed; among equals those that most players open.
NORVEX_API std::vector<FormatFit> FitIntoAll(const std::vector<SP<const IFormatCodec>>& streams);

/// Codec ids of streams that are to stand in one file, one for each stream.
struct WantedCodecs {
    std::vector<std::string> video;
    std::vector<std::string> audio;
    std::vector<std::string> subtitles;
};

struct HoldingFormat {
    std::string formatId;
    StreamLimits limits;
    bool isEncodable = false;  ///< the census has an encoder for each codec, and this FFmpeg the muxer
};

/// The containers that offer all of these codecs at once and have room for as many streams, by id; those that this
/// build can encode first.
NORVEX_API std::vector<HoldingFormat> ContainersFor(const WantedCodecs& wanted);

}  // namespace Norvex::Conf
