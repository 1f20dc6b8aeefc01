// Building helpers and looking them up, against what FFmpeg takes to answer the same.

extern "C" {
#include <libavformat/avformat.h>
}

#include <map>
#include <stdexcept>

#include "Row.h"
#include "Streams.h"
#include "norvex/Conf/DataHelpers/Lookup/Catalogue.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;
using F = IFormatFile;

namespace {

SP<Proc::ICodecFactory> Factory() {
    static const SP<Proc::ICodecFactory> factory = Proc::FFmpegCodecFactory::Create();
    return factory;
}

/// The census as FillEncoders takes it.
std::vector<AVCodecID> Census() {
    std::vector<AVCodecID> census;
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position)) {
        const auto name = GetFFCodecsMap().find(codec->id);
        if (name == GetFFCodecsMap().end()) continue;
        if (!Factory()->ListEncoders(name->second, true, true).empty()) census.push_back(codec->id);
    }
    return census;
}

/// How many lists the helpers of the format table ask of each muxer: of MP4, M4V, the iPod and so on; Matroska's list
/// of sound is asked for MKA too, and that of WAV for AIFF.
const std::pair<const char*, int> g_askedLists[] = {
    {"mp4", 3}, {"m4v", 3}, {"ipod", 3}, {"mov", 3}, {"matroska", 4}, {"webm", 2}, {"avi", 3}, {"flv", 3}, {"wav", 2},
};

Row FormatTable() {
    FormatValidator::Instance().FillEncoders(Factory());
    if (MakeFormatTable().size() != 64) throw std::runtime_error("there are not 64 containers");
    return {"build.formats",
            "all 64 containers with a full census",
            "the bare questions to FFmpeg's muxers",
            1.0,
            [] { MakeFormatTable(); },
            [census = Census()] {
                for (const auto& [name, lists] : g_askedLists) {
                    const AVOutputFormat* const muxer = av_guess_format(name, nullptr, nullptr);
                    if (muxer == nullptr) continue;
                    for (int list = 0; list < lists; ++list) {
                        for (const AVCodecID id : census) avformat_query_codec(muxer, id, 0);
                    }
                }
            }};
}

Row TakeCensus() {
    return {"build.census",
            "the census, with the library's own factory",
            "finding the encoder of every entry",
            0.15,
            [] { FormatValidator::Instance().FillEncoders(Factory()); },
            [] {
                void* position = nullptr;
                while (const AVCodec* codec = av_codec_iterate(&position)) avcodec_find_encoder(codec->id);
            }};
}

Row Lookup() {
    std::map<std::string, SP<const IDataHelper>> table;
    for (const auto& [id, helper] : GetAvailableDataHelpers(IPreset::KEY_FORMAT)) table.emplace(id, helper);
    if (table.size() != 64) throw std::runtime_error("there are not 64 containers");
    return {"lookup",
            "looking one container up",
            "one look into a map of 64",
            4.0,
            [] { CreateDataHelper(IPreset::KEY_FORMAT, F::FORMAT_MP4); },
            [table] { const SP<const IDataHelper> helper = table.find(F::FORMAT_MP4)->second; }};
}

std::vector<SP<const IDataHelper>> AllHelpers() {
    std::vector<SP<const IDataHelper>> helpers;
    const Catalogue& catalogue = GetCatalogue();
    for (const auto* table : {&catalogue.audioCodecs, &catalogue.videoCodecs, &catalogue.filters,
                              &GetAvailableDataHelpers(IPreset::KEY_FORMAT)}) {
        for (const auto& [id, helper] : *table) helpers.push_back(helper);
    }
    return helpers;
}

Row EveryList() {
    const auto helpers = AllHelpers();
    return {"build.lists",
            "defaults, constraints and rules of all " + std::to_string(helpers.size()) + " helpers",
            "as many trees of ten nodes",
            12.0,
            [helpers] {
                for (const auto& helper : helpers) {
                    const Core::Property defaults = helper->GetDefaults();
                    ConstraintMap constraints;
                    helper->GetConstraints(constraints);
                    RuleList rules;
                    helper->GetValidationRules(rules);
                }
            },
            [count = helpers.size()] {
                static const std::string names[] = {"codec_id", "bitrate", "bitrate_mode", "quality", "sample_rate",
                                                    "layout",   "width",   "height",       "profile"};
                for (std::size_t i = 0; i < count; ++i) {
                    Core::Property tree("preset");
                    for (const std::string& name : names) tree.CreateChildT(name, 1);
                }
            }};
}

}  // namespace

std::vector<Row> BuildingRows() {
    Row inAll = EveryList();
    inAll.id = "build.lists.time";
    inAll.against = "a millisecond";
    inAll.bound = 1.0;
    inAll.baseline = Measurement([] { return 1e-3; });
    return {FormatTable(), TakeCensus(), Lookup(), EveryList(), inAll};
}

}  // namespace NorvexBench
