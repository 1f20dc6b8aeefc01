#include <gmock/gmock.h>

#include "norvex/Norvex.h"

namespace {

using namespace Norvex::Conf;
using testing::HasSubstr;
using testing::Not;

TEST(Vocabulary, PatternDiffersFromPath) {
    const std::string pattern = IPreset::KEY_STREAMS + IPreset::INDEX + IPreset::STREAM_TYPE_AUDIO;
    EXPECT_THAT(pattern, Not(HasSubstr(Norvex::Core::Property::SEPARATOR)));
}

}  // namespace
