#include "norvex/Conf/DataHelpers/Queries/Muxers.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// As av_guess_format() compares names, whatever the locale.
bool IsBefore(std::string_view one, std::string_view two) {
    return std::lexicographical_compare(one.begin(), one.end(), two.begin(), two.end(),
                                        [](char a, char b) { return Lower(a) < Lower(b); });
}

using Row = std::pair<std::string_view, const AVOutputFormat*>;  // a muxer's names live as long as the process

/// A muxer may have several names, between commas, and is found by all of them at once too. Of two with the same name
/// the first counts.
std::vector<Row> AllMuxers() {
    std::vector<Row> rows;
    void* position = nullptr;
    while (const AVOutputFormat* const muxer = av_muxer_iterate(&position)) {
        std::string_view names = muxer->name;
        rows.emplace_back(names, muxer);
        if (names.find(',') == std::string_view::npos) continue;
        while (!names.empty()) {
            const std::size_t comma = std::min(names.find(','), names.size());
            rows.emplace_back(names.substr(0, comma), muxer);
            names.remove_prefix(std::min(comma + 1, names.size()));
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& one, const Row& two) { return IsBefore(one.first, two.first); });
    return rows;
}

}  // namespace

const AVOutputFormat* FindMuxer(const std::string& name) {
    // av_guess_format() compares with every name of every muxer.
    static const std::vector<Row>& rows = Lasting(AllMuxers());
    const auto row = std::lower_bound(rows.begin(), rows.end(), name, [](const Row& one, const std::string& text) {
        return IsBefore(one.first, text);
    });
    if (row != rows.end() && !IsBefore(name, row->first)) return row->second;
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
