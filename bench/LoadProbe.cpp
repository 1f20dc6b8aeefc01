// Loads FFmpeg's libraries and then this library into a process that has neither, and prints what each took.

#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "norvex/interfaces/Conf/IDataHelper.h"

namespace {

/// Processor seconds of this process: what other programs do meanwhile does not count.
double Now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double ResidentBytes() {
    long size = 0;
    long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &size, &resident) != 2) std::abort();
    std::fclose(file);
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void* Load(const char* library) {
    void* const handle = dlopen(library, RTLD_NOW);
    if (handle == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    return handle;
}

}  // namespace

/// AVCODEC AVFORMAT EMPTY NORVEX: seconds for FFmpeg's libraries, for one that is empty but stands on them, for this
/// library, and for the first lookup of a codec; and the resident bytes of this library.
int main(int argc, char** argv) {
    if (argc != 5) return 2;
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    std::free(std::malloc(1 << 24));

    const double start = Now();
    Load(argv[1]);
    Load(argv[2]);
    const double ffmpeg = Now() - start;

    const double emptyStart = Now();
    Load(argv[3]);
    const double empty = Now() - emptyStart;

    const double bytesBefore = ResidentBytes();
    const double libraryStart = Now();
    void* const norvex = Load(argv[4]);
    const double library = Now() - libraryStart;
    const double bytes = ResidentBytes() - bytesBefore;

    using Lookup = const Norvex::SP<const Norvex::Conf::IDataHelper> (*)(const std::string&, const std::string&);
    void* const symbol = dlsym(norvex, "_Z16CreateDataHelperRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES6_");
    if (symbol == nullptr) return 1;
    Lookup lookup = nullptr;
    std::memcpy(&lookup, &symbol, sizeof lookup);
    const double lookupStart = Now();
    if (!lookup("audio_codec", "aac")) return 1;
    std::printf("%.9f %.9f %.9f %.9f %.0f\n", ffmpeg, empty, library, Now() - lookupStart, bytes);
    std::fflush(stdout);
    _exit(0);
}
