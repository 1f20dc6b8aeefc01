#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"

#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"
#include "norvex/Conf/DataHelpers/Lookup/DataHelperProxyAuto.h"
#include "norvex/Conf/DataHelpers/Lookup/Registry.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IPreset.h"

namespace {

using namespace Norvex;
using Conf::HelperException;
using Conf::IDataHelper;

/// The table of a kind that has ids, or null.
const IDataHelper::DataHelperMap* FindTable(const std::string& kind) {
    if (kind == Conf::IPreset::KEY_FORMAT) return &Conf::GetFormatTable();
    if (kind == Conf::IPreset::KEY_FILTER_AUDIO_CODEC) return &Conf::GetCatalogue().audioCodecs;
    if (kind == Conf::IPreset::KEY_FILTER_VIDEO_CODEC) return &Conf::GetCatalogue().videoCodecs;
    return nullptr;
}

HelperException UnknownKind(const std::string& kind) {
    HelperException exception;
    exception << HelperException::TagClassIsNotFound(kind);
    return exception;
}

const SP<const IDataHelper>& FindHelper(const std::string& kind, const std::string& id,
                                        const IDataHelper::DataHelperMap& table) {
    const auto helper = table.find(id);
    if (helper == table.end()) {
        HelperException exception;
        exception << HelperException::TagClassIsFound(kind) << HelperException::TagTypeIsNotFound(id);
        NORVEX_THROW(AddStack(exception));
    }
    return helper->second;
}

}  // namespace

const SP<const IDataHelper> CreateDataHelper(const std::string& type, const std::string& id) {
    if (const auto* table = FindTable(type)) return FindHelper(type, id, *table);

    const Conf::Catalogue& catalogue = Conf::GetCatalogue();
    if (const auto alias = catalogue.kindAliases.find(type); alias != catalogue.kindAliases.end()) {
        return CreateDataHelper(alias->second, id);
    }
    const auto filter = catalogue.filters.find(type);
    if (filter == catalogue.filters.end()) NORVEX_THROW(AddStack(UnknownKind(type)));
    return filter->second;
}

SP<const IDataHelper> CreateDataHelperAuto(const std::string& type, const std::string& id) {
    return Conf::DataHelperProxyAuto::Create(type, CreateDataHelper(type, id));
}

const IDataHelper::DataHelperMap& GetAvailableDataHelpers(const std::string& type) {
    const auto* const table = FindTable(type);
    if (table == nullptr) NORVEX_THROW(UnknownKind(type));
    return *table;
}

void RegisterDataHelper(const std::string& type, const std::string& id, Conf::DataHelperMaker make) {
    Conf::Register({{type, id, std::move(make)}});
}
