#pragma once

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Norvex.h"

namespace NorvexTest {

/// A format helper with the codec lists and rules of a case, without streams until it is given some.
class TestFormat final : public Norvex::Conf::FormatHelper {
public:
    using FormatHelper::SetAudioCodecs;
    using FormatHelper::SetSubtitleTextCodecs;
    using FormatHelper::SetVideoCodecs;

    /// All four kinds of default streams; needs all three codec lists.
    Norvex::Core::Property GetDefaults() const override {
        return FormatTree("test", {{Norvex::Conf::IFormatFile::TAG_PSP_MODE, true}}, {1, 2, 3, 4},
                          {Stream::Subtitle, Stream::Cover, Stream::Audio, Stream::Video});
    }
    void GetValidationRules(Norvex::Conf::RuleList& out) const override {
        FormatHelper::GetValidationRules(out);
        out.insert(out.end(), rules.begin(), rules.end());
    }

    Norvex::Conf::RuleList rules;
};

}  // namespace NorvexTest
