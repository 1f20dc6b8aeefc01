#include "norvex/Conf/DataHelpers/Formats/DataHelperFormatBase.h"

#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintCodecs.h"
#include "norvex/interfaces/Conf/Exceptions.h"

namespace Norvex::Conf {

namespace {

const char* const noVideo = "Video codecs constraint is not set";
const char* const noAudio = "Audio codecs constraint is not set";
const char* const noSubtitle = "Subtitle codecs constraint is not set";

[[noreturn]] void Fail(const std::string& description, const boost::source_location& where) {
    HelperException exception;
    exception << TagDescription(description);
    boost::throw_exception(AddStack(exception), where);
}

const SP<IPropertyConstraint>& Required(const SP<IPropertyConstraint>& constraint, const char* description) {
    if (!constraint) Fail(description, NORVEX_HERE);
    return constraint;
}

/// The default is kept in the constraint alone: it is what the constraint makes of a text that is no codec.
std::string DefaultOf(const SP<IPropertyConstraint>& constraint, const char* description) {
    Core::Property codecId{std::string(), std::string()};
    Required(constraint, description)->Fixup(codecId);
    return codecId.GetString();
}

}  // namespace

SP<IPropertyConstraint> DataHelperFormatBase::SetCodecConstraint(const std::vector<std::string>& codecs,
                                                                 const std::string& defaultCodec) {
    if (codecs.empty()) Fail("List of available codecs is empty", NORVEX_HERE);
    if (std::find(codecs.begin(), codecs.end(), defaultCodec) == codecs.end()) {
        // The spelling is what callers know.
        Fail("Default codec " + defaultCodec + " is not presented in list of avalible codecs", NORVEX_HERE);
    }
    std::vector<std::pair<std::string, std::string>> named;
    named.reserve(codecs.size());
    for (const std::string& codec : codecs) named.emplace_back(codec, codec);
    return ConstraintCodecs::Create(named, defaultCodec);
}

void DataHelperFormatBase::SetVideoCodecs(const std::vector<std::string>& codecs, const std::string& defaultCodec) {
    m_videoCodecsConstraint = SetCodecConstraint(codecs, defaultCodec);
    DropAnswers();
}

void DataHelperFormatBase::SetAudioCodecs(const std::vector<std::string>& codecs, const std::string& defaultCodec) {
    m_audioCodecsConstraint = SetCodecConstraint(codecs, defaultCodec);
    DropAnswers();
}

void DataHelperFormatBase::SetSubtitleTextCodecs(const std::vector<std::string>& codecs,
                                                 const std::string& defaultCodec) {
    m_subtitleTextCodecsConstraint = SetCodecConstraint(codecs, defaultCodec);
    DropAnswers();
}

SP<IPropertyConstraint> DataHelperFormatBase::VideoCodecsConstraint() const {
    return Required(m_videoCodecsConstraint, noVideo);
}

SP<IPropertyConstraint> DataHelperFormatBase::AudioCodecsConstraint() const {
    return Required(m_audioCodecsConstraint, noAudio);
}

SP<IPropertyConstraint> DataHelperFormatBase::SubtitleTextCodecsConstraint() const {
    return Required(m_subtitleTextCodecsConstraint, noSubtitle);
}

std::string DataHelperFormatBase::DefaultVideoCodec() const {
    return DefaultOf(m_videoCodecsConstraint, noVideo);
}

std::string DataHelperFormatBase::DefaultAudioCodec() const {
    return DefaultOf(m_audioCodecsConstraint, noAudio);
}

std::string DataHelperFormatBase::DefaultSubtitleTextCodec() const {
    return DefaultOf(m_subtitleTextCodecsConstraint, noSubtitle);
}

void DataHelperFormatBase::ApplyPresetSettings(const Core::Property& /*preset*/, Core::Property& /*stream*/) const {}

}  // namespace Norvex::Conf
