/// From settled trees to what the media half is told.
#pragma once

#include "Media.h"
#include "norvex/foundation/Property.h"

namespace NorvexExport {

/// Both throw RequestError for a number that no encoder takes. `resizeSection` is the section of the resizer that the
/// stream's size came from.
VideoJob MakeVideoJob(const Norvex::Core::Property& stream, const VideoSource& source,
                      const Norvex::Core::Property& resizeSection);
AudioJob MakeAudioJob(const Norvex::Core::Property& stream, const AudioSource& source);

}  // namespace NorvexExport
