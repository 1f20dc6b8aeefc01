#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/FakeConstraintConsumer.h"
#include "norvex/Conf/DataHelpers/Constraints/PairValidationRule.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Queries/FormatValidator.h"
#include "norvex/interfaces/Conf/IPreset.h"

// The containers of the second set: of sound and of pictures, and classic ones that carry more. Which there are, and
// what they carry, stands in ModernSet.cpp.

namespace Norvex::Conf {

namespace {

std::vector<std::string> CodecsIn(const IPropertyConstraint& constraint) {
    const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
    constraint.FillValueList(consumer);
    std::vector<std::string> codecs;
    for (const Core::Property& codec : consumer->GetValue()) codecs.push_back(codec.GetString());
    return codecs;
}

/// The classic list with what came behind it, and without what is never carried.
std::vector<std::string> Extended(std::vector<std::string> codecs, const std::vector<std::string>& more,
                                  const std::vector<std::string>& never) {
    const auto holds = [](const std::vector<std::string>& list, const std::string& codec) {
        return std::find(list.begin(), list.end(), codec) != list.end();
    };
    for (const std::string& codec : more) {
        if (!holds(codecs, codec)) codecs.push_back(codec);
    }
    codecs.erase(
        std::remove_if(codecs.begin(), codecs.end(), [&](const std::string& codec) { return holds(never, codec); }),
        codecs.end());
    return codecs;
}

}  // namespace

DataHelperFormatSound::DataHelperFormatSound(Row row) : m_row(std::move(row)) {
    SetAudioCodecs(m_row.muxer.empty()
                       ? m_row.codecs
                       : FormatValidator::Instance().GetSupportedAudioCodecs(m_row.muxer, m_row.codecs, m_row.never),
                   m_row.codecs.front());
}

Core::Property DataHelperFormatSound::GetDefaults() const {
    return FormatTree(m_row.id, {{IFormatCodec::TAG_GLOBAL_HEADER, m_row.globalHeader}},
                      {/*video*/ 0, /*audio*/ 1, /*subtitle*/ 0, /*other*/ 0}, {Stream::Audio});
}

DataHelperFormatPicture::DataHelperFormatPicture(const std::string& id, const std::string& codec) : m_formatId(id) {
    SetVideoCodecs({codec}, codec);
}

Core::Property DataHelperFormatPicture::GetDefaults() const {
    return FormatTree(m_formatId, {{IFormatCodec::TAG_GLOBAL_HEADER, false}},
                      {/*video*/ 1, /*audio*/ 0, /*subtitle*/ 0, /*other*/ 0}, {Stream::Video});
}

DataHelperFormatExtended::DataHelperFormatExtended(const Row& row)
    : m_classic(row.make()), m_classicFormat(dynamic_cast<const DataHelperFormatBase&>(*m_classic)) {
    ConstraintMap constraints;
    m_classic->GetConstraints(constraints);
    const auto holds = [&constraints](const std::string& type, const std::string& kind) {
        return constraints.count(StreamCodecPattern(type, kind)) != 0;
    };
    if (holds(IPreset::STREAM_TYPE_VIDEO, IPreset::KEY_FILTER_VIDEO_CODEC)) {
        SetVideoCodecs(Extended(CodecsIn(*m_classicFormat.VideoCodecsConstraint()), row.video, row.never),
                       m_classicFormat.DefaultVideoCodec());
    }
    if (holds(IPreset::STREAM_TYPE_AUDIO, IPreset::KEY_FILTER_AUDIO_CODEC)) {
        SetAudioCodecs(Extended(CodecsIn(*m_classicFormat.AudioCodecsConstraint()), row.audio, row.never),
                       m_classicFormat.DefaultAudioCodec());
    }
}

Core::Property DataHelperFormatExtended::GetDefaults() const {
    return m_classic->GetDefaults();
}

void DataHelperFormatExtended::GetRequiredObjects(ObjectList& objects) const {
    m_classic->GetRequiredObjects(objects);
}

void DataHelperFormatExtended::GetValidationRules(RuleList& rules) const {
    RuleList classic;
    m_classic->GetValidationRules(classic);
    for (const auto& [key, rule] : classic) {
        SP<IPropertyConstraint> condition = rule->GetFirstConstraint();
        if (m_videoCodecsConstraint && condition == m_classicFormat.VideoCodecsConstraint()) {
            condition = m_videoCodecsConstraint;
        } else if (m_audioCodecsConstraint && condition == m_classicFormat.AudioCodecsConstraint()) {
            condition = m_audioCodecsConstraint;
        }
        rules.emplace_back(key, PairValidationRule::Create(rule->GetFirstPath(), condition, rule->GetSecondPath(),
                                                           rule->GetSecondConstraint()));
    }
}

void DataHelperFormatExtended::GetConstraints(ConstraintMap& constraints) const {
    m_classic->GetConstraints(constraints);
    FormatHelper::GetConstraints(constraints);
}

}  // namespace Norvex::Conf
