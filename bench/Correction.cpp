// Correcting a stream by the rule book against asking FFmpeg whether it opens.

#include <cmath>
#include <stdexcept>

#ifdef NORVEX_HAS_GSTREAMER
#include "Peer.h"
#endif
#include "Row.h"
#include "Streams.h"
#include "Whole.h"
#include "norvex/Conf/DataHelpers/AudioCodecs/VorbisCombinations.h"

namespace NorvexBench {

using namespace Norvex;
using namespace Norvex::Conf;
using A = IFormatCodecAudio;
using V = IFormatCodecVideo;

namespace {

// clang-format off
const AudioCase g_cases[] = {
    // codec      asked:  rate   format   layout    bitrate  legal: rate  format             channels  bitrate
    {"aac",              44000, "s16",   "3.1",     100000,      44100, AV_SAMPLE_FMT_FLTP, 3,          96000, 1.0 / 15},
    {"mp3",              44000, "s16",   "5.1",     100000,      44100, AV_SAMPLE_FMT_S16P, 2,          96000, 1.0 / 50},
    {"ac3",              44000, "s16",   "7.1",     100000,      44100, AV_SAMPLE_FMT_FLTP, 6,          96000, 1.0 / 8},
    {"flac",             44000, "flt",   "6.1",     100000,      44100, AV_SAMPLE_FMT_S16,  6,              0, 1.0 / 10},
    {"vorbis",           44000, "s16",   "6.1",     100000,      44100, AV_SAMPLE_FMT_FLTP, 2,          96000, 1.0 / 200},
    {"pcm_s16le",        44000, "s16p",  "stereo",  100000,      44100, AV_SAMPLE_FMT_S16,  2,              0, 1.0},
};
// clang-format on

void Require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

Row AgainstOpening(const AudioCase& audio) {
    Require(OpenEncoder(audio, audio.legalRate, audio.legalFormat), audio.codec + ": the encoder does not open");
    const auto helper = AudioHelper(audio.codec);
    Core::Property stream = AskedStream(audio);
    helper->CorrectFormatCodec(stream);
    Require(stream != AskedStream(audio), audio.codec + ": the stream needs no mending");
    return {"correct." + audio.codec,
            "correct one stream, " + audio.codec,
            "opening the encoder",
            audio.bound,
            [&audio, helper, stream]() mutable {
                AskAgain(stream, audio);
                helper->CorrectFormatCodec(stream);
            },
            [&audio] { OpenEncoder(audio, audio.legalRate, audio.legalFormat); }};
}

/// Without the rule book a host tries, is refused, mends and tries again.
Row AgainstTrying(const AudioCase& audio) {
    Require(!OpenEncoder(audio, audio.legalRate, AV_SAMPLE_FMT_S16P), audio.codec + ": the encoder is not choosy");
    Row row = AgainstOpening(audio);
    row.against = "refused, mended, opened";
    row.baseline = [&audio] {
        OpenEncoder(audio, audio.legalRate, AV_SAMPLE_FMT_S16P);
        const AVCodec* const codec = avcodec_find_encoder(avcodec_descriptor_get_by_name(audio.codec.c_str())->id);
        OpenEncoder(audio, audio.legalRate, codec->sample_fmts[0]);
    };
    return row;
}

/// What the correction of AAC cannot do without: a tree, a map and rules of the shape that AAC's helper builds.
void BuildFloor() {
    Core::Property defaults(IPreset::KEY_FILTER_AUDIO_CODEC);
    defaults.CreateChildT(A::TAG_CODEC_ID, A::CODEC_ID_AAC);
    defaults.CreateChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR);
    defaults.CreateChildT(A::TAG_BITRATE, 256000);
    defaults.SetChild(A::TAG_CODEC_OPTIONS_ENCODE).CreateChildT(A::TAG_PROFILE, A::TAG_AAC_PROFILE_LOW);
    defaults.CreateChildT(A::TAG_GLOBAL_HEADER, true);

    static const std::string codecPath = "audio_codec/codec_id";
    static const std::string bitratePath = "audio_codec/bitrate";
    static const std::string ratePath = "filter_resample/resample/sample_rate";
    static const std::string formatPath = "filter_resample/resample/sample_format";
    static const std::string layoutPath = "filter_resample/resample/channel_layout";
    static const std::string profilePath = "codec_options_encode/profile";
    static const long long bitrates[] = {32000,  64000,  96000,  128000, 160000, 192000,
                                         224000, 256000, 320000, 448000, 512000};
    static const PairList<long long> rates =
        CreatePairValueList<long long>({96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025});
    static const std::vector<SampleFormats> formats = {SampleFormats::FltP};
    const auto layouts = [] {
        return ConstraintChannelLayout::Create(
            std::vector<std::string>{A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO, A::TAG_CH_LAYOUT_2POINT1,
                                     A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_7POINT1});
    };
    const auto oneOf = [](std::initializer_list<const std::string*> names) {
        PairList<std::string> list;
        list.reserve(names.size());
        for (const std::string* name : names) list.emplace_back(*name, *name);
        return ConstraintSet::Create(list);
    };

    RuleList rules;
    const auto isAac = oneOf({&A::CODEC_ID_AAC});
    const auto add = [&](const std::string& path, const SP<IPropertyConstraint>& constraint) {
        rules.emplace_back("/", PairValidationRule::Create(codecPath, isAac, path, constraint));
    };
    add(ratePath, ConstraintSet::Create(rates));
    add(formatPath, ConstraintSampleFormat::Create(formats));
    const auto isAacToo = oneOf({&A::CODEC_ID_AAC});
    add(bitratePath, ConstraintSet::Create(CreatePairValueList(bitrates)));
    add(layoutPath, layouts());

    ConstraintMap constraints;
    constraints[A::TAG_BITRATE] = ConstraintSet::Create(CreatePairValueList(bitrates));
    constraints[profilePath] =
        oneOf({&A::TAG_AAC_PROFILE_LOW, &A::TAG_AAC_PROFILE_SSR, &A::TAG_AAC_PROFILE_LTP, &A::TAG_AAC_PROFILE_HE,
               &A::TAG_AAC_PROFILE_HE_V2, &A::TAG_AAC_PROFILE_LD, &A::TAG_AAC_PROFILE_ELD});
    constraints[A::TAG_BITRATE_MODE] = oneOf({&A::TAG_BITRATE_MODE_CBR});
    constraints[layoutPath] = layouts();
}

/// The same search without a thought: every row of a flat table.
struct Flat {
    double channels, sampleRate, bitrate;
};

/// What the search gives back as it stands is a legal combination.
std::vector<Flat> FlatTable() {
    std::vector<Flat> table;
    for (long long channels = 1; channels <= 8; ++channels) {
        for (const long long rate : sampleRates_vorbis) {
            for (const long long bitrate : availableBitrateList_vorbis) {
                const VorbisCombination nearest = NearestVorbisCombination({channels, rate, bitrate});
                if (nearest.channels != channels || nearest.sampleRate != rate || nearest.bitrate != bitrate) continue;
                table.push_back(
                    {static_cast<double>(channels), static_cast<double>(rate), static_cast<double>(bitrate)});
            }
        }
    }
    Require(table.size() == 490, "there are not 490 combinations");
    return table;
}

std::size_t NearestFlat(const std::vector<Flat>& table, const Flat& wanted) {
    double smallest = INFINITY;
    std::size_t nearest = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double channels = (table[i].channels - wanted.channels) * (100.0 / 8);
        const double rate = (table[i].sampleRate - wanted.sampleRate) * (10.0 / 48000);
        const double bitrate = (table[i].bitrate - wanted.bitrate) * (1.0 / 320000);
        const double squared = channels * channels + rate * rate + bitrate * bitrate;
        if (squared >= smallest) continue;
        smallest = squared;
        nearest = i;
    }
    return nearest;
}

Row VorbisSearch() {
    // Each search begins at what the last one found, so that nothing can be worked out beforehand.
    return {"search.vorbis",
            "the search for a Vorbis combination",
            "a plain loop over all 490",
            1.1,
            [bitrate = 0LL]() mutable {
                bitrate = 100000 + NearestVorbisCombination({2, 44000, bitrate}).bitrate % 7;
            },
            [bitrate = 0.0, table = FlatTable()]() mutable {
                bitrate = 100000 + std::fmod(table[NearestFlat(table, {2, 44000, bitrate})].bitrate, 7);
            }};
}

/// A tree that one rule can be evaluated on.
Core::Property RateTree(const std::string& codec, const Core::Ratio& rate) {
    Core::Property tree("preset");
    tree.SetChild(IPreset::KEY_FILTER_VIDEO_CODEC).SetChildT(V::TAG_CODEC_ID, codec);
    tree.SetChild(Proc::IFilterFrameRate::CLASS_ID).SetChildT(V::TAG_FPS, rate);
    return tree;
}

bool OpenMpeg1(AVRational rate) {
    const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_MPEG1VIDEO);
    AVCodecContext* context = avcodec_alloc_context3(codec);
    context->width = 1280;
    context->height = 720;
    context->pix_fmt = AV_PIX_FMT_YUV420P;
    context->bit_rate = 2000000;
    context->framerate = rate;
    context->time_base = av_inv_q(rate);
    const bool opened = avcodec_open2(context, codec, nullptr) == 0;
    avcodec_free_context(&context);
    return opened;
}

Row FrameRateRefusal() {
    RuleList rules;
    CreateDataHelper(IPreset::KEY_FILTER_VIDEO_CODEC, V::CODEC_ID_MPEG1VIDEO)->GetValidationRules(rules);
    const SP<IValidationRule> rule = rules.at(0).second;
    const Core::Property tree = RateTree(V::CODEC_ID_MPEG1VIDEO, Core::Ratio(17, 1));
    Require(!rule->IsValid(tree), "the rule takes a rate that MPEG-1 has not");
    Require(rule->IsValid(RateTree(V::CODEC_ID_MPEG1VIDEO, Core::Ratio(25, 1))), "the rule refuses 25");
    Require(OpenMpeg1({25, 1}) && !OpenMpeg1({17, 1}), "the encoder of MPEG-1 does not judge by the rate");
    return {"refuse.mpeg1", "one frame rate rule of MPEG-1, broken", "the encoder's refusal",
            1.0 / 60,       [rule, tree] { rule->IsValid(tree); },   [] { OpenMpeg1({17, 1}); }};
}

}  // namespace

const AudioCase& FindCase(const std::string& codec) {
    for (const AudioCase& audio : g_cases) {
        if (audio.codec == codec) return audio;
    }
    throw std::runtime_error("no case of " + codec);
}

SP<const IDataHelper> AudioHelper(const std::string& codec) {
    return CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, codec);
}

Core::Property AskedStream(const AudioCase& audio) {
    Core::Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT(A::TAG_CODEC_ID, audio.codec);
    stream.SetChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR);
    AskAgain(stream, audio);
    return stream;
}

void AskAgain(Core::Property& stream, const AudioCase& audio) {
    stream.SetChildT(A::TAG_SAMPLE_RATE, audio.sampleRate);
    stream.SetChildT(A::TAG_SAMPLE_FORMAT, audio.sampleFormat);
    stream.SetChildT(A::TAG_LAYOUT, audio.layout);
    stream.SetChildT(A::TAG_BITRATE, audio.bitrate);
}

bool OpenEncoder(const AudioCase& audio, int sampleRate, AVSampleFormat format) {
    const AVCodec* const codec = avcodec_find_encoder(avcodec_descriptor_get_by_name(audio.codec.c_str())->id);
    AVCodecContext* context = avcodec_alloc_context3(codec);
    context->sample_rate = sampleRate;
    context->sample_fmt = format;
    context->bit_rate = audio.legalBitrate;
    context->time_base = {1, sampleRate};
    av_channel_layout_default(&context->ch_layout, audio.legalChannels);
    const bool opened = avcodec_open2(context, codec, nullptr) == 0;
    avcodec_free_context(&context);
    return opened;
}

std::vector<Row> CorrectionRows() {
    std::vector<Row> rows;
    for (const char* codec : {"aac", "mp3", "ac3", "flac", "vorbis"}) rows.push_back(AgainstOpening(FindCase(codec)));
    Row floor = AgainstOpening(FindCase("aac"));
    floor.id = "floor.aac";
    floor.against = "building what it looks at";
    floor.bound = 1.5;
    floor.baseline = BuildFloor;
    rows.push_back(floor);
    for (const Asked& asked : AskedOperations()) {
        rows.push_back({asked.id, asked.what, "the time that is wanted", 1.0, asked.operation,
                        Measurement([bound = asked.bound] { return bound; })});
    }
#ifdef NORVEX_HAS_GSTREAMER
    Row peer = AgainstOpening(FindCase("aac"));
    peer.id = "peer.aac";
    peer.against = "GStreamer: intersect caps, fixate";
    peer.bound = 1.0;
    peer.baseline = IntersectAndFixate();
    rows.push_back(peer);
#endif
    rows.push_back(AgainstTrying(FindCase("pcm_s16le")));
    rows.push_back(VorbisSearch());
    rows.push_back(FrameRateRefusal());
    return rows;
}

}  // namespace NorvexBench
