#include "norvex/interfaces/Conf/SampleFmtRecord.h"

#include <algorithm>
#include <vector>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/Exceptions.h"

namespace Norvex::Conf {

namespace {

using F = SampleFormats;

/// FFmpeg's AVSampleFormat, in the order of its numbers, so that a number is the index of its row.
const std::vector<SampleFmtRecord>& Rows() {
    // clang-format off
    static const auto& rows = Lasting(std::vector<SampleFmtRecord>{
        // format   bits  name    planar  twin
        {F::U8,      8,  "u8",   false,  F::U8P},
        {F::S16,    16,  "s16",  false,  F::S16P},
        {F::S32,    32,  "s32",  false,  F::S32P},
        {F::Flt,    32,  "flt",  false,  F::FltP},
        {F::Dbl,    64,  "dbl",  false,  F::DblP},
        {F::U8P,     8,  "u8p",  true,   F::U8},
        {F::S16P,   16,  "s16p", true,   F::S16},
        {F::S32P,   32,  "s32p", true,   F::S32},
        {F::FltP,   32,  "fltp", true,   F::Flt},
        {F::DblP,   64,  "dblp", true,   F::Dbl},
        {F::S64,    64,  "s64",  false,  F::S64P},
        {F::S64P,   64,  "s64p", true,   F::S64},
    });
    // clang-format on
    return rows;
}

FormatException UnknownFormat(const std::string& subject) {
    FormatException exception;
    exception << TagDescription("Unknown sample format") << TagDetails(subject);
    return exception;
}

}  // namespace

const SampleFmtRecord& SampleFmtRecord::Find(SampleFormats format) {
    const auto index = static_cast<std::size_t>(format);  // None becomes the largest number
    if (index >= Rows().size()) NORVEX_THROW(UnknownFormat(std::to_string(static_cast<std::int32_t>(format))));
    return Rows()[index];
}

const SampleFmtRecord& SampleFmtRecord::Find(const std::string& name) {
    const auto row = std::find_if(Rows().begin(), Rows().end(),
                                  [&name](const SampleFmtRecord& record) { return record.name == name; });
    if (row == Rows().end()) NORVEX_THROW(UnknownFormat(name));
    return *row;
}

}  // namespace Norvex::Conf
