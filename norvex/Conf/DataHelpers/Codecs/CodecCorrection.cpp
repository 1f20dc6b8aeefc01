// Correction of DataHelperCodecFFMPEG.

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>

#include "norvex/Conf/DataHelpers/Answers.h"
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

/// The defaults of a helper. Those of one that keeps its answers are made when somebody first reads them.
class Defaults {
public:
    Defaults(const IDataHelper& helper, const Answers* kept) : m_kept(kept) {
        if (kept == nullptr) m_asked = helper.GetDefaults();
    }

    void WriteTo(Property& tree, const std::string& tag) const {
        const Property& defaults = m_kept != nullptr ? m_kept->Defaults() : m_asked;
        if (defaults.ChildExists(tag)) tree.SetChild(tag, defaults[tag]);
    }

    void AddTo(Property& tree, const std::string& tag) const {
        if (!tree.ChildExists(tag)) WriteTo(tree, tag);
    }

private:
    const Answers* const m_kept;
    Property m_asked;
};

void CorrectFrameSequences(Property& tree, const Defaults& defaults, bool hasBFrames) {
    defaults.AddTo(tree, V::TAG_MAX_B_FRAME_SEQUENCE);
    defaults.AddTo(tree, V::TAG_MAX_I_FRAME_INTERVAL);
    if (!hasBFrames) tree.RemoveChild(V::TAG_MAX_B_FRAME_SEQUENCE);
}

void CorrectResampler(Property& tree, const ResamplerConstraints& constraints, const std::string& codecId) {
    const std::array tags = {&A::TAG_SAMPLE_RATE, &A::TAG_SAMPLE_FORMAT, &A::TAG_LAYOUT};
    for (std::size_t i = 0; i < tags.size(); ++i) {
        Property& value = tree[*tags[i]];
        if (!constraints[i] || constraints[i]->Fixup(value)) continue;
        NORVEX_THROW(AddStack(std::logic_error("Can't fix value [" + *tags[i] + "] = " +
                                               Core::PropertyValueToString(value) + " for encoder [" + codecId + "]")));
    }
}

void CorrectRateControl(Property& tree, const Defaults& defaults, const ConstraintMap& constraints) {
    for (const std::string* tag : {&V::TAG_BITRATE_MODE, &V::TAG_BITRATE, &V::TAG_QUALITY}) {
        // A value without a constraint does not count as legal.
        bool isLegal = false;
        try {
            const auto value = tree.FindChild(*tag);
            if (value != tree.end()) {
                const auto constraint = constraints.find(*tag);
                isLegal = constraint != constraints.end() && constraint->second && constraint->second->Fixup(*value);
            }
        } catch (...) {
            defaults.WriteTo(tree, *tag);
            throw;
        }
        if (!isLegal) defaults.WriteTo(tree, *tag);
    }
}

}  // namespace

void DataHelperCodecFFMPEG::CorrectFormatCodec(Property& tree) const {
    switch (m_mediaType) {
        case MediaType::Video:
            CorrectBitrate(tree);
            CorrectFrameSequences(tree, Defaults(*this, GetKeptAnswers()), HasBFrames(m_codecId));
            return;
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
    if (const Answers* const kept = GetKeptAnswers()) return CorrectResampler(tree, kept->resampler, m_codecId);
    CorrectResampler(tree, ResamplerConstraintsOf(RulesOf(*this)), m_codecId);
}

void DataHelperCodecFFMPEG::CorrectBitrate(Property& tree) const {
    const Answers* const kept = GetKeptAnswers();
    const Defaults defaults(*this, kept);
    if (kept != nullptr) return CorrectRateControl(tree, defaults, kept->constraints);
    ConstraintMap constraints;
    GetConstraints(constraints);
    CorrectRateControl(tree, defaults, constraints);
}

}  // namespace Norvex::Conf
