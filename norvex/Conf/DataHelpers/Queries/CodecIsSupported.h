#pragma once

#include "norvex/foundation/Export.h"
#include "norvex/foundation/RefCount.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

namespace Norvex::Conf {

/// Whether a stream that exists may go into a container as it is. What FormatValidator lists is what a container
/// offers for encoding; this judges one stream, with the tag that it carries and, in some containers, its layout, its
/// pixel format or its codec data.
///
/// Both pointers must be set. Of the container, IFormatFile::TAG_CONTAINER is read; of the stream,
/// IFormatCodec::TAG_CODEC_ID, TAG_FOURCC (which must be there, 0 for no tag), TAG_LOSSLESS (absent is false) and, for
/// a lossless video stream, TAG_MAIN_STREAM. A stream that is carried over unchanged is marked lossless: without that
/// mark, a container with a table of tags takes little but its default codecs.
///
/// A codec or container that nothing is known of is refused, not an error. Throws Core::PropertyException for a
/// container without an id, for a lossless video stream that does not say whether it is the main one, and for a child
/// of the wrong type; FormatException for an unknown layout of an audio stream, where the container asks for it; and
/// std::bad_cast for a stream whose class is not that of its media type.
NORVEX_API bool CodecIsSupported(const SP<const IFormatFile>& format, const SP<const IFormatCodec>& codec);

}  // namespace Norvex::Conf
