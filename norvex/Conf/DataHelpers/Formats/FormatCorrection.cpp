// Correction of DataHelperFormatBase.

#include "norvex/Conf/DataHelpers/Answers.h"
#include "norvex/Conf/DataHelpers/Constraints/FakeConstraintConsumer.h"
#include "norvex/Conf/DataHelpers/Formats/DataHelperFormatBase.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;

/// A boolean set corrects nothing by itself; where it lists one value only, there is no doubt which is meant. What any
/// other constraint left alone stays.
void TakeOnlyBoolean(const IPropertyConstraint& constraint, Property& value) {
    const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
    constraint.FillValueList(consumer);
    const Property values = consumer->GetValue();
    if (values.Count() == 1 && values[0].GetType() == PT_BOOL) value.CopyDataFrom(values[0]);
}

/// Applies to one value, in order, every rule that ties it to the codec. The rules speak in paths of a preset.
void CorrectProperty(Property& value, const std::string& codecIdPath, const std::string& rulePath,
                     const Property& codecId, const ReadRules& rules) {
    for (const ReadRule& read : rules) {
        if (read.rule->GetFirstPath() != codecIdPath || read.rule->GetSecondPath() != rulePath) continue;
        if (!read.first->IsValid(codecId)) continue;
        if (read.second->IsValid(value) || read.second->Fixup(value)) continue;
        TakeOnlyBoolean(*read.second, value);
    }
}

void Correct(Property& formatCodec, const ReadRules& rules) {
    const Property& codecId = formatCodec[V::TAG_CODEC_ID];
    const auto correct = [&](const std::string& path, const std::string& codecIdPath, const std::string& rulePath) {
        if (!formatCodec.ChildExists(path)) return;
        CorrectProperty(formatCodec[path], codecIdPath, rulePath, codecId, rules);
    };
    if (formatCodec.GetName() == V::TAG_FORMAT_CODEC_VIDEO) {
        correct(V::TAG_FPS, VideoCodecIdPath(), FrameRatePath());
        correct(V::TAG_COVER_FLAG, VideoCodecIdPath(), CoverFlagPath());
        correct(ProfileKey(), VideoCodecIdPath(), FormatProfilePath());
    } else if (formatCodec.GetName() == A::TAG_FORMAT_CODEC_AUDIO) {
        correct(A::TAG_SAMPLE_RATE, AudioCodecIdPath(), SampleRatePath());
        correct(A::TAG_LAYOUT, AudioCodecIdPath(), LayoutPath());
    }
}

}  // namespace

void DataHelperFormatBase::CorrectFormatCodec(Property& formatCodec) const {
    if (const Answers* const kept = GetKeptAnswers()) return Correct(formatCodec, kept->rules);
    Correct(formatCodec, ReadRulesOf(RulesOf(*this)));
}

}  // namespace Norvex::Conf
