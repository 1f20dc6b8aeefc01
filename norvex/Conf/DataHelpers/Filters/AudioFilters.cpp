#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Filters/FilterHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterResample.h"

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using Proc::IResample;

constexpr Name layouts_resample[] = {A::TAG_CH_LAYOUT_UNKNOWN, A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO};

/// Hz, the book's own choice; -1 keeps the source's.
constexpr long long sampleRates_resample[] = {
    -1, 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000, 64000, 88200, 96000,
};

constexpr long long keepSampleRate = -1;

}  // namespace

SP<IDataHelper> DataHelperAudioFormatter::Create() {
    return Keeping(new DataHelperAudioFormatter);
}

Core::Property DataHelperAudioFormatter::GetDefaults() const {
    Core::Property filter(Proc::IFilterAudioFormatter::CLASS_ID);
    filter.SetChild(Proc::IAudioFormatter::CLASS_ID).SetChildT(IPreset::KEY_TYPE_ID, Proc::ImplNames::DEFAULT);
    filter.SetChildT(Proc::IFilterAudioFormatter::PACKET_DURATION, 100000);  // the book's own
    return filter;
}

SP<IDataHelper> DataHelperAudioResample::Create() {
    return Keeping(new DataHelperAudioResample);
}

Core::Property DataHelperAudioResample::GetDefaults() const {
    Proc::SettingsFilterResample settings;
    settings.layout = ChannelLayout::Stereo;
    settings.sampleFormat = SampleFormats::None;
    settings.sampleRate = 44100;
    return Proc::IFilterResample::Settings2Property(settings);
}

void DataHelperAudioResample::GetConstraints(ConstraintMap& constraints) const {
    constraints[Path(IResample::CLASS_ID, A::TAG_LAYOUT)] = OneOf(layouts_resample);
    constraints[Path(IResample::CLASS_ID, A::TAG_SAMPLE_RATE)] = OneOf(sampleRates_resample);
}

void DataHelperAudioResample::ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const {
    const long long sampleRate = preset[IResample::CLASS_ID][A::TAG_SAMPLE_RATE].GetInt64();
    if (sampleRate != keepSampleRate) stream[A::TAG_SAMPLE_RATE] = sampleRate;
    const std::string& layout = preset[IResample::CLASS_ID][A::TAG_LAYOUT].GetString();
    if (layout != A::TAG_CH_LAYOUT_UNKNOWN) stream[A::TAG_LAYOUT] = layout;
    // Optional, and in the filter's own node.
    if (preset.ChildExists(A::TAG_SAMPLE_FORMAT)) {
        const std::string& sampleFormat = preset[A::TAG_SAMPLE_FORMAT].GetString();
        stream.SetChildT(A::TAG_SAMPLE_FORMAT, sampleFormat);
        stream.SetChildT(A::TAG_BITS_PER_SAMPLE, SampleFmtRecord::Find(sampleFormat).bits);
    }
}

SP<IDataHelper> DataHelperAudioVolume::Create() {
    return Keeping(new DataHelperAudioVolume);
}

Core::Property DataHelperAudioVolume::GetDefaults() const {
    return Proc::IFilterAudioVolume::Settings2Property(Proc::SettingsFilterAudioVolume());
}

void DataHelperAudioVolume::GetConstraints(ConstraintMap& constraints) const {
    // Percent, the book's own choice.
    constraints[Proc::IFilterAudioVolume::VOLUME_VALUE] = ConstraintRange::Create(0LL, 200LL, 0LL);
}

}  // namespace Norvex::Conf
