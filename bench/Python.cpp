// What Python adds to a correction: two dicts, and the way through the module.

#include <cstdio>
#include <ctime>
#include <stdexcept>

#include "Row.h"
#include "Streams.h"

namespace NorvexBench {

namespace {

#ifdef NORVEX_PYTHON_COMMAND
double SecondsInPython(const char* operation) {
    FILE* const output = popen((std::string(NORVEX_PYTHON_COMMAND) + ' ' + operation).c_str(), "r");
    double seconds = 0;
    const bool isRead = output != nullptr && std::fscanf(output, "%lf", &seconds) == 1;
    if (output == nullptr || pclose(output) != 0 || !isRead) throw std::runtime_error("Python did not measure");
    return seconds;
}

double SecondsInTheLibrary() {
    constexpr int count = 20000;
    const AudioCase& audio = FindCase("aac");
    const auto helper = AudioHelper("aac");
    Norvex::Core::Property stream = AskedStream(audio);
    const std::clock_t begin = std::clock();
    for (int i = 0; i < count; ++i) {
        AskAgain(stream, audio);
        helper->CorrectFormatCodec(stream);
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / count;
}
#endif

}  // namespace

std::vector<Row> PythonRows() {
#ifdef NORVEX_PYTHON_COMMAND
    const Measurement correct = [] { return SecondsInPython("correct"); };
    return {{"python.correct", "correct one stream in Python, aac", "ten microseconds above the library", 1.0, correct,
             Measurement([] { return SecondsInTheLibrary() + 1e-5; })},
            {"python.copy", "correct one stream in Python, aac", "copying its dict", 60, correct,
             Measurement([] { return SecondsInPython("copy"); })}};
#else
    return {};
#endif
}

}  // namespace NorvexBench
