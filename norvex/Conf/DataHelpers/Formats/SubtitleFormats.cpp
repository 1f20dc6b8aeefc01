#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// Subtitle files.

namespace Norvex::Conf {

using F = IFormatFile;
using S = IFormatCodecSubtitle;

DataHelperFormatSubtitleText::DataHelperFormatSubtitleText(const std::string& id, const std::string& codec)
    : m_formatId(id) {
    SetSubtitleTextCodecs({codec}, codec);
}

SP<IDataHelper> DataHelperFormatSubtitleText::Create(const std::string& id, const std::string& codec) {
    return Keeping(new DataHelperFormatSubtitleText(id, codec));
}

Core::Property DataHelperFormatSubtitleText::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, true}},
                      {/*video*/ 0, /*audio*/ 0, /*subtitle*/ 1, /*other*/ 0}, {Stream::Subtitle});
}

DataHelperFormatSrt::DataHelperFormatSrt() {
    SetSubtitleTextCodecs({S::CODEC_ID_SRT, S::CODEC_ID_SUBRIP}, S::CODEC_ID_SRT);
}

SP<IDataHelper> DataHelperFormatSrt::Create() {
    return Keeping(new DataHelperFormatSrt);
}

Core::Property DataHelperFormatSrt::GetDefaults() const {
    return FormatTree(F::FORMAT_SRT, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 0, /*subtitle*/ 1, /*other*/ 0}, {Stream::Subtitle});
}

}  // namespace Norvex::Conf
