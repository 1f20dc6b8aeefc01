#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace NorvexTest {

/// A new folder for as long as this lives. No other test has it, nor another run of this one at the same time.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "norvex-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category(), pattern);
        m_path = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    /// The path of a file in it.
    std::string File(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}  // namespace NorvexTest
