#include "norvex/Conf/DataHelpers/Queries/GlobalHeaderFunctions.h"

#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"
#include "norvex/interfaces/Conf/CodecLists.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"
#include "norvex/interfaces/Conf/IPreset.h"

namespace Norvex::Conf {

namespace {

bool HasGlobalHeader(const IDataHelper& helper) {
    const Core::Property defaults = helper.GetDefaults();
    return defaults.ChildExists(IFormatCodec::TAG_GLOBAL_HEADER) && defaults[IFormatCodec::TAG_GLOBAL_HEADER].GetBool();
}

}  // namespace

bool FormatHasGlobalHeader(const std::string& name) {
    HelperException exception;
    if (name.empty()) {
        exception << TagDescription("Empty name while getting global header flag.");
        NORVEX_THROW(AddStack(exception));
    }
    const SP<const IDataHelper> helper = CreateDataHelper(IPreset::KEY_FORMAT, name);
    if (!helper) {
        exception << TagDescription("Can't get helper for format.") << TagDetails(name);
        NORVEX_THROW(AddStack(exception));
    }
    return HasGlobalHeader(*helper);
}

bool CodecHasGlobalHeader(const std::string& name) {
    SP<const IDataHelper> helper;
    if (IsVideoCodec(name)) {
        helper = CreateDataHelper(IPreset::KEY_FILTER_VIDEO_CODEC, name);
    } else if (IsAudioCodec(name)) {
        helper = CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, name);
    } else {
        // Beyond the vocabulary there may be a helper that was registered.
        for (const std::string& kind : {IPreset::KEY_FILTER_VIDEO_CODEC, IPreset::KEY_FILTER_AUDIO_CODEC}) {
            const auto& helpers = GetAvailableDataHelpers(kind);
            if (const auto row = helpers.find(name); !helper && row != helpers.end()) helper = row->second;
        }
    }
    return helper && HasGlobalHeader(*helper);
}

}  // namespace Norvex::Conf
