#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"

/// What people call the things of the rule book, for hosts to show: "H.264 (AVC)" for h264, "frame rate" for
/// frame_rate, "48 kHz" for 48000. They are looked up in the library's gettext domain each time, in UTF-8. Programs,
/// presets and the sentences of constraints and findings go by the ids, tags and values themselves. Nothing here throws
/// for what it is asked about.
///
/// What a host registered is not in the tables: a codec or container then has the name that FFmpeg describes it by, and
/// what FFmpeg does not know is named by its own id, with blanks for underscores.

namespace Norvex::Conf {

/// "H.264", "Matroska", "MPEG transport stream, Blu-ray". Kind and id are those of CreateDataHelper; of a filter, the
/// kind alone counts. Subtitle codecs have the kind IPreset::KEY_FILTER_SUBTITLE_CODEC.
NORVEX_API std::string NameForPeople(const std::string& kind, const std::string& id);

/// The name with what tells it from its like: "H.264 (AVC)", "PCM 16 bit (big-endian)", and of a container the
/// extension of its files, "Matroska (.mkv)".
NORVEX_API std::string FullNameForPeople(const std::string& kind, const std::string& id);

/// The extensions of a container's files, without the dot, the usual one first; those of FFmpeg's muxer for a container
/// that the tables lack, and empty where there is none.
NORVEX_API std::vector<std::string> FileExtensions(const std::string& formatId);

/// "bitrate", "frame rate", "audio codec": what the last tag of a path is called. Of a section, what it is about.
NORVEX_API std::string ParameterForPeople(const std::string& path);

/// What the numbers of the parameter at a path are counted in, for the field of a dialog: "bit/s", "Hz", "pixels".
/// Empty for what has no unit.
NORVEX_API std::string UnitForPeople(const std::string& path);

/// A value of the parameter at a path, which goes by its last tag, in its unit: "9.8 Mbit/s", "44.1 kHz",
/// "29.97 fps (30000/1001)", "1920x1080" of a node with width and height, "one pass", "16 bit, planar", "yes". A value
/// that leaves the choice to the source or to the system says so. Numbers have a point, in every language.
NORVEX_API std::string ValueForPeople(const std::string& path, const Core::Property& value);

}  // namespace Norvex::Conf
