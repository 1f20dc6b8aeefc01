#pragma once

/// What libvorbis encodes. Not for hosts.

namespace Norvex::Conf {

/// The values that combinations are made of, the book's own choice.
inline constexpr long long availableBitrateList_vorbis[] = {
    // bits per second
    16000, 32000, 48000, 64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 288000, 320000,
};

inline constexpr long long sampleRates_vorbis[] = {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000};  // Hz

struct VorbisCombination {
    long long channels;
    long long sampleRate;  ///< Hz
    long long bitrate;     ///< bits per second
};

/// The combination at the least distance, of equal ones the first by channels, sample rate and bitrate. The weights
/// make a change of channels the last resort and let the bitrate give way first.
VorbisCombination NearestVorbisCombination(const VorbisCombination& wanted);

}  // namespace Norvex::Conf
