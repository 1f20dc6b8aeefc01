#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"

namespace Norvex::Proc {

using Core::Property;

Property IFilterResample::Settings2Property(const SettingsFilterResample& settings) {
    using A = Conf::IFormatCodecAudio;
    Property filter(CLASS_ID);
    Property& resample = filter.SetChild(IResample::CLASS_ID);
    resample.SetChildT(Conf::IPreset::KEY_TYPE_ID, settings.implementation);
    resample.SetChildT(A::TAG_LAYOUT, *Conf::LayoutRecord::Find(settings.layout).name);
    resample.SetChildT(A::TAG_SAMPLE_RATE, settings.sampleRate);
    if (settings.sampleFormat != SampleFormats::None) {
        filter.SetChildT(A::TAG_SAMPLE_FORMAT, Conf::SampleFmtRecord::Find(settings.sampleFormat).name);
    }
    return filter;
}

Property IFilterAudioVolume::Settings2Property(const SettingsFilterAudioVolume& settings) {
    Property filter(CLASS_ID);
    filter.SetChildT(VOLUME_VALUE, settings.volume);
    return filter;
}

Property IFilterFrameRate::MakeSettings(const Core::Ratio& frameRate) {
    Property filter(CLASS_ID);
    filter.SetChildT(Conf::IFormatCodecVideo::TAG_FPS, frameRate);
    return filter;
}

}  // namespace Norvex::Proc
