#include "norvex/Conf/DataHelpers/Formats/FormatHelpers.h"

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"

namespace Norvex::Conf {

namespace {

using F = IFormatFile;
using P = IPreset;
using V = IFormatCodecVideo;

}  // namespace

void FormatHelper::GetRequiredObjects(ObjectList& /*objects*/) const {}

void FormatHelper::GetValidationRules(RuleList& /*rules*/) const {}

void FormatHelper::GetConstraints(ConstraintMap& constraints) const {
    const auto add = [&constraints](const std::string& streamType, const std::string& codecKey,
                                    const SP<IPropertyConstraint>& codecs) {
        if (codecs) constraints[StreamCodecPattern(streamType, codecKey)] = codecs;
    };
    add(P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, m_videoCodecsConstraint);
    add(P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, m_audioCodecsConstraint);
    add(P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC, m_subtitleTextCodecsConstraint);
}

Core::Property FormatHelper::FormatTree(const std::string& formatId, std::initializer_list<Branch> tags,
                                        const Limits& limits, std::initializer_list<Stream> streams) const {
    Core::Property root = Tree(P::KEY_FORMAT, {{F::TAG_CONTAINER, formatId}});
    for (const Branch& tag : tags) tag.AddTo(root);
    Branch(F::TAG_LIMITS,
           {
               {F::TAG_LIMITS_VIDEO, limits.video},
               {F::TAG_LIMITS_AUDIO, limits.audio},
               {F::TAG_LIMITS_SUBTITLE, limits.subtitle},
               {F::TAG_LIMITS_OTHER, limits.other},
           })
        .AddTo(root);

    Core::Property& all = root.SetChild(P::KEY_STREAMS);
    const auto fill = [](Core::Property& node, const std::string& type, const std::string& codecKey,
                         const std::string& codecId) {
        node.SetChildT(P::KEY_TYPE_ID, type);
        node.SetChild(codecKey).SetChildT(V::TAG_CODEC_ID, codecId);
    };
    for (const Stream stream : streams) {
        Core::Property& node = all.SetChild(std::to_string(all.Count()));
        switch (stream) {
            case Stream::Video:
            case Stream::Cover:
                fill(node, P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, DefaultVideoCodec());
                if (stream == Stream::Cover) node.SetChildT(V::TAG_COVER_FLAG, true);
                break;
            case Stream::Audio:
                fill(node, P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, DefaultAudioCodec());
                break;
            case Stream::Subtitle:
                fill(node, P::STREAM_TYPE_SUBTITLES_TEXT, P::KEY_FILTER_SUBTITLE_CODEC, DefaultSubtitleTextCodec());
                break;
        }
    }
    return root;
}

SoundWithCoverHelper::SoundWithCoverHelper(const std::vector<std::string>& audioCodecs,
                                           const std::string& defaultAudioCodec) {
    SetAudioCodecs(audioCodecs, defaultAudioCodec);
    SetVideoCodecs({V::CODEC_ID_MJPEG, V::CODEC_ID_PNG, V::CODEC_ID_BMP}, V::CODEC_ID_MJPEG);
}

void SoundWithCoverHelper::GetValidationRules(RuleList& rules) const {
    AddRule(rules, VideoCodecIdPath(), VideoCodecsConstraint(), CoverFlagPath(), Only(true));
}

}  // namespace Norvex::Conf
