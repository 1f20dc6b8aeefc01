// A host corrects by the container first and by the codec then. Where the other order would end elsewhere is pinned
// here, so that a new rule which makes the order matter is seen.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "support/RandomStreams.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;

/// Corrects a copy by both, and gives its leaves, or only that it failed.
std::map<std::string, std::string> Corrected(Property stream, const IDataHelper& first, const IDataHelper& second) {
    try {
        first.CorrectFormatCodec(stream);
        second.CorrectFormatCodec(stream);
    } catch (const std::exception&) {
        return {{"failure", ""}};
    }
    std::map<std::string, std::string> leaves;
    for (const Property& child : stream) leaves[child.GetName()] = Dump(child);
    return leaves;
}

/// Whether the container has a rule about the codec.
bool Rules(const IDataHelper& format, const std::string& kind, const std::string& codec) {
    const RuleList rules = CollectRules(format);
    return std::any_of(rules.begin(), rules.end(), [&](const auto& row) {
        return row.second->GetFirstPath() == kind + "/codec_id" &&
               row.second->GetFirstConstraint()->IsValid(Property("", codec));
    });
}

TEST(CorrectionOrder, MattersForTheseContainersAndCodecsAlone) {
    std::map<std::string, std::set<std::string>> differing;  // what differs, by container and codec
    for (const auto& [formatId, format] : GetAvailableDataHelpers("format")) {
        for (const std::string kind : {"video_codec", "audio_codec"}) {
            for (const auto& [codecId, codec] : GetAvailableDataHelpers(kind)) {
                if (!Rules(*format, kind, codecId)) continue;
                RandomStreams streams(formatId + codecId);
                for (int i = 0; i < 300; ++i) {
                    Property stream = streams.Next(kind);
                    stream.SetChildT("codec_id", codecId);
                    const auto usual = Corrected(stream, *format, *codec);
                    const auto other = Corrected(stream, *codec, *format);
                    if (usual == other) continue;
                    for (const auto& [name, leaf] : usual) {
                        const auto twin = other.find(name);
                        if (twin == other.end() || twin->second != leaf)
                            differing[formatId + ' ' + codecId].insert(name);
                    }
                }
            }
        }
    }
    std::string text;
    for (const auto& [pair, names] : differing) {
        text += pair + ':';
        for (const std::string& name : names) text += ' ' + name;
        text += '\n';
    }
    EXPECT_EQ(text,
              "au pcm_s16be: bitrate sample_rate\n"
              "flv mp3: bitrate sample_rate\n"
              "ipod mp3: bitrate\n"
              "m4v mp3: bitrate\n"
              "mp4 mp3: bitrate\n"
              "mxf pcm_s16le: bitrate\n"
              "swf mp3: bitrate sample_rate\n");
}

}  // namespace
