#pragma once

#include <functional>
#include <string>
#include <vector>

#include "norvex/Conf/DataHelpers/Lookup/DataHelpers.h"

/// What hosts have registered, and how far the tables are. Not for hosts.

namespace Norvex::Conf {

/// The tables are built in two steps, of which the second asks for the first.
enum class Tables {
    Codecs,   ///< audio codecs, video codecs and filters
    Formats,  ///< containers
};

/// A helper to be made when its table is built. For a filter the kind is its class id, and the id is empty.
struct Registration {
    std::string kind;
    std::string id;
    DataHelperMaker make;
};

/// Takes all of them. Throws RegistrationException as RegisterDataHelper does, and takes none then.
void Register(std::vector<Registration> registrations);

/// The same, but leaves out whatever was registered under the same kind and id before.
void RegisterWhatIsMissing(std::vector<Registration> registrations);

/// Stands while this thread builds one step's tables. Unless it is finished, what was registered waits for the next
/// attempt.
class TableBuild {
public:
    explicit TableBuild(Tables tables);
    ~TableBuild();
    TableBuild(const TableBuild&) = delete;
    TableBuild& operator=(const TableBuild&) = delete;

    /// Makes what was registered for these tables, in the order of registration. Throws RegistrationException for a
    /// function that gives null, and whatever the functions throw.
    using Take = std::function<void(const Registration& registration, SP<const IDataHelper> helper)>;
    void MakeRegistered(const Take& take) const;

    void Finish();

private:
    const Tables m_tables;
    bool m_isFinished = false;
};

/// Whether a helper waits for these tables to be built.
bool HasRegistered(Tables tables);

/// Throws RegistrationException where the calling thread is building these tables, or those that they stand on.
void RequireNotWithinBuild(Tables tables);

}  // namespace Norvex::Conf
