#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TemporaryFolder.h"

namespace NorvexTest {

struct Outcome {
    int status;
    std::string text;  ///< standard output and standard error
};

/// Runs a program in a folder of the test's own.
class ProgramFixture : public testing::Test {
protected:
    explicit ProgramFixture(const char* program) : m_program(program) {}

    std::string File(const std::string& name) const { return m_folder.File(name); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(File(name), std::ios::binary) << text;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    std::size_t FileCount() const {
        namespace fs = std::filesystem;
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder.Path()), fs::directory_iterator()));
    }

    /// `before` is what the shell runs the program by, such as variables.
    Outcome Run(const std::string& arguments, const std::string& before = {}) const {
        return RunOther(m_program, arguments, before);
    }
    Outcome RunOther(const std::string& program, const std::string& arguments, const std::string& before = {}) const {
        const std::string command =
            "cd '" + m_folder.Path().string() + "' && " + before + " '" + program + "' " + arguments + " 2>&1";
        std::FILE* const pipe = popen(command.c_str(), "r");
        Outcome outcome{};
        std::array<char, 4096> part{};
        for (std::size_t size; (size = std::fread(part.data(), 1, part.size(), pipe)) > 0;) {
            outcome.text.append(part.data(), size);
        }
        outcome.status = WEXITSTATUS(pclose(pipe));
        return outcome;
    }

private:
    std::string m_program;
    TemporaryFolder m_folder;
};

}  // namespace NorvexTest
