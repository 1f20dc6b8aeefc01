// Legal streams, whole presets and reported corrections, against the time that a host can spare.

#include "Whole.h"

#include <atomic>
#include <stdexcept>
#include <thread>

#include "Streams.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;
using P = IPreset;
using V = IFormatCodecVideo;

namespace {

Core::Property LegalSound(const std::string& codec) {
    Core::Property stream = AskedStream(FindCase(codec));
    AudioHelper(codec)->CorrectFormatCodec(stream);
    return stream;
}

Core::Property LegalPicture() {
    Core::Property stream(V::TAG_FORMAT_CODEC_VIDEO);
    stream.SetChildT(V::TAG_WIDTH, 1920);
    stream.SetChildT(V::TAG_HEIGHT, 1080);
    stream.SetChildT(V::TAG_FPS, Core::Ratio(25, 1));
    const auto helper = CreateDataHelper(P::KEY_FILTER_VIDEO_CODEC, V::CODEC_ID_H264);
    helper->ApplyPresetSettings(helper->GetDefaults(), stream);
    helper->CorrectFormatCodec(stream);
    return stream;
}

Asked Legal(const std::string& codec, double bound, const std::string& kind, const Core::Property& legal) {
    return {"legal." + codec, "correct a legal stream, " + codec, bound,
            [helper = CreateDataHelper(kind, codec), stream = legal]() mutable { helper->CorrectFormatCodec(stream); }};
}

Asked CheckWhole() {
    Core::Property sound = LegalSound("aac");
    sound.SetChildT(A::TAG_LAYOUT, A::TAG_CH_LAYOUT_STEREO);  // the resampler offers no wider one
    std::vector<Core::Property> sections = {FindHelper(P::KEY_FORMAT, "mp4").helper->GetDefaults(), LegalPicture(),
                                            sound};
    for (const std::string& filter :
         {Proc::IFilterResample::CLASS_ID, Proc::IFilterFrameRate::CLASS_ID, Proc::IFilterResize::CLASS_ID}) {
        sections.insert(sections.begin(), CreateDataHelper(filter, "")->GetDefaults());
    }
    const Core::Property preset = AssemblePreset(sections);
    const auto helpers = HelpersOf(preset);
    if (helpers.size() != 6 || !CheckPreset(preset, helpers).empty()) throw std::runtime_error("no legal preset");
    return {"check.preset", "check a whole preset, mp4, h264, aac, filters", 3e-6,
            [preset, helpers] { CheckPreset(preset, helpers); }};
}

std::vector<NamedHelper> Reporting() {
    return {FindHelper(P::KEY_FORMAT, "mp4"), FindHelper(P::KEY_FILTER_AUDIO_CODEC, "aac")};
}

Asked ReportBroken() {
    const AudioCase& audio = FindCase("aac");
    return {"report.broken", "correct with a report, mp4 and aac, broken", 8e-6,
            [&audio, helpers = Reporting(), stream = AskedStream(audio)]() mutable {
                AskAgain(stream, audio);
                CorrectWithReport(stream, helpers);
            }};
}

/// Takes down who takes and gives back references.
template <class Base>
class Watched : public RefCounted<Base> {
public:
    explicit Watched(std::atomic<long long>& touched) : m_touched(touched) {}
    template <class Argument>
    Watched(Argument argument, std::atomic<long long>& touched)
        : RefCounted<Base>(argument, MediaType::Audio), m_touched(touched) {}
    std::uint32_t AddRef() const override { return ++m_touched, RefCounted<Base>::AddRef(); }
    std::uint32_t Release() const override { return ++m_touched, RefCounted<Base>::Release(); }

protected:
    std::atomic<long long>& m_touched;
};

class WatchedConstraint final : public Watched<IPropertyConstraint> {
public:
    WatchedConstraint(SP<const IPropertyConstraint> constraint, std::atomic<long long>& touched)
        : Watched<IPropertyConstraint>(touched), m_constraint(std::move(constraint)) {}
    void FillValueList(const SP<IConstraintConsumer>& consumer) const override {
        m_constraint->FillValueList(consumer);
    }
    bool IsValid(const Core::Property& value) const override { return m_constraint->IsValid(value); }
    bool Fixup(Core::Property& value) const override { return m_constraint->Fixup(value); }
    std::string Description(const std::string& name) const override { return m_constraint->Description(name); }

private:
    const SP<const IPropertyConstraint> m_constraint;
};

class WatchedRule final : public Watched<IValidationRule> {
public:
    WatchedRule(SP<IValidationRule> rule, std::atomic<long long>& touched)
        : Watched<IValidationRule>(touched), m_rule(std::move(rule)) {}
    bool IsValid(const Core::Property& root) const override { return m_rule->IsValid(root); }
    const std::string& GetFirstPath() const override { return m_rule->GetFirstPath(); }
    const std::string& GetSecondPath() const override { return m_rule->GetSecondPath(); }
    SP<IPropertyConstraint> GetFirstConstraint() const override { return Watch(m_rule->GetFirstConstraint()); }
    SP<IPropertyConstraint> GetSecondConstraint() const override { return Watch(m_rule->GetSecondConstraint()); }

private:
    SP<IPropertyConstraint> Watch(SP<const IPropertyConstraint> constraint) const {
        return SP<IPropertyConstraint>(new WatchedConstraint(std::move(constraint), m_touched));
    }

    const SP<IValidationRule> m_rule;
};

/// Says what AAC's helper says, and is corrected by the same code.
class WatchedHelper final : public Watched<DataHelperCodecFFMPEG> {
public:
    explicit WatchedHelper(std::atomic<long long>& touched)
        : Watched<DataHelperCodecFFMPEG>(A::CODEC_ID_AAC, touched), m_helper(AudioHelper(A::CODEC_ID_AAC)) {}
    Core::Property GetDefaults() const override { return m_helper->GetDefaults(); }
    void GetConstraints(ConstraintMap& out) const override {
        m_helper->GetConstraints(out);
        for (auto& [key, constraint] : out) constraint = new WatchedConstraint(constraint, m_touched);
    }
    void GetValidationRules(RuleList& out) const override {
        m_helper->GetValidationRules(out);
        for (auto& [key, rule] : out) rule = new WatchedRule(rule, m_touched);
    }

private:
    const SP<const IDataHelper> m_helper;
};

}  // namespace

std::vector<Asked> AskedOperations() {
    std::vector<Asked> all;
    for (const auto& [codec, bound] : {std::pair{"aac", 0.5e-6},
                                       {"mp3", 0.5e-6},
                                       {"ac3", 0.5e-6},
                                       {"flac", 0.4e-6},
                                       {"pcm_s16le", 0.4e-6},
                                       {"vorbis", 1.2e-6}}) {
        all.push_back(Legal(codec, bound, P::KEY_FILTER_AUDIO_CODEC, LegalSound(codec)));
    }
    const Core::Property picture = LegalPicture();
    const Core::Property sound = LegalSound("aac");
    all.push_back(Legal("h264", 0.5e-6, P::KEY_FILTER_VIDEO_CODEC, picture));
    const AudioCase& audio = FindCase("aac");
    all.push_back({"broken.aac", "correct a broken stream, aac", 0.9e-6,
                   [&audio, helper = AudioHelper("aac"), stream = AskedStream(audio)]() mutable {
                       AskAgain(stream, audio);
                       helper->CorrectFormatCodec(stream);
                   }});
    all.push_back({"container.mp4", "correct a stream of h264 by mp4", 0.2e-6,
                   [helper = CreateDataHelper(P::KEY_FORMAT, "mp4"), stream = picture]() mutable {
                       helper->CorrectFormatCodec(stream);
                   }});
    all.push_back({"container.all", "correct a stream of aac by all 64 containers", 15e-6, [stream = sound]() mutable {
                       for (const auto& [id, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
                           helper->CorrectFormatCodec(stream);
                       }
                   }});
    all.push_back(CheckWhole());
    all.push_back({"report.legal", "correct with a report, mp4 and aac, legal", 3e-6,
                   [helpers = Reporting(), stream = sound]() mutable { CorrectWithReport(stream, helpers); }});
    all.push_back(ReportBroken());
    return all;
}

long long CountReferences() {
    std::atomic<long long> touched{0};
    long long before = 0;
    {
        const SP<WatchedHelper> helper(new WatchedHelper(touched));
        helper->KeepAnswers();
        const std::vector<NamedHelper> named = {{P::KEY_FILTER_AUDIO_CODEC, "aac", helper}};
        const Core::Property preset = AssemblePreset({LegalSound("aac")});
        const auto work = [&] {
            const AudioCase& audio = FindCase("aac");
            Core::Property stream = AskedStream(audio);
            for (int i = 0; i < 1000; ++i) {
                AskAgain(stream, audio);
                helper->CorrectFormatCodec(stream);
                CheckPreset(preset, named);
            }
        };
        CheckPreset(preset, named);  // makes what is kept
        if (touched == 0) throw std::runtime_error("nothing is watched");
        before = touched;
        std::thread other(work);
        work();
        other.join();
        before = touched - before;
    }
    return before;
}

}  // namespace NorvexBench
