#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"

namespace Norvex::Conf {

/// One preset out of its sections, with every value where rules read it, so that a host does not have to know the
/// paths. A section is known by its name: a container's or codec's as GetDefaults gives it, a filter's, or the flat
/// node of one stream (IFormatCodecVideo::TAG_FORMAT_CODEC_VIDEO, IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO), whose
/// values become the codec's section and go into the filters' as well. What comes later takes the place of what came
/// before. The cover flag and the profile of the video codec's section go into the container's too. A section without
/// a name is left out.
NORVEX_API Core::Property AssemblePreset(const std::vector<Core::Property>& sections);

/// The same of the sections of a preset as its document has them: the children of `preset`.
NORVEX_API Core::Property AssembleDocument(const Core::Property& preset);

/// Where the flat node of a stream has the value that a rule reads at `presetPath`.
NORVEX_API std::string StreamPathOf(const std::string& presetPath);

/// Where the sections that a preset is assembled from, and so a preset's document, have that value.
NORVEX_API std::string DocumentPathOf(const std::string& presetPath);
/// Where an assembled preset has the value at `streamPath` of the flat node of that name: in the codec's section, and
/// in a filter or the container where rules read it there. Nowhere for a node of another name.
NORVEX_API std::vector<std::string> PresetPathsOf(const std::string& streamName, const std::string& streamPath);

}  // namespace Norvex::Conf
