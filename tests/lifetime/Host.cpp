// A host whose statics use the library in their constructors and destructors, and are made before and after the first
// lookup. With LIFETIME_MODULE what uses the library is a module, which main loads when other statics are there
// already.

#include <dlfcn.h>
#include <link.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>

#include "lifetime/Uses.h"

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

struct Module {
    decltype(&Take) take;
    decltype(&AskAndGiveBack) askAndGiveBack;
};

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::_Exit(1);
}

#ifdef LIFETIME_MODULE
Module module = {};

unsigned long long LoadedObjects() {
    unsigned long long count = 0;
    const auto look = [](dl_phdr_info* object, std::size_t, void* result) {
        *static_cast<unsigned long long*>(result) = object->dlpi_adds - object->dlpi_subs;
        return 1;
    };
    dl_iterate_phdr(look, &count);
    return count;
}

void* Load() {
    void* const handle = dlopen(LIFETIME_MODULE, RTLD_NOW);
    Require(handle != nullptr, "the module does not load");
    module.take = reinterpret_cast<decltype(&Take)>(dlsym(handle, "Take"));
    module.askAndGiveBack = reinterpret_cast<decltype(&AskAndGiveBack)>(dlsym(handle, "AskAndGiveBack"));
    return handle;
}

void LoadOften() {
    std::size_t bytes = 0;
    for (int round = 0; round < 100; ++round) {
        const unsigned long long objects = LoadedObjects();
        void* const handle = Load();
        module.askAndGiveBack(module.take());
        dlclose(handle);
        Require(LoadedObjects() == objects, "the library stays loaded");
        if (round == 9) bytes = mallinfo2().uordblks;  // what the first rounds take is kept for the next
    }
    Require(mallinfo2().uordblks <= bytes, "memory is not given back");
    Load();
}
#else
constexpr Module module = {Take, AskAndGiveBack};

void LoadOften() {}

/// Earlier than all statics but those of the same priority.
[[gnu::constructor(101)]] void TryTooEarly() {
    Answers();
}
#endif

/// Uses the library in its destructor, and by Use.
class Static {
public:
    Static() = default;
    explicit Static(bool) { Use(); }
    ~Static() { module.askAndGiveBack(m_kept); }

    void Use() {
        module.askAndGiveBack(module.take());
        m_kept = module.take();
    }

private:
    Kept* m_kept = nullptr;
};

Static older;
#ifndef LIFETIME_MODULE
Static first(true);
#endif

}  // namespace

int main() {
    Require(avformat_version() != 0, "FFmpeg stays loaded");
    LoadOften();
    older.Use();
    static const Static younger(true);
}
