/// What people call containers, codecs and the rest, and what the rule book calls them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace NorvexApps {

enum class Named { Format, VideoCodec, AudioCodec, SubtitleCodec, Filter, Layout, SampleFormat };

/// What the catalogue has of a kind at this moment. Formats want the census of encoders taken before.
std::vector<std::string> IdsOf(Named kind);

/// The id that a name means: an id, another name of it, an extension of a container or FFmpeg's name of an encoder, in
/// any case and with any punctuation. A codec without rules, which only FFmpeg knows, is its own id. None where nothing
/// is meant.
std::optional<std::string> FindId(Named kind, const std::string& name);

/// The other names that people have for the ids of a kind, by id: small letters and digits alone.
std::map<std::string, std::vector<std::string>> OtherNamesOf(Named kind);

/// "there is no video codec 'h246'; did you mean 'h264'?", for a name that FindId knows nothing of.
std::string WhyUnknown(Named kind, const std::string& name);

/// "; did you mean 'list'?" with the few of the words that are spelled much like it, or nothing where none is.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& words);

}  // namespace NorvexApps
