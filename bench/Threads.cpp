// Correction shares nothing between threads but immutable helpers.

#include <ctime>
#include <thread>

#include "Row.h"
#include "Streams.h"

namespace NorvexBench {

namespace {

double Seconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double SecondsFor(clockid_t clock, int streams, int threads) {
    const double begin = Seconds(clock);
    const auto work = [streams, threads] {
        const AudioCase& audio = FindCase("aac");
        const auto helper = AudioHelper("aac");
        Norvex::Core::Property stream = AskedStream(audio);
        for (int i = 0; i < streams / threads; ++i) {
            AskAgain(stream, audio);
            helper->CorrectFormatCodec(stream);
        }
    };
    std::vector<std::thread> others;
    for (int i = 1; i < threads; ++i) others.emplace_back(work);
    work();
    for (std::thread& other : others) other.join();
    return Seconds(clock) - begin;
}

}  // namespace

std::vector<Row> ThreadRows() {
    const auto on = [](clockid_t clock, int threads) {
        // Enough of them that making a thread, which takes as long as some hundred, does not count.
        return Measurement([clock, threads] { return SecondsFor(clock, 50000, threads); });
    };
    Row wall = {"threads.time",        "fifty thousand streams on two threads", "on one", 0.6, on(CLOCK_MONOTONIC, 2),
                on(CLOCK_MONOTONIC, 1)};
    wall.needsIdleMachine = true;
    return {wall,
            {"threads.work", "fifty thousand streams on two threads, work", "on one", 1.2,
             on(CLOCK_PROCESS_CPUTIME_ID, 2), on(CLOCK_PROCESS_CPUTIME_ID, 1)}};
}

}  // namespace NorvexBench
