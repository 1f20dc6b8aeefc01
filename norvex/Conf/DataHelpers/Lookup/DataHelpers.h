#pragma once

#include <functional>
#include <string>

#include "norvex/interfaces/Conf/IDataHelper.h"

/// The front door: helpers by kind and id. A kind is one of IPreset::KEY_FORMAT, KEY_FILTER_VIDEO_CODEC and
/// KEY_FILTER_AUDIO_CODEC, where the id selects the helper; or the tag of a stream's codec section
/// (IFormatCodecVideo::TAG_FORMAT_CODEC_VIDEO, IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO), which stands for the codec
/// kind; or the class id of a filter, where the id is not read. Helpers are built on the first request and outlive
/// every static of the host; every lookup hands out the same object. May be called from any number of threads.

/// Never null. Throws Norvex::Conf::HelperException with TagClassIsNotFound for an unknown kind, and with
/// TagClassIsFound and TagTypeIsNotFound for an unknown id.
NORVEX_API const Norvex::SP<const Norvex::Conf::IDataHelper> CreateDataHelper(const std::string& type,
                                                                              const std::string& id);

/// A new proxy around the same helper, through which automatic values pass as legal. Throws as CreateDataHelper does.
NORVEX_API Norvex::SP<const Norvex::Conf::IDataHelper> CreateDataHelperAuto(const std::string& type,
                                                                            const std::string& id);

/// All helpers of one of the three kinds that have ids; other kinds throw HelperException with TagClassIsNotFound.
/// The map outlives every static of the host. Fill the encoder census of FormatValidator before the first request for
/// formats.
NORVEX_API const Norvex::Conf::IDataHelper::DataHelperMap& GetAvailableDataHelpers(const std::string& type);

namespace Norvex::Conf {

/// Makes a helper, never null.
using DataHelperMaker = std::function<SP<const IDataHelper>()>;

}  // namespace Norvex::Conf

/// Adds a helper of the host's own, or puts one in the place of the library's: under a kind that has ids and an id, or
/// under the class id of a filter and an empty id. Every lookup then finds it like any other; containers that ask
/// FFmpeg what they carry offer a codec that has been registered. The vocabulary's own lists (CodecLists.h), and the
/// container of projects, which holds those lists, stay as they are.
///
/// `make` is called when the table is built, on whatever thread asks first: once, or again after a build that failed.
/// Codecs and filters are made before containers, so that a container's constructor may ask FormatValidator and look
/// codecs up. A lookup of what is being built, or of a container while codecs are, throws RegistrationException.
///
/// Register before the first lookup, check of a preset or query of a container: codecs and filters before any table
/// stands, containers before that of containers does. Throws RegistrationException, and changes nothing, where it is
/// too late, where the kind and id were registered before, and for a kind that nothing can be registered under (the tag
/// of a stream's section stands for a kind in lookups alone), an empty id or an empty function. A function that gives
/// null fails the lookup that asked for the table with RegistrationException; what it throws passes.
///
/// The helper lives as long as the library's own, and its code must too: a plug-in that registered one is unloaded
/// last, after the library. May be called from any number of threads.
NORVEX_API void RegisterDataHelper(const std::string& type, const std::string& id, Norvex::Conf::DataHelperMaker make);
