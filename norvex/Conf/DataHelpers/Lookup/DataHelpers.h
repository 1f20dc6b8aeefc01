#pragma once

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
