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

/// Removes what the files and folders below hold at this moment, and keeps all threads from making more: for the end of
/// the program out of turn, which must follow. It may be called while other threads are about anything.
void RemoveUnfinished();

/// A file that gets its real name only when it is complete, and is gone otherwise.
class PendingFile {
public:
    /// Throws MediaError as RequireWritable does.
    explicit PendingFile(const std::string& target);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile();

    std::string Path() const { return m_path.string(); }
    const std::string& QuotedName() const { return m_name; }
    std::uintmax_t Size() const;
    void Write(const std::string& text) const;
    void Commit();

private:
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
    ~TemporaryDirectory();

    std::string File(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}  // namespace NorvexExport::Media
