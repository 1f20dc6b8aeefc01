#include "Tags.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <string_view>

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/dict.h>
#include <libavutil/mathematics.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

namespace {

/// Tags by which demuxers tell of the file that they read: its brands, its writer, the sizes and lengths of its parts.
/// A name that ends in '*' stands for all that begin so.
constexpr std::string_view g_ofTheFile[] = {
    // MP4 and MOV
    "major_brand", "minor_version", "compatible_brands", "vendor_id", "iTunSMPB", "com.android.*",
    // Matroska
    "_STATISTICS_*", "BPS*", "DURATION*", "NUMBER_OF_FRAMES*", "NUMBER_OF_BYTES*",
    // MXF
    "uid", "generation_uid", "company_name", "product_name", "product_version", "product_uid", "application_platform",
    "toolkit_version", "modification_date", "operational_pattern_ul", "material_package_umid", "file_package_umid",
    // FLV
    "metadatacreator", "has*", "canSeekToEnd", "datasize", "videosize", "audiosize", "lasttimestamp", "lastkeyframe*",
    // ASF
    "WMFSDK*", "DeviceConformanceTemplate", "IsVBR",
    // all
    "encoder"};

/// What Apple's cameras call tags that other containers have too.
constexpr std::pair<const char*, const char*> g_appleNames[] = {
    {"com.apple.quicktime.location.ISO6709", "location"},
    {"com.apple.quicktime.make", "make"},
    {"com.apple.quicktime.model", "model"},
    {"com.apple.quicktime.software", "software"},
    {"com.apple.quicktime.creationdate", "date"},
    {"com.apple.quicktime.title", "title"},
};

bool IsOfTheFile(std::string_view name) {
    const auto isIt = [name](std::string_view row) {
        const bool isBeginning = row.back() == '*';
        if (isBeginning) row.remove_suffix(1);
        return (isBeginning || name.size() == row.size()) && name.size() >= row.size() &&
               av_strncasecmp(name.data(), row.data(), row.size()) == 0;
    };
    return std::any_of(std::begin(g_ofTheFile), std::end(g_ofTheFile), isIt);
}

void SetTag(AVDictionary*& tags, const char* name, const char* value, int flags) {
    Check(av_dict_set(&tags, name, value, flags), "cannot tag the output");
}

void CopyTags(const AVDictionary* from, AVDictionary*& to) {
    const AVDictionaryEntry* tag = nullptr;
    while ((tag = av_dict_get(from, "", tag, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (!IsOfTheFile(tag->key)) SetTag(to, tag->key, tag->value, AV_DICT_DONT_OVERWRITE);
    }
}

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Muxers of MP4 and its kin, which know a stream by its handler.
bool HasHandlers(const AVOutputFormat& format) {
    return IsOneOf(format.name, {"mp4", "mov", "ipod", "f4v", "3gp", "3g2", "psp"});
}

/// Ogg has no tags but those of its streams.
bool HasOnlyStreamTags(std::string_view container) {
    return IsOneOf(container, {"ogg", "oga", "ogv"});
}

}  // namespace

std::string TagOf(const AVDictionary* tags, const char* name) {
    const AVDictionaryEntry* const tag = av_dict_get(tags, name, nullptr, 0);
    return tag != nullptr ? tag->value : "";
}

std::string TitleOf(const AVStream& stream) {
    const std::string title = TagOf(stream.metadata, "title");
    if (!title.empty()) return title;
    // The name of a handler is the only title that many readers of MP4 show, and mostly what the writer is called.
    const std::string handler = TagOf(stream.metadata, "handler_name");
    const auto has = [&handler](const char* words) { return handler.find(words) != std::string::npos; };
    return has("andler") || has("Media") || has("Apple") ? std::string() : handler;
}

void CopyFilmTags(const AVFormatContext& input, std::int64_t startTime, AVFormatContext& output) {
    AVDictionary*& tags = output.metadata;
    CopyTags(input.metadata, tags);
    if (HasOnlyStreamTags(input.iformat->name) && input.nb_streams > 0) CopyTags(input.streams[0]->metadata, tags);
    for (const auto& [apple, name] : g_appleNames) {
        const std::string value = TagOf(input.metadata, apple);
        if (!value.empty()) SetTag(tags, name, value.c_str(), AV_DICT_DONT_OVERWRITE);
    }
    if (input.nb_chapters == 0 || output.nb_chapters > 0) return;
    auto** const chapters = static_cast<AVChapter**>(av_calloc(input.nb_chapters, sizeof(AVChapter*)));
    if (chapters == nullptr) throw std::bad_alloc();
    output.chapters = chapters;
    for (unsigned i = 0; i < input.nb_chapters; ++i) {
        const AVChapter& source = *input.chapters[i];
        auto* const chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (chapter == nullptr) throw std::bad_alloc();
        chapters[output.nb_chapters++] = chapter;
        const std::int64_t start = av_rescale_q(startTime, av_get_time_base_q(), source.time_base);
        chapter->id = source.id;
        chapter->time_base = source.time_base;
        chapter->start = std::max<std::int64_t>(0, source.start - start);
        chapter->end = std::max(chapter->start, source.end - start);
        Check(av_dict_copy(&chapter->metadata, source.metadata, 0), "cannot tag the output");
    }
}

void CopyStreamTags(const AVStream& source, AVStream& stream, const AVOutputFormat& format) {
    CopyTags(source.metadata, stream.metadata);
    stream.disposition = source.disposition;
    const std::string title = TitleOf(source);
    if (HasHandlers(format)) {
        if (!title.empty()) SetTag(stream.metadata, "handler_name", title.c_str(), 0);
        return;
    }
    SetTag(stream.metadata, "handler_name", nullptr, 0);
    if (!title.empty()) SetTag(stream.metadata, "title", title.c_str(), AV_DICT_DONT_OVERWRITE);
}

Orientation OrientationOf(const AVStream& stream) {
    const std::int32_t* const matrix = DisplayMatrix(stream);
    if (matrix == nullptr) return {};
    // The first two columns map a picture's right and down, in 16.16 fixed point.
    const double a = matrix[0], b = matrix[1], c = matrix[3], d = matrix[4];
    Orientation orientation;
    orientation.isMirrored = a * d - b * c < 0;
    constexpr double pi = 3.14159265358979323846;
    const double turn = (orientation.isMirrored ? std::atan2(-b, -a) : std::atan2(b, a)) * 180 / pi;
    const double quarters = std::round(turn / 90);
    constexpr double tolerance = 1;  // degrees
    if (std::abs(turn - quarters * 90) <= tolerance) orientation.degrees = (static_cast<int>(quarters) + 4) % 4 * 90;
    return orientation;
}

}  // namespace NorvexExport::Media
