// How a cost grows, and how often an operation goes to the heap.

#include "Row.h"
#include "Streams.h"
#include "Whole.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;

namespace {

SP<IPropertyConstraint> SetOf(long long size) {
    PairList<long long> values;
    for (long long i = 0; i < size; ++i) values.push_back(Pair(1000 * i));
    return ConstraintSet::Create(values);
}

/// A helper with so many rules about other things behind those of its encoder.
class ManyRules final : public RefCounted<DataHelperCodecFFMPEG> {
public:
    explicit ManyRules(long long count)
        : RefCounted<DataHelperCodecFFMPEG>(A::CODEC_ID_AAC, MediaType::Audio), m_count(count) {}

    void GetValidationRules(RuleList& rules) const override {
        DataHelperCodecFFMPEG::GetValidationRules(rules);
        for (long long i = 0; i < m_count; ++i) {
            rules.emplace_back("/", PairValidationRule::Create("a/path", m_any, "another/path", m_any));
        }
    }

private:
    const long long m_count;
    const SP<IPropertyConstraint> m_any = ConstraintMethod::CreateAlwaysTrue("");
};

Core::Property TreeOf(long long nodes) {
    Core::Property tree("tree");
    for (long long i = 1; i < nodes; ++i) tree.CreateChildT(std::to_string(i), i);
    return tree;
}

Operation CheckInSet(long long size) {
    return [set = SetOf(size), value = Core::Property("value", 1000 * (size - 1))] { set->IsValid(value); };
}

Operation MendInSet(long long size) {
    const auto set = SetOf(size);
    return [set, value = Core::Property("value", -1)]() mutable {
        value = -1;
        set->Fixup(value);
    };
}

Operation CorrectByRules(long long count) {
    const SP<const IDataHelper> helper(new ManyRules(count));
    const AudioCase& audio = FindCase("aac");
    return [helper, &audio, stream = AskedStream(audio)]() mutable {
        AskAgain(stream, audio);
        helper->CorrectFormatCodec(stream);
    };
}

Operation CopyTree(long long nodes) {
    return [tree = TreeOf(nodes)] { const Core::Property copy(tree); };
}

/// A helper that changes every value of a stream.
class ChangesAll final : public RefCounted<DataHelperCodecFFMPEG> {
public:
    ChangesAll() : RefCounted<DataHelperCodecFFMPEG>("none", MediaType::Audio) {}

    void CorrectFormatCodec(Core::Property& tree) const override {
        for (Core::Property& value : tree) value = value.GetInt64() + 1;
    }
};

Operation ReportChanges(long long values) {
    const NamedHelper named = {IPreset::KEY_FILTER_AUDIO_CODEC, "none", SP<const IDataHelper>(new ChangesAll)};
    return [named, stream = TreeOf(values + 1)]() mutable { CorrectWithReport(stream, {named}); };
}

Operation FindByName(long long children) {
    return [tree = TreeOf(children + 1), name = std::to_string(children)] { tree.ChildExists(name); };
}

Operation FollowPath(long long depth) {
    Core::Property tree("tree");
    Core::Property* node = &tree;
    std::string path;
    for (long long i = 0; i < depth; ++i) {
        node = &node->SetChild("step");
        path += i == 0 ? "step" : "/step";
    }
    return [tree, path] { tree.ChildExists(path); };
}

Operation Correct(const char* codec) {
    const AudioCase& audio = FindCase(codec);
    return [&audio, helper = AudioHelper(codec), stream = AskedStream(audio)]() mutable {
        AskAgain(stream, audio);
        helper->CorrectFormatCodec(stream);
    };
}

}  // namespace

std::vector<Cost> GrowthCosts() {
    return {
        {"checking a value in a set", "values", {10, 100, 1000}, CheckInSet},
        {"mending a value by a set", "values", {10, 100, 1000}, MendInSet},
        {"correcting a stream", "further rules", {10, 100, 1000}, CorrectByRules},
        {"reporting a correction", "changed values", {10, 100, 1000}, ReportChanges},
        {"copying a tree", "nodes", {10, 100, 1000}, CopyTree},
        {"finding a child", "children", {10, 100, 1000}, FindByName},
        {"following a path", "steps", {1, 10, 100}, FollowPath},
    };
}

std::vector<Counted> CountedOperations() {
    const auto aac = AudioHelper("aac");
    const auto mpeg1 = CreateDataHelper(IPreset::KEY_FILTER_VIDEO_CODEC, "mpeg1video");
    RuleList rules;
    mpeg1->GetValidationRules(rules);
    Core::Property tree("preset");
    tree.SetChild(IPreset::KEY_FILTER_VIDEO_CODEC).SetChildT(IFormatCodec::TAG_CODEC_ID, "mpeg1video");
    tree.SetChild(Proc::IFilterFrameRate::CLASS_ID).SetChildT(IFormatCodecVideo::TAG_FPS, Core::Ratio(17, 1));
    std::vector<Counted> all;
    for (const Asked& asked : AskedOperations()) all.push_back({asked.what, asked.operation});
    const std::vector<Counted> others = {
        {"correct one stream, aac", Correct("aac")},
        {"correct one stream, mp3", Correct("mp3")},
        {"correct one stream, ac3", Correct("ac3")},
        {"correct one stream, flac", Correct("flac")},
        {"correct one stream, vorbis", Correct("vorbis")},
        {"correct one stream, pcm_s16le", Correct("pcm_s16le")},
        {"the defaults of aac", [aac] { aac->GetDefaults(); }},
        {"the constraints of aac",
         [aac] {
             ConstraintMap constraints;
             aac->GetConstraints(constraints);
         }},
        {"the rules of aac",
         [aac] {
             RuleList list;
             aac->GetValidationRules(list);
         }},
        {"one rule of mpeg1video, broken", [rule = rules.at(0).second, tree] { rule->IsValid(tree); }},
        {"looking one codec up", [] { CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, A::CODEC_ID_AAC); }},
        {"a tree of ten nodes", [] { TreeOf(10); }},
        {"opening FFmpeg's encoder, aac",
         [] {
             const AudioCase& audio = FindCase("aac");
             OpenEncoder(audio, audio.legalRate, audio.legalFormat);
         }},
    };
    all.insert(all.end(), others.begin(), others.end());
    return all;
}

}  // namespace NorvexBench
