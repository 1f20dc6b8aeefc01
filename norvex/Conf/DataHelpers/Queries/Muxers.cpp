#include "norvex/Conf/DataHelpers/Queries/Muxers.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

namespace {

/// As av_guess_format() compares names, whatever the locale.
std::string Lower(std::string name) {
    for (char& c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return name;
}

using Row = std::pair<std::string, const AVOutputFormat*>;

/// A muxer may have several names, between commas, and is found by all of them at once too. Of two with the same name
/// the first counts.
std::vector<Row> AllMuxers() {
    std::vector<Row> rows;
    void* position = nullptr;
    while (const AVOutputFormat* const muxer = av_muxer_iterate(&position)) {
        rows.emplace_back(Lower(muxer->name), muxer);
        for (std::string_view names = muxer->name; !names.empty();) {
            const std::size_t comma = std::min(names.find(','), names.size());
            rows.emplace_back(Lower(std::string(names.substr(0, comma))), muxer);
            names.remove_prefix(std::min(comma + 1, names.size()));
        }
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row& one, const Row& two) { return one.first < two.first; });
    return rows;
}

}  // namespace

const AVOutputFormat* FindMuxer(const std::string& name) {
    // av_guess_format() compares with every name of every muxer.
    static const std::vector<Row>& rows = Lasting(AllMuxers());
    const std::string lower = Lower(name);
    const auto row = std::lower_bound(rows.begin(), rows.end(), lower,
                                      [](const Row& one, const std::string& text) { return one.first < text; });
    if (row != rows.end() && row->first == lower) return row->second;
    // A device that the host has registered with FFmpeg meanwhile. FFmpeg would read a name with a NUL in it up to
    // there.
    return name.find('\0') == std::string::npos ? av_guess_format(name.c_str(), nullptr, nullptr) : nullptr;
}

std::string JudgedMuxerName(std::string name) {
    using F = IFormatFile;
    if (name == F::FORMAT_MPEG2TS) name = F::FORMAT_MPEGTS;
    if (name == F::FORMAT_MPEG1VIDEO) name = F::FORMAT_MPEG;
    if (name == F::FORMAT_MPEG2VIDEO) name = F::FORMAT_VOB;
    if (name == F::FORMAT_WMV || name == F::FORMAT_WMA) name = F::FORMAT_ASF;
    if (name == F::FORMAT_M4A || name == F::FORMAT_M4V) name = F::FORMAT_IPOD;
    return name;
}

}  // namespace Norvex::Conf
