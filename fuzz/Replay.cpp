// Runs a fuzz target on every file of a folder and on some inputs at random, for builds without a fuzzer.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Replay FOLDER COUNT: NORVEX_SEED in the environment makes other inputs than those of every day.
int main(int argc, char** argv) {
    if (argc < 3) return 2;
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
        std::cout << entry.path().filename().string() << std::endl;  // flushed: the input may end the process
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    const char* const seed = std::getenv("NORVEX_SEED");
    std::mt19937 random(seed != nullptr ? static_cast<unsigned>(std::atoi(seed)) : 20240229U);
    for (int i = 0; i < std::atoi(argv[2]); ++i) {
        std::vector<std::uint8_t> bytes(random() % 1024);
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
        std::cout << "random input " << i << std::endl;
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return count > 0 ? 0 : 1;
}
