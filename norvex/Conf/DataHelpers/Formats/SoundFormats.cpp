#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatFile.h"

// The formats of sound alone, or of sound with a cover picture. WAV and AIFF ask FFmpeg, both by the name of WAV.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using F = IFormatFile;

/// Hz, the book's own choice. The second is no usual rate of sound, and is meant.
constexpr long long sampleRates_au[] = {8000, 8192};

}  // namespace

DataHelperFormatMp3::DataHelperFormatMp3() : SoundWithCoverHelper({A::CODEC_ID_MP3}, A::CODEC_ID_MP3) {}

SP<IDataHelper> DataHelperFormatMp3::Create() {
    return Keeping(new DataHelperFormatMp3);
}

Core::Property DataHelperFormatMp3::GetDefaults() const {
    return FormatTree(F::FORMAT_MP3, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio, Stream::Cover});
}

DataHelperFormatFlac::DataHelperFormatFlac() : SoundWithCoverHelper({A::CODEC_ID_FLAC}, A::CODEC_ID_FLAC) {}

SP<IDataHelper> DataHelperFormatFlac::Create() {
    return Keeping(new DataHelperFormatFlac);
}

Core::Property DataHelperFormatFlac::GetDefaults() const {
    return FormatTree(F::FORMAT_FLAC, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio, Stream::Cover});
}

DataHelperFormatAAC::DataHelperFormatAAC() {
    SetAudioCodecs({A::CODEC_ID_AAC}, A::CODEC_ID_AAC);
}

SP<IDataHelper> DataHelperFormatAAC::Create() {
    return Keeping(new DataHelperFormatAAC);
}

Core::Property DataHelperFormatAAC::GetDefaults() const {
    return FormatTree(F::FORMAT_AAC, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Audio});
}

DataHelperFormatAC3::DataHelperFormatAC3() {
    SetAudioCodecs({A::CODEC_ID_AC3}, A::CODEC_ID_AC3);
}

SP<IDataHelper> DataHelperFormatAC3::Create() {
    return Keeping(new DataHelperFormatAC3);
}

Core::Property DataHelperFormatAC3::GetDefaults() const {
    return FormatTree(F::FORMAT_AC3, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Audio});
}

DataHelperFormatAu::DataHelperFormatAu() {
    SetAudioCodecs({A::CODEC_ID_PCM_S16BE}, A::CODEC_ID_PCM_S16BE);
}

SP<IDataHelper> DataHelperFormatAu::Create() {
    return Keeping(new DataHelperFormatAu);
}

Core::Property DataHelperFormatAu::GetDefaults() const {
    return FormatTree(F::FORMAT_AU, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 2, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio});
}

void DataHelperFormatAu::GetValidationRules(RuleList& rules) const {
    AddRule(rules, AudioCodecIdPath(), AudioCodecsConstraint(), SampleRatePath(), OneOf(sampleRates_au));
}

DataHelperFormatWav::DataHelperFormatWav(const std::string& id) : m_formatId(id) {
    FormatValidator& validator = FormatValidator::Instance();
    SetAudioCodecs(validator.GetSupportedAudioCodecs(F::FORMAT_WAV, {A::CODEC_ID_PCM_S16LE}, {}),
                   A::CODEC_ID_PCM_S16LE);
}

SP<IDataHelper> DataHelperFormatWav::Create(const std::string& id) {
    return Keeping(new DataHelperFormatWav(id));
}

Core::Property DataHelperFormatWav::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 16}, {Stream::Audio});
}

}  // namespace Norvex::Conf
