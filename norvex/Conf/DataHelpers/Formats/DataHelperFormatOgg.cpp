#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// Ogg (RFC 3533), with and without pictures.

namespace Norvex::Conf {

using A = IFormatCodecAudio;
using F = IFormatFile;
using V = IFormatCodecVideo;

DataHelperFormatOgv::DataHelperFormatOgv() {
    SetVideoCodecs({V::CODEC_ID_THEORA}, V::CODEC_ID_THEORA);
    SetAudioCodecs({A::CODEC_ID_FLAC, A::CODEC_ID_VORBIS}, A::CODEC_ID_VORBIS);
}

SP<IDataHelper> DataHelperFormatOgv::Create() {
    return Keeping(new DataHelperFormatOgv);
}

Core::Property DataHelperFormatOgv::GetDefaults() const {
    return FormatTree(F::FORMAT_OGV, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 1, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

DataHelperFormatOgg::DataHelperFormatOgg() {
    SetAudioCodecs({A::CODEC_ID_VORBIS}, A::CODEC_ID_VORBIS);
}

SP<IDataHelper> DataHelperFormatOgg::Create() {
    return Keeping(new DataHelperFormatOgg);
}

Core::Property DataHelperFormatOgg::GetDefaults() const {
    return FormatTree(F::FORMAT_OGG, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio});
}

}  // namespace Norvex::Conf
