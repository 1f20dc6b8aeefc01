#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Constraints/SizeConstraints.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"

// DNxHD and DNxHR (VC-3, SMPTE ST 2019-1). A frame always takes the same bytes. DNxHD has fixed sizes, and for each of
// them bitrates by the frame rate; DNxHR takes any size, and its profile and size settle the bytes of a frame. A rule
// ties two values, the table more: the rules are coarser, and a stream that was corrected is in the table.

namespace Norvex::Conf {

namespace {

using MV = ModernVideo;
using V = IFormatCodecVideo;

// clang-format off
/// Frames per second, by columns of the table below.
constexpr struct { const char* name; int numerator; int denominator; } rates_dnxhd[] = {
    {"23.976", 24000, 1001}, {"24", 24, 1}, {"25", 25, 1}, {"29.97", 30000, 1001}, {"50", 50, 1}, {"59.94", 60000, 1001},
};

struct Compression {
    Name profile;
    int width;   ///< pixels
    int height;  ///< pixels
    int megabits[std::size(rates_dnxhd)];  ///< nominal, in millions of bits per second
};
/// The progressive ones of ST 2019-1, by the nominal bitrates by which FFmpeg's encoder knows them. At 29.97 and 10 bits
/// it lacks the number, and takes that of 25 for a frame of the same bytes. Those of anamorphic pictures and of
/// interlaced ones are left out.
constexpr Compression compressions_dnxhd[] = {
    // profile                 width  height  23.976  24   25  29.97   50  59.94
    {MV::TAG_DNX_PROFILE_HD,     1920, 1080, {   36,   36,   36,   45,   75,   90}},  // 188416 bytes a frame
    {MV::TAG_DNX_PROFILE_HD,     1920, 1080, {  115,  115,  120,  145,  240,  290}},  // 606208
    {MV::TAG_DNX_PROFILE_HD,     1920, 1080, {  175,  175,  185,  220,  365,  440}},  // 917504
    {MV::TAG_DNX_PROFILE_HD,     1280,  720, {   60,   60,   60,   75,  120,  145}},  // 303104
    {MV::TAG_DNX_PROFILE_HD,     1280,  720, {   90,   90,   90,  110,  180,  220}},  // 458752
    {MV::TAG_DNX_PROFILE_HD_X,   1920, 1080, {  175,  175,  185,  185,  365,  440}},  // 917504
    {MV::TAG_DNX_PROFILE_HD_X,   1280,  720, {   90,   90,   90,   90,  180,  220}},  // 458752
};

struct Scale {
    Name profile;
    int numerator;  ///< of the bytes that a macroblock of 16 by 16 pixels takes, over 255
};
/// As FFmpeg's encoder has them; ST 2019-1 has the bytes of a frame. They come in whole steps of 4096, from 8192 on.
constexpr Scale scales_dnxhr[] = {
    {MV::TAG_DNX_PROFILE_HR_LB,   5888},
    {MV::TAG_DNX_PROFILE_HR_SQ,  18944},
    {MV::TAG_DNX_PROFILE_HR_HQ,  28672},
    {MV::TAG_DNX_PROFILE_HR_HQX, 28672},
    {MV::TAG_DNX_PROFILE_HR_444, 57344},
};
// clang-format on

constexpr double megabit = 1e6;

bool Is(const Name& name, const std::string& text) {
    return static_cast<const std::string&>(name) == text;
}

/// The column of the frame rate that is nearest.
std::size_t ColumnOf(double framesPerSecond) {
    std::size_t nearest = 0;
    double least = INFINITY;
    for (std::size_t column = 0; column < std::size(rates_dnxhd); ++column) {
        const auto& rate = rates_dnxhd[column];
        const double distance = std::abs(static_cast<double>(rate.numerator) / rate.denominator - framesPerSecond);
        if (distance >= least) continue;
        least = distance;
        nearest = column;
    }
    return nearest;
}

double BytesOfFrame(const Scale& scale, long long width, long long height) {
    const double macroblocks = std::ceil(static_cast<double>(width) / 16) * std::ceil(static_cast<double>(height) / 16);
    const double bytes = std::floor(macroblocks * scale.numerator / 255);
    return std::max(std::floor((bytes + 2048) / 4096) * 4096, 8192.0);
}

PairList<Core::Ratio> RatesOfDnxhd() {
    PairList<Core::Ratio> rates;
    for (const auto& rate : rates_dnxhd) rates.emplace_back(rate.name, Core::Ratio(rate.numerator, rate.denominator));
    return rates;
}

}  // namespace

DataHelperVideoCodecDnxhd::DataHelperVideoCodecDnxhd()
    : PictureRateCodecHelper(MV::CODEC_ID_DNXHD, V::TAG_BITRATE_MODE_CBR) {
    std::vector<EncoderOptions::Value> profiles;
    for (const Scale& row : scales_dnxhr) {
        const std::string& profile = row.profile;
        profiles.push_back({{std::string(), profile}, profile});
    }
    // FFmpeg has one name for both.
    for (const std::string& profile : {MV::TAG_DNX_PROFILE_HD, MV::TAG_DNX_PROFILE_HD_X}) {
        profiles.push_back({{std::string(), profile}, MV::TAG_DNX_PROFILE_HD});
    }
    m_options.AddValues(V::TAG_PROFILE, {std::string(), MV::TAG_DNX_PROFILE_HR_HQ}, profiles, {});
}

void DataHelperVideoCodecDnxhd::GetValidationRules(RuleList& rules) const {
    PictureRateCodecHelper::GetValidationRules(rules);
    // The bounds that the resizer has above, and the encoder's below.
    const SP<IPropertyConstraint> isDnx = OneOf({m_codecId});
    AddRule(rules, VideoCodecIdPath(), isDnx, WidthPath(), ConstraintRange::Create(256LL, 8192LL, 2LL));
    AddRule(rules, VideoCodecIdPath(), isDnx, HeightPath(), ConstraintRange::Create(120LL, 4320LL, 2LL));

    const std::string profilePath = Path(m_presetKey, ProfileKey());
    for (const std::string& profile : {MV::TAG_DNX_PROFILE_HD, MV::TAG_DNX_PROFILE_HD_X}) {
        const SP<IPropertyConstraint> isProfile = OneOf({profile});
        std::set<long long> bitrates;
        SizeConstraints::SizeList sizes;
        for (const Compression& row : compressions_dnxhd) {
            if (!Is(row.profile, profile)) continue;
            for (const int megabits : row.megabits) bitrates.insert(megabits * std::llround(megabit));
            const std::pair<long long, long long> size(row.width, row.height);
            if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) sizes.push_back(size);
        }
        const std::vector<long long> list(bitrates.begin(), bitrates.end());
        AddRule(rules, profilePath, isProfile, FrameSizeModePath(), SizeConstraints::Create(sizes));
        AddRule(rules, profilePath, isProfile, FrameRatePath(), ConstraintSet::Create(RatesOfDnxhd()));
        AddRule(rules, profilePath, isProfile, Path(m_presetKey, V::TAG_BITRATE),
                OneOf(list.data(), list.data() + list.size()));
    }
}

double DataHelperVideoCodecDnxhd::BitrateOf(const Picture& picture, const Core::Property& stream,
                                            std::optional<long long> wish) const {
    const std::string profile = OptionOf(stream, V::TAG_PROFILE);
    const std::size_t column = ColumnOf(picture.framesPerSecond);
    std::optional<double> nearest;
    for (const Compression& row : compressions_dnxhd) {
        if (!Is(row.profile, profile) || row.width != picture.width || row.height != picture.height) continue;
        const double bitrate = row.megabits[column] * megabit;
        const double wanted = wish ? static_cast<double>(*wish) : bitrate;  // without a wish the last row, the best
        if (!nearest || std::abs(bitrate - wanted) <= std::abs(*nearest - wanted)) nearest = bitrate;
    }
    if (nearest) return *nearest;
    // A profile or a size that is not legal is for validation to say.
    const auto* const scale = std::find_if(std::begin(scales_dnxhr), std::end(scales_dnxhr),
                                           [&profile](const Scale& row) { return Is(row.profile, profile); });
    const Scale& row = scale != std::end(scales_dnxhr) ? *scale : scales_dnxhr[0];
    return 8 * BytesOfFrame(row, picture.width, picture.height) * picture.framesPerSecond;
}

}  // namespace Norvex::Conf
