// Correction of DataHelperCodecFFMPEG.

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "norvex/Conf/DataHelpers/Codecs/DataHelperCodecFFMPEG.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;

constexpr Name withoutBFrames[] = {V::CODEC_ID_MJPEG, V::CODEC_ID_FLV1, V::CODEC_ID_WMV2, V::CODEC_ID_H263};

bool HasBFrames(const std::string& codecId) {
    return std::none_of(std::begin(withoutBFrames), std::end(withoutBFrames),
                        [&codecId](const std::string& other) { return other == codecId; });
}

void AddDefault(Property& tree, const Property& defaults, const std::string& tag) {
    if (!tree.ChildExists(tag) && defaults.ChildExists(tag)) tree.SetChild(tag, defaults[tag]);
}

}  // namespace

void DataHelperCodecFFMPEG::CorrectFormatCodec(Property& tree) const {
    switch (m_mediaType) {
        case MediaType::Video: {
            CorrectBitrate(tree);
            const Property defaults = GetDefaults();
            AddDefault(tree, defaults, V::TAG_MAX_B_FRAME_SEQUENCE);
            AddDefault(tree, defaults, V::TAG_MAX_I_FRAME_INTERVAL);
            if (!HasBFrames(m_codecId)) tree.RemoveChild(V::TAG_MAX_B_FRAME_SEQUENCE);
            return;
        }
        case MediaType::Audio:
            // A helper's bitrate rule may depend on rate and layout.
            CorrectAudioResamplerSettings(tree);
            CorrectBitrate(tree);
            return;
        default: {
            HelperException exception;
            exception << TagDescription("Unknown stream type");
            NORVEX_THROW(AddStack(exception));
        }
    }
}

void DataHelperCodecFFMPEG::CorrectAudioResamplerSettings(Property& tree) const {
    RuleList rules;
    GetValidationRules(rules);
    for (const std::string* tag : {&A::TAG_SAMPLE_RATE, &A::TAG_SAMPLE_FORMAT, &A::TAG_LAYOUT}) {
        Property& value = tree[*tag];
        // The first rule about the tag decides, which is the encoder's where the encoder declares a list.
        const auto rule = std::find_if(rules.begin(), rules.end(), [tag](const auto& candidate) {
            return candidate.second->GetSecondPath().find(*tag) != std::string::npos;
        });
        if (rule == rules.end() || rule->second->GetSecondConstraint()->Fixup(value)) continue;
        NORVEX_THROW(
            AddStack(std::logic_error("Can't fix value [" + *tag + "] = " + Core::PropertyValueToString(value) +
                                      " for encoder [" + m_codecId + "]")));
    }
}

void DataHelperCodecFFMPEG::CorrectBitrate(Property& tree) const {
    const Property defaults = GetDefaults();
    ConstraintMap constraints;
    GetConstraints(constraints);
    for (const std::string* tag : {&V::TAG_BITRATE_MODE, &V::TAG_BITRATE, &V::TAG_QUALITY}) {
        const auto writeDefault = [&tree, &defaults, tag] {
            if (defaults.ChildExists(*tag)) tree.SetChild(*tag, defaults[*tag]);
        };
        // A value without a constraint does not count as legal.
        bool isLegal = false;
        try {
            const auto constraint = constraints.find(*tag);
            isLegal =
                tree.ChildExists(*tag) && constraint != constraints.end() && constraint->second->Fixup(tree[*tag]);
        } catch (...) {
            writeDefault();
            throw;
        }
        if (!isLegal) writeDefault();
    }
}

}  // namespace Norvex::Conf
