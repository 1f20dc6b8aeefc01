#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace NorvexTest {

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct Outcome {
    int status;
    std::string text;  ///< standard output
};

/// Runs a command of the shell.
inline Outcome RunCommand(const std::string& command) {
    std::FILE* const pipe = popen(command.c_str(), "r");
    Outcome outcome{};
    std::array<char, 65536> part{};
    for (std::size_t size; (size = std::fread(part.data(), 1, part.size(), pipe)) > 0;)
        outcome.text.append(part.data(), size);
    outcome.status = WEXITSTATUS(pclose(pipe));
    return outcome;
}

}  // namespace NorvexTest
