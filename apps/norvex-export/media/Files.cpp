#include "Files.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <random>
#include <set>
#include <string_view>

extern "C" {
#include <libavutil/error.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

namespace fs = std::filesystem;

namespace {

/// What must not outlive the program.
struct Unfinished {
    std::mutex mutex;
    std::set<fs::path> files;
    std::set<fs::path> folders;
};

/// It is never destroyed: the program may be ended while it is ending.
Unfinished& GetUnfinished() {
    static auto& unfinished = *new Unfinished;
    return unfinished;
}

std::string RandomName() {
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuv";
    std::random_device device;
    std::string name = "norvex-export-";
    for (int i = 0; i < 16; ++i) name += digits[device() % digits.size()];
    return name;
}

/// Where links lead to, so that they stay and what they lead to is replaced, be it there yet or not.
fs::path Resolve(const std::string& name) {
    std::error_code error;
    fs::path path = fs::absolute(name, error);
    constexpr int patience = 40;  // links may lead in a circle
    for (int i = 0; i < patience && fs::is_symlink(path, error); ++i) {
        path = path.parent_path() / fs::read_symlink(path, error);
    }
    const fs::path resolved = fs::weakly_canonical(path, error);
    return error ? path : resolved;
}

bool IsSameFile(const std::string& one, const std::string& two) {
    std::error_code ignored;
    return fs::equivalent(one, two, ignored) || Resolve(one) == Resolve(two);
}

}  // namespace

std::string FileUrl(const std::string& path) {
    return "file:" + path;
}

void RequireReadAgain(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    const bool isStream = fs::is_fifo(status) || fs::is_socket(status) || fs::is_character_file(status);
    if (isStream || (path == "-" && !fs::exists(status))) {
        throw MediaError("cannot open " + Quoted(path) + ": an input is read more than once and must be a file");
    }
}

void RemoveUnfinished() {
    Unfinished& unfinished = GetUnfinished();
    unfinished.mutex.lock();  // and never unlocked: nothing is finished from here on, and nothing begun
    std::error_code error;
    constexpr int patience = 100;  // an encoder may be making a file just now
    for (const fs::path& folder : unfinished.folders) {
        for (int i = 0; i < patience && fs::exists(folder, error); ++i) fs::remove_all(folder, error);
    }
    // A muxer might open its file again after it was removed, and make it anew.
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    for (const fs::path& file : unfinished.files) unlink(file.c_str());
}

PendingFile::PendingFile(const std::string& target) : m_name(Quoted(target)), m_target(Resolve(target)) {
    RequireWritable(target, {});
    std::error_code error;
    const fs::file_status status = fs::status(m_target, error);
    if (fs::exists(status)) m_mode = status.permissions();
    const std::lock_guard<std::mutex> lock(GetUnfinished().mutex);
    // A name of its own, not one made of the target's: that one may be as long as a name can be.
    const fs::path extension = m_target.extension();
    for (;;) {
        m_path = m_target.parent_path() / ("." + RandomName() + extension.string());
        if (std::FILE* const file = std::fopen(m_path.string().c_str(), "wbx")) {
            std::fclose(file);
            GetUnfinished().files.insert(m_path);
            std::error_code ignored;
            constexpr auto ours = fs::perms::owner_read | fs::perms::owner_write;
            if (m_mode != fs::perms::unknown) fs::permissions(m_path, m_mode | ours, ignored);
            return;
        }
        if (errno != EEXIST) Fail("cannot write " + m_name, AVERROR(errno));
    }
}

PendingFile::~PendingFile() {
    const std::lock_guard<std::mutex> lock(GetUnfinished().mutex);
    std::error_code ignored;
    if (!m_committed) fs::remove(m_path, ignored);
    GetUnfinished().files.erase(m_path);
}

std::uintmax_t PendingFile::Size() const {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(m_path, error);
    if (error) Fail("cannot read the size of " + m_name, error);
    return size;
}

void PendingFile::Write(const std::string& text) const {
    std::ofstream file(m_path, std::ios::binary);
    if (!file.write(text.data(), static_cast<std::streamsize>(text.size())) || !file.flush()) {
        Fail("cannot write " + m_name, AVERROR(errno));
    }
}

void PendingFile::Commit() {
    const std::lock_guard<std::mutex> lock(GetUnfinished().mutex);
    std::error_code error;
    if (m_mode != fs::perms::unknown) fs::permissions(m_path, m_mode, error);
    fs::rename(m_path, m_target, error);
    if (error) Fail("cannot write " + m_name, error);
    GetUnfinished().files.erase(m_path);
    m_committed = true;
}

TemporaryDirectory::TemporaryDirectory() {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error) Fail("there is no directory for temporary files", error);
    const std::lock_guard<std::mutex> lock(GetUnfinished().mutex);
    m_path = parent / RandomName();
    fs::create_directory(m_path, error);
    if (error) Fail("cannot make the directory " + Quoted(m_path.string()), error);
    GetUnfinished().folders.insert(m_path);
    fs::permissions(m_path, fs::perms::owner_all, error);
}

TemporaryDirectory::~TemporaryDirectory() {
    const std::lock_guard<std::mutex> lock(GetUnfinished().mutex);
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
    GetUnfinished().folders.erase(m_path);
}

}  // namespace NorvexExport::Media

namespace NorvexExport {

void RequireWritable(const std::string& path, const std::vector<TakenFile>& taken) {
    namespace fs = std::filesystem;
    const std::string what = "cannot write " + Media::Quoted(path);
    for (const TakenFile& other : taken) {
        if (!other.path.empty() && Media::IsSameFile(path, other.path))
            throw MediaError(what + ": it is " + other.what);
    }
    const fs::path target = Media::Resolve(path);
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (fs::is_directory(status)) Media::Fail(what, AVERROR(EISDIR));
    // Renaming over a device or a pipe would put a file in its place.
    if (fs::exists(status) && !fs::is_regular_file(status)) throw MediaError(what + ": it is not a regular file");
    // To rename over a file takes no leave of its owner. The superuser may write to any, and is held to the same.
    constexpr auto writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const bool isForbidden = fs::exists(status) && ((status.permissions() & writable) == fs::perms::none ||
                                                    access(target.c_str(), W_OK) != 0);
    if (isForbidden) Media::Fail(what, AVERROR(EACCES));
    const fs::path folder = target.parent_path();
    if (!fs::exists(folder, error)) {
        throw MediaError(what + ": there is no folder " + Media::Quoted(fs::path(path).parent_path().string()));
    }
    if (access(folder.c_str(), W_OK | X_OK) != 0) Media::Fail(what, AVERROR(errno));
}

}  // namespace NorvexExport
