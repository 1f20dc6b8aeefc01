#pragma once

#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/TemporaryFolder.h"

namespace NorvexTest {

/// The bytes of a gettext catalogue with these messages, beside its header, which stands under the empty message.
inline std::string GettextCatalogue(std::map<std::string, std::string> messages) {
    messages.emplace("", "Content-Type: text/plain; charset=UTF-8\n");
    const auto count = static_cast<std::uint32_t>(messages.size());
    std::vector<std::uint32_t> words = {0x950412de, 0, count, 28, 28 + 8 * count, 0, 28 + 16 * count};
    std::string body;
    const auto add = [&](const std::string& text) {
        words.push_back(static_cast<std::uint32_t>(text.size()));
        words.push_back(static_cast<std::uint32_t>(28 + 16 * count + body.size()));
        body += text + '\0';
    };
    for (const auto& [message, translation] : messages) add(message);
    for (const auto& [message, translation] : messages) add(translation);
    return std::string(reinterpret_cast<const char*>(words.data()), 4 * words.size()) + body;
}

/// A language in which these messages of the library have a translation, for as long as this lives.
class Translation {
public:
    explicit Translation(std::initializer_list<std::pair<const std::string, std::string>> messages) {
        std::filesystem::create_directories(m_folder.Path() / "xx/LC_MESSAGES");
        std::ofstream(m_folder.File("xx/LC_MESSAGES/core.mo"), std::ios::binary) << GettextCatalogue(messages);
        // A locale by another name: in C, and of late in C.UTF-8 too, gettext leaves messages alone.
        std::filesystem::create_directory_symlink("/usr/lib/locale/C.utf8", m_folder.Path() / "xx.utf8");
        setenv("LOCPATH", m_folder.Path().c_str(), 1);
        setenv("LANGUAGE", "xx", 1);
        bindtextdomain("core", m_folder.Path().c_str());
        EXPECT_NE(setlocale(LC_ALL, "xx.UTF-8"), nullptr);
    }
    ~Translation() {
        setlocale(LC_ALL, "C");
        unsetenv("LANGUAGE");
        unsetenv("LOCPATH");
    }
    Translation(const Translation&) = delete;
    Translation& operator=(const Translation&) = delete;

private:
    TemporaryFolder m_folder;
};

}  // namespace NorvexTest
