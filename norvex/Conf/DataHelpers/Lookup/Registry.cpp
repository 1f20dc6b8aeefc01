#include "norvex/Conf/DataHelpers/Lookup/Registry.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/Exceptions.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"

namespace Norvex::Conf {

namespace {

enum class State { Open, Building, Built };

/// What waits for one step's tables. Once they stand, the functions are gone and the names stay.
struct Step {
    State state = State::Open;
    std::vector<Registration> registrations;
};

struct Registry {
    std::mutex mutex;
    Step codecs;
    Step formats;

    Step& Of(Tables tables) { return tables == Tables::Codecs ? codecs : formats; }
    bool IsTooLate(Tables tables) const {
        return formats.state != State::Open || (tables == Tables::Codecs && codecs.state != State::Open);
    }
};

Registry& GetRegistry() {
    static Registry& registry = *Lasting(std::make_unique<Registry>());
    return registry;
}

/// How many builds are going on, in all threads: while there is none, a lookup need not ask for its own thread's.
std::atomic<int> g_builds{0};
thread_local bool t_buildsCodecs = false;
thread_local bool t_buildsFormats = false;

bool& IsBuilding(Tables tables) {
    return tables == Tables::Codecs ? t_buildsCodecs : t_buildsFormats;
}

RegistrationException Failure(const std::string& description, const Registration& registration) {
    RegistrationException exception;
    exception << TagDescription(description)
              << TagDetails(registration.kind + (registration.id.empty() ? "" : " " + registration.id));
    AddStack(exception);
    return exception;
}

Tables TablesOf(const Registration& registration) {
    const std::string& kind = registration.kind;
    const bool isFormat = kind == IPreset::KEY_FORMAT;
    const bool isCodec = kind == IPreset::KEY_FILTER_AUDIO_CODEC || kind == IPreset::KEY_FILTER_VIDEO_CODEC;
    if ((isFormat || isCodec) && registration.id.empty()) {
        NORVEX_THROW(Failure("A container or codec is registered by its id.", registration));
    }
    const bool isAlias =
        kind == IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO || kind == IFormatCodecVideo::TAG_FORMAT_CODEC_VIDEO;
    if (kind.empty() || isAlias || (!isFormat && !isCodec && !registration.id.empty())) {
        RegistrationException exception = Failure("No helper is registered under this kind.", registration);
        exception << RegistrationException::TagClassIsNotFound(kind);
        NORVEX_THROW(exception);
    }
    return isFormat ? Tables::Formats : Tables::Codecs;
}

bool Holds(const std::vector<Registration>& list, const Registration& registration) {
    return std::any_of(list.begin(), list.end(), [&registration](const Registration& other) {
        return other.kind == registration.kind && other.id == registration.id;
    });
}

void Register(std::vector<Registration> registrations, bool leavesOutKnown) {
    std::vector<Registration> taken;
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for (Registration& registration : registrations) {
        const Tables tables = TablesOf(registration);
        const bool isKnown = Holds(registry.Of(tables).registrations, registration) || Holds(taken, registration);
        if (isKnown && leavesOutKnown) continue;
        if (registry.IsTooLate(tables)) {
            NORVEX_THROW(Failure("It is too late to register a helper: a table stands.", registration));
        }
        if (isKnown) NORVEX_THROW(Failure("A helper is registered already.", registration));
        if (!registration.make) NORVEX_THROW(Failure("There is no function that makes the helper.", registration));
        taken.push_back(std::move(registration));
    }
    for (const Tables tables : {Tables::Codecs, Tables::Formats}) {
        auto& list = registry.Of(tables).registrations;
        list.reserve(list.size() + taken.size());
    }
    // From here on nothing fails.
    for (Registration& registration : taken) {
        registry.Of(TablesOf(registration)).registrations.push_back(std::move(registration));
    }
}

}  // namespace

void Register(std::vector<Registration> registrations) {
    Register(std::move(registrations), false);
}

void RegisterWhatIsMissing(std::vector<Registration> registrations) {
    Register(std::move(registrations), true);
}

TableBuild::TableBuild(Tables tables) : m_tables(tables) {
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.Of(m_tables).state = State::Building;
    IsBuilding(m_tables) = true;
    ++g_builds;
}

TableBuild::~TableBuild() {
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    --g_builds;
    IsBuilding(m_tables) = false;
    if (!m_isFinished) registry.Of(m_tables).state = State::Open;
}

void TableBuild::MakeRegistered(const Take& take) const {
    // Not locked: a function may register something itself. While it is built, this list does not change.
    for (const Registration& registration : GetRegistry().Of(m_tables).registrations) {
        SP<const IDataHelper> helper = registration.make();
        if (!helper) NORVEX_THROW(Failure("The function that makes the helper gave none.", registration));
        take(registration, std::move(helper));
    }
}

void TableBuild::Finish() {
    std::vector<DataHelperMaker> used;  // they go when the lock is gone: what they hold may be anything
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for (Registration& registration : registry.Of(m_tables).registrations) used.push_back(std::move(registration.make));
    registry.Of(m_tables).state = State::Built;
    m_isFinished = true;
}

bool HasRegistered(Tables tables) {
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    return !registry.Of(tables).registrations.empty();
}

void RequireNotWithinBuild(Tables tables) {
    if (g_builds.load(std::memory_order_relaxed) == 0) return;
    if (!t_buildsCodecs && !(tables == Tables::Formats && t_buildsFormats)) return;
    RegistrationException exception;
    exception << TagDescription("A table of helpers is asked for from within its own build.");
    NORVEX_THROW(AddStack(exception));
}

}  // namespace Norvex::Conf
