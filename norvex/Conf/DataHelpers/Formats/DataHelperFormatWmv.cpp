#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// Windows Media (Advanced Systems Format), with and without pictures.

namespace Norvex::Conf {

using A = IFormatCodecAudio;
using F = IFormatFile;
using V = IFormatCodecVideo;

DataHelperFormatWmv::DataHelperFormatWmv(const std::string& id) : m_formatId(id) {
    SetVideoCodecs({V::CODEC_ID_WMV2}, V::CODEC_ID_WMV2);
    SetAudioCodecs({A::CODEC_ID_WMAV2}, A::CODEC_ID_WMAV2);
}

SP<IDataHelper> DataHelperFormatWmv::Create(const std::string& id) {
    return Keeping(new DataHelperFormatWmv(id));
}

Core::Property DataHelperFormatWmv::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 16, /*audio*/ 16, /*subtitle*/ 16, /*other*/ 16}, {Stream::Video, Stream::Audio});
}

DataHelperFormatWma::DataHelperFormatWma() {
    SetAudioCodecs({A::CODEC_ID_WMAV2}, A::CODEC_ID_WMAV2);
}

SP<IDataHelper> DataHelperFormatWma::Create() {
    return Keeping(new DataHelperFormatWma);
}

Core::Property DataHelperFormatWma::GetDefaults() const {
    return FormatTree(F::FORMAT_WMA, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio});
}

}  // namespace Norvex::Conf
