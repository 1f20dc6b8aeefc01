#include "Signals.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "Terminal.h"
#include "media/Files.h"

namespace NorvexExport {

namespace {

struct Ending {
    int signal;
    const char* name;
};
constexpr Ending g_endings[] = {{SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}};

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

[[noreturn]] void EndBy(int signal, const std::string& program) {
    Media::RemoveUnfinished();
    for (const Ending& ending : g_endings) {
        if (ending.signal != signal) continue;
        // Standard error's own lock may be held by a thread that waits for the terminal.
        const std::string text =
            (ClearsLines(STDERR_FILENO) ? "\r\033[K" : "") + program + ": stopped by " + ending.name + '\n';
        if (write(STDERR_FILENO, text.data(), text.size()) < 0) break;
    }
    _exit(128 + signal);
}

}  // namespace

void TakeOverSignals(const std::string& program) {
    // A write beyond a limit on file sizes fails then like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    for (const Ending& ending : g_endings) {
        if (!IsIgnored(ending.signal)) sigaddset(&signals, ending.signal);
    }
    // Held back in this thread and all that it makes; one thread waits for them, and may do what no handler may.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals, program] {
        int signal = 0;
        while (sigwait(&signals, &signal) != 0) {
        }
        EndBy(signal, program);
    }).detach();
}

}  // namespace NorvexExport
