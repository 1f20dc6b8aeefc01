#include "Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>
#include <string_view>

extern "C" {
#include <libavutil/error.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

namespace fs = std::filesystem;

namespace {

std::string RandomName() {
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuv";
    std::random_device device;
    std::string name = "norvex-export-";
    for (int i = 0; i < 16; ++i) name += digits[device() % digits.size()];
    return name;
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

PendingFile::PendingFile(const std::string& target) : m_name(Quoted(target)), m_target(Resolve(target)) {
    RequireReplaceable();
    // A name of its own, not one made of the target's: that one may be as long as a name can be.
    const fs::path extension = m_target.extension();
    for (;;) {
        m_path = m_target.parent_path() / ("." + RandomName() + extension.string());
        if (std::FILE* const file = std::fopen(m_path.string().c_str(), "wbx")) {
            std::fclose(file);
            std::error_code ignored;
            constexpr auto ours = fs::perms::owner_read | fs::perms::owner_write;
            if (m_mode != fs::perms::unknown) fs::permissions(m_path, m_mode | ours, ignored);
            return;
        }
        if (errno != EEXIST) Fail("cannot write " + m_name, AVERROR(errno));
    }
}

std::uintmax_t PendingFile::Size() const {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(m_path, error);
    if (error) Fail("cannot read the size of " + m_name, error);
    return size;
}

void PendingFile::Commit() {
    std::error_code error;
    if (m_mode != fs::perms::unknown) fs::permissions(m_path, m_mode, error);
    fs::rename(m_path, m_target, error);
    if (error) Fail("cannot write " + m_name, error);
    m_committed = true;
}

fs::path PendingFile::Resolve(const fs::path& target) {
    std::error_code error;
    fs::path resolved = fs::canonical(target, error);
    return error ? target : resolved;
}

void PendingFile::RequireReplaceable() {
    std::error_code error;
    const fs::file_status status = fs::status(m_target, error);
    if (status.type() == fs::file_type::directory) Fail("cannot write " + m_name, AVERROR(EISDIR));
    if (fs::exists(status) && status.type() != fs::file_type::regular) {
        throw MediaError("cannot write " + m_name + ": it is not a regular file");
    }
    if (!fs::exists(status)) return;
    m_mode = status.permissions();
    // The superuser may write to any file, and is asked to make this one writable first, as its owner would be.
    constexpr auto writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const bool isForbidden =
        (m_mode & writable) == fs::perms::none || faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0;
    if (isForbidden) Fail("cannot write " + m_name, AVERROR(EACCES));
}

TemporaryDirectory::TemporaryDirectory() {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error) Fail("there is no directory for temporary files", error);
    m_path = parent / RandomName();
    fs::create_directory(m_path, error);
    if (error) Fail("cannot make the directory " + Quoted(m_path.string()), error);
    fs::permissions(m_path, fs::perms::owner_all, error);
}

}  // namespace NorvexExport::Media
