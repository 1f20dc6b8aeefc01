#pragma once

#include <map>
#include <string>

#include "norvex/interfaces/Conf/IDataHelper.h"

/// What the lookup stands on. Not for hosts.

namespace Norvex::Conf {

/// The tables that need nothing of the host, built together on the first request for any of them.
struct Catalogue {
    IDataHelper::DataHelperMap audioCodecs;          ///< by codec id
    IDataHelper::DataHelperMap videoCodecs;          ///< by codec id
    IDataHelper::DataHelperMap filters;              ///< by class id
    std::map<std::string, std::string> kindAliases;  ///< the tag of a stream's codec section to the kind it means
};
const Catalogue& GetCatalogue();

/// Format helpers by container id, built on the first request, since formats ask for the encoder census.
const IDataHelper::DataHelperMap& GetFormatTable();

/// New format helpers, by the census as it is now.
IDataHelper::DataHelperMap MakeFormatTable();

}  // namespace Norvex::Conf
