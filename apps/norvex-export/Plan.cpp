#include "Plan.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdlib>

#include "Formats.h"
#include "Jobs.h"
#include "Settle.h"
#include "common/OtherNames.h"
#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;
using Proc::IResize;

std::string Join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string SizeText(long long width, long long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string FpsText(const Core::Ratio& rate) {
    if (rate.denominator() == 1) return std::to_string(rate.numerator());
    std::string text = std::to_string(static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator()));
    return text.substr(0, text.find('.') + 3);
}

Core::Ratio ToRatio(const Fraction& fraction) {
    return {fraction.numerator, fraction.denominator};
}

// ---------------------------------------------------------------------------------------- containers and codecs

NamedHelper FindFormat(const std::string& formatId) {
    const auto& formats = GetAvailableDataHelpers(P::KEY_FORMAT);
    const auto format = formats.find(formatId);
    if (format == formats.end()) {
        throw RequestError(formatId.empty()
                               ? "the output has no extension to tell the format by; give --format, such as mp4"
                               : NorvexApps::WhyUnknown(NorvexApps::Named::Format, formatId));
    }
    if (av_guess_format(MuxerOf(formatId).c_str(), nullptr, nullptr) == nullptr) {
        throw RequestError("this build of FFmpeg has no muxer for the format '" + formatId + "'");
    }
    return {P::KEY_FORMAT, formatId, format->second};
}

/// Throws RequestError for a codec that the container does not carry or that this build cannot encode.
void RequireEncodable(const NamedHelper& format, const std::string& kind, const std::string& streamType,
                      const std::string& codecId) {
    ConstraintMap constraints;
    format.helper->GetConstraints(constraints);
    const auto allowed = constraints.find(Path({P::KEY_STREAMS + P::INDEX + streamType, kind, C::TAG_CODEC_ID}));
    if (CodecIDFromTextID(CodecNameOf(codecId)) == AV_CODEC_ID_NONE) {
        throw RequestError("unknown codec '" + codecId + "'");
    }
    if (allowed == constraints.end() || !allowed->second->IsValid(Property(std::string(), codecId))) {
        throw RequestError(
            "the format '" + format.id + "' does not carry the codec '" + codecId + "'" +
            (allowed == constraints.end() ? std::string() : "; it carries " + WhatIsAllowed(*allowed->second).words));
    }
    if (!Proc::FindEncoder(CodecNameOf(codecId), Proc::ImplNames::FFMPEG)) {
        throw RequestError("this build of FFmpeg has no encoder for the codec '" + codecId + "'");
    }
}

NamedHelper FindCodec(const NamedHelper& format, const std::string& kind, const std::string& streamType,
                      const std::string& codecId) {
    RequireEncodable(format, kind, streamType, codecId);
    const auto& helpers = GetAvailableDataHelpers(kind);
    const auto helper = helpers.find(codecId);
    if (helper == helpers.end()) throw RequestError("there are no rules for the codec '" + codecId + "'");
    return {kind, codecId, helper->second};
}

/// The container's first default stream of a type, or null.
const Property* FindStream(const Property& format, const std::string& type) {
    for (const Property& stream : format[P::KEY_STREAMS]) {
        if (stream[P::KEY_TYPE_ID].GetString() == type) return &stream;
    }
    return nullptr;
}

/// The codec that was chosen, or the container's default where none was or the choice was left to the system.
std::string CodecOf(const Request& request, const Property& stream, const std::string& kind) {
    const std::string asked = request.TextAt(Path({kind, C::TAG_CODEC_ID}));
    return asked.empty() || asked == C::CODEC_ID_AUTO ? stream[kind][C::TAG_CODEC_ID].GetString() : asked;
}

// -------------------------------------------------------------------------------------------- filters' sections

/// Whether the name is one of FFmpeg's layouts, or the like, that the rule book has a record of.
template <class Record>
void RequireKnown(const Request& request, const std::string& path) {
    const std::string name = request.TextAt(path);
    if (name.empty()) return;
    try {
        Record::Find(name);
    } catch (const FormatException&) {
        throw RequestError(request.Find(path)->option + ": unknown name '" + name + "'");
    }
}

Property ResampleSection(const Request& request) {
    const std::string& filter = Proc::IFilterResample::CLASS_ID;
    RequireKnown<LayoutRecord>(request, Path({filter, Proc::IResample::CLASS_ID, A::TAG_LAYOUT}));
    RequireKnown<SampleFmtRecord>(request, Path({filter, A::TAG_SAMPLE_FORMAT}));
    return WithChoices(Proc::IFilterResample::Settings2Property({}), request);
}

Property FrameRateSection(const Request& request) {
    return WithChoices(Proc::IFilterFrameRate::MakeSettings(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE),
                       request);
}

void UseSize(Property& section, long long width, long long height) {
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_CUSTOM);
    resize.SetChildT(V::TAG_WIDTH, width);
    resize.SetChildT(V::TAG_HEIGHT, height);
}

/// The frame sizes that a codec's rules offer for what is asked of it; empty where any will do.
std::vector<std::pair<long long, long long>> SizesOf(const IDataHelper& codec, const Request& request) {
    const Property preset = AssemblePreset({WithChoices(codec.GetDefaults(), request)});
    RuleList rules;
    codec.GetValidationRules(rules);
    const std::string sizePath = Path({Proc::IFilterResize::CLASS_ID, IResize::CLASS_ID, IResize::FRAME_SIZE_MODE});
    std::vector<std::pair<long long, long long>> sizes;
    for (const auto& [key, rule] : rules) {
        if (rule->GetSecondPath() != sizePath || !preset.ChildExists(rule->GetFirstPath()) ||
            !rule->GetFirstConstraint()->IsValid(preset[rule->GetFirstPath()])) {
            continue;
        }
        for (const Property& size : WhatIsAllowed(*rule->GetSecondConstraint()).values) {
            sizes.emplace_back(size[V::TAG_WIDTH].GetInt64(), size[V::TAG_HEIGHT].GetInt64());
        }
    }
    return sizes;
}

/// Of the sizes, the one whose encoder takes a frame rate near the source's, and of those the nearest in area.
std::pair<long long, long long> NearestSize(const std::vector<std::pair<long long, long long>>& sizes,
                                            const std::string& codecId, const VideoSource& source) {
    const auto distance = [&](const std::pair<long long, long long>& size) {
        const EncoderForm* const form = FormOf(codecId, size.first, size.second);
        const double ofRate = form == nullptr ? 0.0
                                              : std::abs(boost::rational_cast<double>(form->frameRate) -
                                                         boost::rational_cast<double>(ToRatio(source.frameRate)));
        const long long area = 1LL * source.width * source.height;
        return std::pair(ofRate, std::llabs(size.first * size.second - area));
    };
    return *std::min_element(sizes.begin(), sizes.end(),
                             [&](const auto& one, const auto& two) { return distance(one) < distance(two); });
}

void RequireLegal(const Property& section, const Request& request) {
    const NamedHelper helper = FindHelper(section.GetName(), std::string());
    for (const Finding& finding : CheckPreset(AssemblePreset({section}), {helper})) {
        const Choice* const choice = request.Find(finding.path);
        throw RequestError((choice != nullptr ? choice->option : finding.path) + ": '" +
                           Core::PropertyValueToString(section[finding.path.substr(section.GetName().size() + 1)]) +
                           "' is not legal here; allowed: " + finding.allowed.words);
    }
}

Property ResizeSection(Plan& plan, const NamedHelper& codec, const VideoSource& source) {
    Property section = CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetDefaults();
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_ORIGINAL);
    section = WithChoices(std::move(section), plan.request);
    const bool isChosen = plan.request.Asks(Proc::IFilterResize::CLASS_ID);
    const auto sizes = SizesOf(*codec.helper, plan.request);
    if (!sizes.empty()) {
        const Property& chosen = section[IResize::CLASS_ID];
        const auto size = std::pair(chosen[V::TAG_WIDTH].GetInt64(), chosen[V::TAG_HEIGHT].GetInt64());
        if (!isChosen) {
            const auto nearest = NearestSize(sizes, codec.id, source);
            UseSize(section, nearest.first, nearest.second);
            plan.notes.push_back("'" + codec.id + "' has its own frame sizes; the picture is brought to " +
                                 SizeText(nearest.first, nearest.second) + ".");
        } else if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) {
            std::vector<std::string> names;
            names.reserve(sizes.size());
            for (const auto& [width, height] : sizes) names.push_back(SizeText(width, height));
            throw RequestError("--size: '" + SizeText(size.first, size.second) +
                               "' is not legal here; allowed: one of " + Join(names));
        }
    } else if (const auto [width, height] = FittingSize(codec.id, source.width, source.height);
               !isChosen && (width != source.width || height != source.height)) {
        UseSize(section, width, height);
        Property& even = section[IResize::CLASS_ID];
        even.SetChildT(IResize::MODE, IResize::MODE_STRETCH);
        even.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
        even.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    }
    RequireLegal(section, plan.request);
    return section;
}

// ------------------------------------------------------------------------------------------------------ streams

Property VideoStreamOf(const VideoSource& source, const std::string& codecId) {
    Property stream(V::TAG_FORMAT_CODEC_VIDEO);
    stream.SetChildT(C::TAG_CODEC_ID, codecId);
    stream.SetChildT(V::TAG_WIDTH, source.width);
    stream.SetChildT(V::TAG_HEIGHT, source.height);
    stream.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
    stream.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    stream.SetChildT(V::TAG_FPS, ToRatio(source.frameRate));
    return stream;
}

Property AudioStreamOf(const AudioSource& source, const std::string& codecId) {
    Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT(C::TAG_CODEC_ID, codecId);
    stream.SetChildT(A::TAG_SAMPLE_RATE, source.sampleRate);
    stream.SetChildT(A::TAG_SAMPLE_FORMAT, source.sampleFormat);
    stream.SetChildT(A::TAG_LAYOUT, source.layout);
    return stream;
}

std::string WordsFor(const VideoSource& source) {
    return source.codecId + ", " + SizeText(source.width, source.height) + ", " + FpsText(ToRatio(source.frameRate)) +
           " fps";
}

std::string WordsFor(const AudioSource& source) {
    return source.codecId + ", " + std::to_string(source.sampleRate) + " Hz, " + source.layout;
}

SP<const ICodecData> DataOf(std::size_t size) {
    return size == 0 ? nullptr : CodecData::Create(std::vector<std::uint8_t>(size));
}

/// A stream of the input as one that is carried over unchanged.
template <class Source>
Property Unchanged(const Source& source) {
    Property settings(std::string("stream"));
    settings.SetChildT(C::TAG_CODEC_ID, source.codecId);
    settings.SetChildT(C::TAG_FOURCC, source.codecTag);
    settings.SetChildT(C::TAG_LOSSLESS, true);
    settings.SetChildT(C::TAG_MAIN_STREAM, true);
    return settings;
}

SP<const IFormatCodec> Describe(const VideoSource& source) {
    return FormatCodecVideo::Create(Unchanged(source), av_get_pix_fmt(source.pixelFormat.c_str()),
                                    DataOf(source.codecDataSize));
}

SP<const IFormatCodec> Describe(const AudioSource& source) {
    Property settings = Unchanged(source);
    settings.SetChildT(A::TAG_LAYOUT, source.layout);
    return FormatCodecAudio::Create(settings, DataOf(source.codecDataSize));
}

/// Plans to carry a stream over unchanged, where that was asked and can be.
template <class Source>
bool PlanCopy(Plan& plan, const Property& formatTree, const Source& source, StreamPlan::Kind kind, bool isAsked) {
    const char* const name = kind == StreamPlan::Kind::Video ? "picture" : "sound";
    if (!plan.request.copy) return false;
    if (isAsked) {
        plan.notes.push_back(std::string("The ") + name + " is encoded, since something was asked of it.");
        return false;
    }
    if (!CodecIsSupported(FormatFile::Create(formatTree), Describe(source))) {
        plan.notes.push_back("'" + plan.formatId + "' does not take the " + name + " (" + source.codecId +
                             ") as it is; it is encoded.");
        return false;
    }
    StreamPlan stream;
    stream.kind = kind;
    stream.source = WordsFor(source);
    stream.isCopied = true;
    plan.job.copies.push_back(source.streamIndex);
    plan.streams.push_back(std::move(stream));
    return true;
}

void PlanVideo(Plan& plan, const NamedHelper& format, const Property& formatTree) {
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_VIDEO);
    const Request& request = plan.request;
    const std::string& kind = P::KEY_FILTER_VIDEO_CODEC;
    const bool isCodecChosen = request.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr;
    if (request.noVideo || stream == nullptr || !plan.input.video) {
        if (isCodecChosen && !request.noVideo) {
            throw RequestError("--video: there is no picture in the " +
                               std::string(stream == nullptr ? "format '" + plan.formatId + "'" : "input"));
        }
        return;
    }
    const VideoSource& source = *plan.input.video;
    const bool isCover = stream->ChildExists(V::TAG_COVER_FLAG);
    if (isCover && !source.isAttachedPicture && !isCodecChosen) {
        plan.notes.push_back("'" + plan.formatId +
                             "' holds sound; give --video to take the first picture for a cover.");
        return;
    }
    const bool isAsked = isCodecChosen || request.Asks(kind) || request.Asks(Proc::IFilterResize::CLASS_ID) ||
                         request.Asks(Proc::IFilterFrameRate::CLASS_ID);
    if (!isCover && !IsStill(plan.formatId) && PlanCopy(plan, formatTree, source, StreamPlan::Kind::Video, isAsked)) {
        return;
    }
    const NamedHelper codec = FindCodec(format, kind, P::STREAM_TYPE_VIDEO, CodecOf(request, *stream, kind));
    const Property resize = ResizeSection(plan, codec, source);
    Property frameRate = FrameRateSection(request);
    const Property& size = resize[IResize::CLASS_ID];
    const EncoderForm* const form = FormOf(codec.id, size[V::TAG_WIDTH].GetInt64(), size[V::TAG_HEIGHT].GetInt64());
    if (form != nullptr && !request.Asks(Proc::IFilterFrameRate::CLASS_ID)) {
        frameRate.SetChildT(V::TAG_FPS, form->frameRate);
    }

    Property values = VideoStreamOf(source, codec.id);
    if (isCover) values.SetChildT(V::TAG_COVER_FLAG, true);
    StreamPlan settled = Settle({format, formatTree, codec, {resize, frameRate}, request}, std::move(values));
    settled.kind = StreamPlan::Kind::Video;
    settled.source = WordsFor(source);
    plan.job.video = MakeVideoJob(settled.settled, source, resize);
    plan.job.video->isCover = isCover;
    plan.job.video->isStill = IsStill(plan.formatId);
    if (form != nullptr) plan.job.video->pixelFormat = form->pixelFormat;
    plan.settled.SetChild(resize.GetName(), resize);
    plan.streams.push_back(std::move(settled));
}

/// Whether the codec's rules settle the sample format. Where they do not, the encoder is left to choose.
bool HasSampleFormatRule(const IDataHelper& codec) {
    RuleList rules;
    codec.GetValidationRules(rules);
    const std::string path = Path({Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_FORMAT});
    return std::any_of(rules.begin(), rules.end(),
                       [&path](const auto& rule) { return rule.second->GetSecondPath() == path; });
}

void PlanAudio(Plan& plan, const NamedHelper& format, const Property& formatTree) {
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_AUDIO);
    const Request& request = plan.request;
    const std::string& kind = P::KEY_FILTER_AUDIO_CODEC;
    const bool isCodecChosen = request.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr;
    if (request.noAudio || stream == nullptr || !plan.input.audio) {
        if (isCodecChosen && !request.noAudio) {
            throw RequestError("--audio: there is no sound in the " +
                               std::string(stream == nullptr ? "format '" + plan.formatId + "'" : "input"));
        }
        if (plan.input.audio && !request.noAudio && plan.job.video) {
            plan.notes.push_back("'" + plan.formatId + "' holds no sound; it is left out.");
        }
        return;
    }
    const AudioSource& source = *plan.input.audio;
    const bool isAsked = isCodecChosen || request.Asks(kind) || request.Asks(Proc::IFilterResample::CLASS_ID);
    if (PlanCopy(plan, formatTree, source, StreamPlan::Kind::Audio, isAsked)) return;

    const NamedHelper codec = FindCodec(format, kind, P::STREAM_TYPE_AUDIO, CodecOf(request, *stream, kind));
    StreamPlan settled =
        Settle({format, formatTree, codec, {ResampleSection(request)}, request}, AudioStreamOf(source, codec.id));
    settled.kind = StreamPlan::Kind::Audio;
    settled.source = WordsFor(source);
    plan.job.audio = MakeAudioJob(settled.settled, source);
    plan.streams.push_back(std::move(settled));
    const bool isFormatChosen = request.Find(Path({Proc::IFilterResample::CLASS_ID, A::TAG_SAMPLE_FORMAT})) != nullptr;
    if (!isFormatChosen && !HasSampleFormatRule(*codec.helper)) plan.job.audio->sampleFormat.clear();
    const int stored = DataHelperAudioCodecPCM::GetStoredBitsPerSample(codec.id);
    const int counted = SampleFmtRecord::Find(plan.streams.back().settled[A::TAG_SAMPLE_FORMAT].GetString()).bits;
    if (stored != 0 && stored != counted) {
        plan.notes.push_back("'" + codec.id + "' stores " + std::to_string(stored) + " of the " +
                             std::to_string(counted) + " bits that its encoder takes and the bitrate counts.");
    }
}

/// Subtitles go into subtitle files, and into films where they were asked for.
void PlanSubtitles(Plan& plan, const NamedHelper& format, const Property& formatTree) {
    const std::string& kind = P::KEY_FILTER_SUBTITLE_CODEC;
    const bool isChosen = plan.request.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr;
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_SUBTITLES_TEXT);
    const bool isOnlyKind = stream != nullptr && formatTree[P::KEY_STREAMS].Count() == 1;
    if (!isChosen && !isOnlyKind) return;
    if (stream == nullptr) throw RequestError("--subtitles: the format '" + plan.formatId + "' holds none");
    if (!plan.input.subtitle) throw RequestError("there are no subtitles in the input");
    const SubtitleSource& source = *plan.input.subtitle;
    if (!source.isText) throw RequestError("the subtitles of the input (" + source.codecId + ") are pictures");

    const std::string codecId = CodecOf(plan.request, *stream, kind);
    RequireEncodable(format, kind, P::STREAM_TYPE_SUBTITLES_TEXT, codecId);
    StreamPlan settled;
    settled.kind = StreamPlan::Kind::Subtitle;
    settled.source = source.codecId;
    settled.settled = Property(std::string("subtitles"));
    settled.settled.SetChildT(C::TAG_CODEC_ID, codecId);
    settled.asked = settled.settled;
    plan.job.subtitle = SubtitleJob{source.streamIndex, CodecNameOf(codecId)};
    plan.streams.push_back(std::move(settled));
}

// ------------------------------------------------------------------------------------------------------ presets

/// The codec's section and the filters' that give a settled stream again.
void AddSettled(const StreamPlan& plan, Property& preset) {
    const Property& stream = plan.settled;
    const bool isVideo = stream.GetName() == V::TAG_FORMAT_CODEC_VIDEO;
    const bool isAudio = stream.GetName() == A::TAG_FORMAT_CODEC_AUDIO;
    Property section(isVideo   ? P::KEY_FILTER_VIDEO_CODEC
                     : isAudio ? P::KEY_FILTER_AUDIO_CODEC
                               : P::KEY_FILTER_SUBTITLE_CODEC);
    const std::string filterTags[] = {V::TAG_WIDTH,  V::TAG_HEIGHT,         V::TAG_ASPECTX,     V::TAG_ASPECTY,
                                      V::TAG_FPS,    V::TAG_COVER_FLAG,     A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT,
                                      A::TAG_LAYOUT, A::TAG_BITS_PER_SAMPLE};
    for (const Property& value : stream) {
        if (std::find(std::begin(filterTags), std::end(filterTags), value.GetName()) == std::end(filterTags)) {
            section.AddNamed(value);
        }
    }
    preset.SetChild(section.GetName(), section);
    if (isVideo) {
        const Property rate = Proc::IFilterFrameRate::MakeSettings(
            plan.isAtSourceRate ? Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE
                                : stream[V::TAG_FPS].GetRatio());
        preset.SetChild(rate.GetName(), rate);
    }
    if (isAudio) {
        Proc::SettingsFilterResample settings;
        settings.sampleRate = static_cast<int>(stream[A::TAG_SAMPLE_RATE].GetInt64());
        settings.layout = LayoutRecord::Find(stream[A::TAG_LAYOUT].GetString()).layout;
        settings.sampleFormat = SampleFmtRecord::Find(stream[A::TAG_SAMPLE_FORMAT].GetString()).format;
        const Property resample = Proc::IFilterResample::Settings2Property(settings);
        preset.SetChild(resample.GetName(), resample);
    }
}

void CollectChoices(const Property& node, const std::string& path, const Document::PresetDocument& document,
                    std::vector<Choice>& choices) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : Path({path, child.GetName()});
        if (child.GetType() == PT_NODE) {
            CollectChoices(child, below, document, choices);
        } else {
            choices.push_back({below, child, "preset, line " + std::to_string(document.LineOf(below))});
        }
    }
}

}  // namespace

void TakeCensus() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
}

void ChooseFromPreset(Request& request, const std::string& presetText) {
    std::vector<Choice> choices;
    try {
        const Document::PresetDocument document = Document::ReadPreset(presetText);
        const std::string sections[] = {P::KEY_FORMAT,
                                        P::KEY_FILTER_VIDEO_CODEC,
                                        P::KEY_FILTER_AUDIO_CODEC,
                                        P::KEY_FILTER_SUBTITLE_CODEC,
                                        Proc::IFilterResize::CLASS_ID,
                                        Proc::IFilterFrameRate::CLASS_ID,
                                        Proc::IFilterResample::CLASS_ID};
        for (const Property& section : document.preset) {
            const std::string& name = section.GetName();
            if (std::find(std::begin(sections), std::end(sections), name) == std::end(sections)) {
                throw RequestError("line " + std::to_string(document.LineOf(name)) + ": this program has no use for '" +
                                   name + "'");
            }
            const std::string idPath =
                Path({name, name == P::KEY_FORMAT ? IFormatFile::TAG_CONTAINER : C::TAG_CODEC_ID});
            const std::string chosen = request.TextAt(idPath);
            // What was set for one codec means nothing to another.
            if (!chosen.empty() && document.preset[idPath].GetString() != chosen) continue;
            CollectChoices(section, name, document, choices);
        }
    } catch (const Document::DocumentException& error) {
        throw RequestError("'" + request.presetFile + "', " + error.what());
    }
    request.choices.insert(request.choices.begin(), choices.begin(), choices.end());
}

namespace {

/// A value of a type that cannot be read comes from a preset: the command line gives every value its type.
[[noreturn]] void RefuseUnreadable(const Request& request, const Core::PropertyException& error) {
    const auto* const name = boost::get_error_info<Core::PropertyException::TagPropertyName>(error);
    const auto* const type = boost::get_error_info<Core::PropertyException::TagPropertyType>(error);
    for (auto choice = request.choices.rbegin(); choice != request.choices.rend(); ++choice) {
        const std::string tag = choice->path.substr(choice->path.rfind(Property::SEPARATOR) + 1);
        if (name != nullptr && type != nullptr && tag == *name && choice->value.GetType() == *type) {
            throw RequestError(choice->option + ": '" + Core::PropertyValueToString(choice->value) +
                               "' is no value of the type of '" + choice->path + "'");
        }
    }
    throw;
}

Plan PlanFor(const Request& request, const InputInfo& input) {
    Plan plan;
    plan.request = request;
    plan.notes = request.notes;
    plan.input = input;
    const std::string chosen = request.TextAt(Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER}));
    plan.formatId = chosen.empty() ? FormatOf(request.output) : chosen;
    const NamedHelper format = FindFormat(plan.formatId);
    const Property formatTree = format.helper->GetDefaults();
    plan.settled = Property(std::string("preset"));
    plan.settled.SetChild(P::KEY_FORMAT).SetChildT(IFormatFile::TAG_CONTAINER, plan.formatId);

    plan.job.inputPath = request.input;
    plan.job.outputPath = request.output;
    plan.job.muxer = MuxerOf(plan.formatId);
    plan.job.muxerOptions = MuxerOptionsOf(plan.formatId);
    plan.job.globalHeader = FormatHasGlobalHeader(plan.formatId);
    PlanVideo(plan, format, formatTree);
    PlanAudio(plan, format, formatTree);
    PlanSubtitles(plan, format, formatTree);
    if (plan.streams.empty()) {
        throw RequestError("'" + request.input + "' has no stream that the format '" + plan.formatId + "' could hold");
    }
    for (const StreamPlan& stream : plan.streams) {
        if (!stream.isCopied) AddSettled(stream, plan.settled);
    }
    return plan;
}

}  // namespace

Plan MakePlan(const Request& request, const InputInfo& input) {
    try {
        return PlanFor(request, input);
    } catch (const Core::PropertyException& error) {
        RefuseUnreadable(request, error);
    }
}

}  // namespace NorvexExport
