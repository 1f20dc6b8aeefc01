#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace NorvexTest {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Runs a program in a folder of the test's own.
class ProgramFixture : public testing::Test {
protected:
    explicit ProgramFixture(const char* program) : m_program(program) {}

    std::string File(const std::string& name) const { return m_folder.File(name); }
    void Write(const std::string& name, const std::string& text) const { WriteFile(File(name), text); }
    std::string Read(const std::string& name) const { return ReadFile(File(name)); }
    std::size_t FileCount() const {
        namespace fs = std::filesystem;
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder.Path()), fs::directory_iterator()));
    }

    /// What it prints and complains of. `before` is what the shell runs the program by, such as variables.
    Outcome Run(const std::string& arguments, const std::string& before = {}) const {
        return RunOther(m_program, arguments, before);
    }
    Outcome RunOther(const std::string& program, const std::string& arguments, const std::string& before = {}) const {
        return RunCommand("cd '" + m_folder.Path().string() + "' && " + before + " '" + program + "' " + arguments +
                          " 2>&1");
    }

    /// Makes files by the ffmpeg command.
    void Make(const std::string& arguments) const {
        const Outcome outcome = RunOther("ffmpeg", "-nostdin -v error -y " + arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.text;
    }
    /// What ffprobe tells of a file.
    nlohmann::json Probed(const std::string& what, const std::string& name) const {
        const Outcome probe = RunOther("ffprobe", "-v error -of json " + what + ' ' + name);
        EXPECT_EQ(probe.status, 0) << probe.text;
        const auto told = nlohmann::json::parse(probe.text, nullptr, false);
        return told.is_object() ? told : nlohmann::json{{"streams", nlohmann::json::array()}};
    }

private:
    std::string m_program;
    TemporaryFolder m_folder;
};

}  // namespace NorvexTest
