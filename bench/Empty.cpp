// A library that does nothing but stand on FFmpeg's.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

extern "C" __attribute__((visibility("default"))) unsigned EmptyLibrary() {
    return avformat_version() + avcodec_version();
}
