/// The file that an export writes, and those that it needs for itself.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

namespace NorvexExport::Media {

/// The name under which FFmpeg opens exactly this file: without it a colon would make the name a protocol.
std::string FileUrl(const std::string& path);

/// An input is read more than once, which a pipe cannot be, and to open one may wait for ever. Throws MediaError.
void RequireReadAgain(const std::string& path);

/// A file that gets its real name only when it is complete, and is gone otherwise.
class PendingFile {
public:
    explicit PendingFile(const std::string& target);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile() {
        std::error_code ignored;
        if (!m_committed) std::filesystem::remove(m_path, ignored);
    }

    std::string Path() const { return m_path.string(); }
    const std::string& QuotedName() const { return m_name; }
    std::uintmax_t Size() const;
    void Commit();

private:
    /// Where a link leads to, so that the link stays and its target is replaced.
    static std::filesystem::path Resolve(const std::filesystem::path& target);

    /// Renaming over a device or a pipe would put a file in its place, and needs no leave of the file's owner.
    void RequireReplaceable();

    std::string m_name;
    std::filesystem::path m_target;
    std::filesystem::path m_path;
    std::filesystem::perms m_mode = std::filesystem::perms::unknown;  ///< of the file that is replaced
    bool m_committed = false;
};

class TemporaryDirectory {
public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string File(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}  // namespace NorvexExport::Media
