#include "Book.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <set>

#include "Classes.h"
#include "Gil.h"
#include "PythonHelper.h"
#include "norvex/Norvex.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;

/// A census that Python takes: a callable that gives the names of a codec's encoders.
class PythonCensus final : public RefCounted<Proc::ICodecFactory> {
public:
    explicit PythonCensus(py::object listEncoders) : m_listEncoders(std::move(listEncoders)) {}

    std::vector<std::string> ListEncoders(const std::string& codecId, bool /*onlyStable*/,
                                          bool /*onlySoftware*/) const override {
        return m_listEncoders.With([&codecId](const py::object& listEncoders) {
            std::vector<std::string> names;
            for (const py::handle name : Listed(Call(listEncoders, TextFrom(codecId))))
                names.push_back(name.cast<std::string>());
            return names;
        });
    }

private:
    const Held m_listEncoders;
};

/// What this module knows of the library's state. Never destroyed: threads may ask while the process ends.
struct Book {
    std::mutex mutex;
    std::atomic<bool> stands{false};
    bool isCounted = false;          ///< the census is taken
    SP<Proc::ICodecFactory> census;  ///< null: FFmpeg's
    std::set<std::string> filters;   ///< class ids; guarded by the interpreter's lock
};

Book& GetBook() {
    static Book* const book = new Book;
    return *book;
}

enum class Stage { None, Census, Tables };
/// What this thread is at: helpers and a census that are written in Python may ask in their turn.
thread_local Stage t_stage = Stage::None;

class AtStage {
public:
    explicit AtStage(Stage stage) { t_stage = stage; }
    ~AtStage() { t_stage = Stage::None; }
    AtStage(const AtStage&) = delete;
    AtStage& operator=(const AtStage&) = delete;
};

[[noreturn]] void Refuse(const std::string& sentence) {
    RegistrationException exception;
    exception << TagDescription(sentence);
    NORVEX_THROW(AddStack(exception));
}

void TakeCensus(Book& book) {
    if (book.isCounted) return;
    const AtStage stage(Stage::Census);
    FormatValidator::Instance().FillEncoders(book.census ? book.census : Proc::FFmpegCodecFactory::Create());
    book.isCounted = true;
    book.census.reset();
}

void BuildTables() {
    const AtStage stage(Stage::Tables);
    GetAvailableDataHelpers(IPreset::KEY_FILTER_AUDIO_CODEC);
    GetAvailableDataHelpers(IPreset::KEY_FORMAT);
}

/// Runs what the lock guards, which other threads may hold for as long as Python code runs.
template <class Operation>
void Locked(const Operation& operation) {
    WithoutGil([&operation] {
        Book& book = GetBook();
        const std::lock_guard<std::mutex> lock(book.mutex);
        operation(book);
    });
}

}  // namespace

void RequireBook() {
    if (GetBook().stands.load(std::memory_order_acquire)) return;
    // The library itself refuses what is not there yet.
    if (t_stage == Stage::Tables) return;
    // A thread that sleeps at the end of the interpreter may hold the lock.
    if (IsEnding()) Refuse("It is too late for the rule book: the interpreter ends.");
    if (t_stage == Stage::Census) Refuse("The rule book is asked for while its census is taken.");
    Locked([](Book& book) {
        if (book.stands) return;
        TakeCensus(book);
        BuildTables();
        book.stands.store(true, std::memory_order_release);
    });
}

void SetCensus(py::object listEncoders) {
    if (t_stage != Stage::None) Refuse("It is too late for another census: it is being taken.");
    // The former one goes behind the lock: what goes with it may be anything.
    SP<Proc::ICodecFactory> census(new PythonCensus(std::move(listEncoders)));
    Locked([&census](Book& book) {
        if (book.isCounted) Refuse("It is too late for another census: it has been taken.");
        book.census.swap(census);
    });
}

void RegisterHelper(const std::string& kind, const std::string& id, py::object make) {
    const auto held = std::make_shared<const Held>(std::move(make));
    const auto maker = [kind, id, held] { return MakeHelper(kind, id, *held); };
    // What is too late, the library says, also to who registers within a build.
    if (t_stage != Stage::None) {
        RegisterDataHelper(kind, id, maker);
    } else {
        Locked([&](Book& /*book*/) { RegisterDataHelper(kind, id, maker); });
    }
    if (id.empty()) GetBook().filters.insert(kind);
}

void RegisterModern() {
    if (t_stage != Stage::None) return RegisterModernHelpers();
    Locked([](Book& /*book*/) { RegisterModernHelpers(); });
}

std::vector<std::string> FilterIds() {
    std::set<std::string> ids = {Proc::IFilterAudioFormatter::CLASS_ID, Proc::IFilterAudioVolume::CLASS_ID,
                                 Proc::IFilterFrameRate::CLASS_ID, Proc::IFilterResample::CLASS_ID,
                                 Proc::IFilterResize::CLASS_ID};
    ids.insert(GetBook().filters.begin(), GetBook().filters.end());
    return {ids.begin(), ids.end()};
}

}  // namespace NorvexPython
