#include "Plan.h"

#include <algorithm>

#include "Formats.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;
using Proc::IResample;
using Proc::IResize;
using Helper = SP<const IDataHelper>;

std::string Join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

/// What a constraint allows, in words.
std::string Allowed(const IPropertyConstraint& constraint, const std::string& parameter) {
    const auto consumer = FakeConstraintConsumer::Create();
    constraint.FillValueList(consumer);
    const Property values = consumer->GetValue();
    if (values.ChildExists("minValue") && values.ChildExists("maxValue")) {
        return "from " + Core::PropertyValueToString(values["minValue"]) + " to " +
               Core::PropertyValueToString(values["maxValue"]);
    }
    std::vector<std::string> names;
    for (const Property& value : values) names.push_back(value.GetName());
    if (names.empty()) return constraint.Description(parameter);
    return (names.size() > 1 ? "one of " : "") + Join(names);
}

std::string Path(std::initializer_list<std::string> tags) {
    std::string path;
    for (const std::string& tag : tags) path += (path.empty() ? "" : Property::SEPARATOR) + tag;
    return path;
}

/// Whether a value keeps a constraint; what a constraint refuses to judge does not keep it.
bool Keeps(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value);
    } catch (const Exception&) {
        return false;
    }
}

/// The node at a path, made on the way where it is missing.
Property& MakePath(Property& root, const std::string& path) {
    Property* node = &root;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = path.find(Property::SEPARATOR, begin);
        node = &node->SetChild(path.substr(begin, end == std::string::npos ? end : end - begin));
        if (end == std::string::npos) return *node;
        begin = end + Property::SEPARATOR.size();
    }
}

void CopyIfThere(const Property& from, const std::string& tag, Property& to, const std::string& path) {
    if (from.ChildExists(tag)) MakePath(to, path).CopyDataFrom(from[tag]);
}

/// Rules are evaluated on one tree a stream, in which the container, the codec's section and the filters' sections
/// stand side by side. The stream's values go where the rules read them.
Property RuleTree(const Property& format, const std::string& codecKey, const Property& stream) {
    Property root(std::string{"preset"});
    root.SetChild(P::KEY_FORMAT, format);
    root.SetChild(codecKey, stream);
    CopyIfThere(stream, V::TAG_COVER_FLAG, root, Path({P::KEY_FORMAT, V::TAG_COVER_FLAG}));
    const std::string profile = Path({C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE});
    CopyIfThere(stream, profile, root, Path({P::KEY_FORMAT, profile}));
    for (const std::string& tag : {A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT, A::TAG_LAYOUT}) {
        CopyIfThere(stream, tag, root, Path({Proc::IFilterResample::CLASS_ID, IResample::CLASS_ID, tag}));
    }
    for (const std::string& tag : {V::TAG_WIDTH, V::TAG_HEIGHT}) {
        CopyIfThere(stream, tag, root, Path({Proc::IFilterResize::CLASS_ID, IResize::CLASS_ID, tag}));
    }
    CopyIfThere(stream, V::TAG_FPS, root, Path({Proc::IFilterFrameRate::CLASS_ID, V::TAG_FPS}));
    return root;
}

/// One thing that must hold: a value in the stream's tree and the constraint on it.
struct Demand {
    std::string path;  ///< as the rule book writes it
    std::string tag;   ///< in the stream's tree
    SP<const IPropertyConstraint> constraint;
};

/// Where the stream's own tree has the value that a rule reads at a path of the preset.
std::string StreamPath(const std::string& rulePath, const std::string& codecKey) {
    const std::string codecSection = codecKey + Property::SEPARATOR;
    if (rulePath.compare(0, codecSection.size(), codecSection) == 0) return rulePath.substr(codecSection.size());
    std::string profile = Path({C::TAG_CODEC_OPTIONS_ENCODE, C::TAG_PROFILE});
    if (rulePath == Path({P::KEY_FORMAT, profile})) return profile;
    return rulePath.substr(rulePath.rfind(Property::SEPARATOR) + 1);
}

/// Everything that the rule book demands of one stream and that the stream does not keep.
std::vector<Demand> BrokenDemands(const std::vector<Helper>& helpers, const Helper& codec, const Property& format,
                                  const std::string& codecKey, const Property& stream) {
    std::vector<Demand> broken;
    ConstraintMap constraints;
    codec->GetConstraints(constraints);
    for (const auto& [path, constraint] : constraints) {
        if (stream.ChildExists(path) && !Keeps(*constraint, stream[path])) broken.push_back({path, path, constraint});
    }
    const Property root = RuleTree(format, codecKey, stream);
    RuleList rules;
    for (const Helper& helper : helpers) helper->GetValidationRules(rules);
    for (const auto& [key, rule] : rules) {
        const auto first = rule->GetFirstConstraint();
        const bool applies =
            !first || (root.ChildExists(rule->GetFirstPath()) && Keeps(*first, root[rule->GetFirstPath()]));
        const std::string& path = rule->GetSecondPath();
        if (!applies || !root.ChildExists(path) || Keeps(*rule->GetSecondConstraint(), root[path])) continue;
        broken.push_back({path, StreamPath(path, codecKey), rule->GetSecondConstraint()});
    }
    return broken;
}

void CollectLeaves(const Property& node, const std::string& path,
                   std::vector<std::pair<std::string, std::string>>& out) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : Path({path, child.GetName()});
        if (child.GetType() == PT_NODE) {
            CollectLeaves(child, below, out);
        } else {
            out.emplace_back(below, Core::PropertyValueToString(child));
        }
    }
}

/// What differs between two states of a stream's tree.
std::vector<Change> Changes(const Property& before, const Property& after, const std::string& by) {
    std::vector<std::pair<std::string, std::string>> old;
    std::vector<std::pair<std::string, std::string>> now;
    CollectLeaves(before, {}, old);
    CollectLeaves(after, {}, now);
    const auto find = [](const auto& leaves, const std::string& path) {
        return std::find_if(leaves.begin(), leaves.end(), [&path](const auto& leaf) { return leaf.first == path; });
    };
    std::vector<Change> changes;
    for (const auto& [path, value] : now) {
        const auto former = find(old, path);
        if (former == old.end()) {
            changes.push_back({path, {}, value, by});
        } else if (former->second != value) {
            changes.push_back({path, former->second, value, by});
        }
    }
    for (const auto& [path, value] : old) {
        if (find(now, path) == now.end()) changes.push_back({path, value, {}, by});
    }
    return changes;
}

/// The helper of a codec that the container carries and this build can encode.
Helper FindCodec(const IDataHelper& format, const std::string& formatId, const std::string& kind,
                 const std::string& streamType, const std::string& codecId) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const auto allowed = constraints.find(Path({P::KEY_STREAMS + P::INDEX + streamType, kind, C::TAG_CODEC_ID}));
    if (GetFFCodecsMap().count(CodecIDFromTextID(codecId)) == 0) {
        throw RequestError("unknown codec '" + codecId + "'");
    }
    if (allowed == constraints.end() || !allowed->second->IsValid(Property(std::string(), codecId))) {
        throw RequestError(
            "the format '" + formatId + "' does not carry the codec '" + codecId + "'" +
            (allowed == constraints.end() ? std::string() : "; it carries " + Allowed(*allowed->second, codecId)));
    }
    const auto& helpers = GetAvailableDataHelpers(kind);
    const auto helper = helpers.find(codecId);
    if (helper == helpers.end()) throw RequestError("there are no rules for the codec '" + codecId + "'");
    if (!Proc::FindEncoder(codecId, Proc::ImplNames::FFMPEG)) {
        throw RequestError("this build of FFmpeg has no encoder for the codec '" + codecId + "'");
    }
    return helper->second;
}

void ApplyChoices(const std::vector<Choice>& choices, Property& section) {
    for (const Choice& choice : choices) MakePath(section, choice.path).CopyDataFrom(choice.value);
}

const Choice* FindChoice(const std::vector<Choice>& choices, const std::string& path) {
    const auto choice =
        std::find_if(choices.begin(), choices.end(), [&path](const Choice& c) { return c.path == path; });
    return choice != choices.end() ? &*choice : nullptr;
}

/// What a message calls a value: the option that it came from, where one did, or else the rule book's path.
std::string NameFor(const Demand& demand, const Choice* choice) {
    if (choice != nullptr) return choice->option;
    if (demand.tag == V::TAG_WIDTH || demand.tag == V::TAG_HEIGHT) return "--size";
    return demand.path;
}

/// Brings one stream from its preset to legal settings.
class StreamSettler {
public:
    StreamSettler(const Helper& format, const Property& formatTree, const Helper& codec, std::string codecKey,
                  std::vector<Choice> choices)
        : m_format(format),
          m_formatTree(formatTree),
          m_codec(codec),
          m_codecKey(std::move(codecKey)),
          m_choices(std::move(choices)) {}

    /// `stream` starts as the source's values under the flat node's name. `filters` are the filter sections in the
    /// order in which they are applied.
    StreamPlan Settle(Property stream, const std::vector<Property>& filters) {
        std::vector<Helper> helpers = {m_format, m_codec};
        for (const Property& filter : filters) {
            const Helper helper = CreateDataHelper(filter.GetName(), std::string());
            helper->ApplyPresetSettings(filter, stream);
            helpers.push_back(helper);
        }
        Property preset = m_codec->GetDefaults();
        ApplyChoices(m_choices, preset);
        m_codec->ApplyPresetSettings(preset, stream);

        StreamPlan plan;
        plan.asked = stream;
        for (const Demand& demand : BrokenDemands(helpers, m_codec, m_formatTree, m_codecKey, stream)) {
            // A constraint and a rule often say the same of a value.
            const Violation violation = Describe(demand, stream);
            const bool known = std::any_of(plan.broken.begin(), plan.broken.end(), [&violation](const Violation& v) {
                return v.value == violation.value && v.allowed == violation.allowed;
            });
            if (!known) plan.broken.push_back(violation);
        }
        Correct(plan, stream, "format", *m_format);
        Correct(plan, stream, "codec", *m_codec);
        Mend(plan, stream, helpers);
        plan.settled = std::move(stream);
        return plan;
    }

private:
    static Violation Describe(const Demand& demand, const Property& stream) {
        return {demand.path, Core::PropertyValueToString(stream[demand.tag]), Allowed(*demand.constraint, demand.tag)};
    }

    static void Correct(StreamPlan& plan, Property& stream, const char* by, const IDataHelper& helper) {
        const Property before = stream;
        try {
            helper.CorrectFormatCodec(stream);
        } catch (const std::logic_error& error) {
            // The message goes on with the call stack.
            const std::string message = error.what();
            throw RequestError(message.substr(0, message.find('\n')));
        } catch (const FormatException& error) {
            const auto* const subject = boost::get_error_info<TagDetails>(error);
            const auto* const words = boost::get_error_info<TagDescription>(error);
            throw RequestError((words ? *words : "Unknown name") + (subject ? " '" + *subject + "'" : ""));
        }
        const auto changes = Changes(before, stream, by);
        plan.changes.insert(plan.changes.end(), changes.begin(), changes.end());
    }

    /// Correction leaves alone what only validation looks at, such as the encoder's options. What the user did not
    /// ask for gives way to what was asked; what still does not fit then is an error.
    void Mend(StreamPlan& plan, Property& stream, const std::vector<Helper>& helpers) const {
        const Property before = stream;
        for (const Demand& demand : BrokenDemands(helpers, m_codec, m_formatTree, m_codecKey, stream)) {
            if (FindChoice(m_choices, demand.tag) == nullptr) demand.constraint->Fixup(stream[demand.tag]);
        }
        const auto changes = Changes(before, stream, "rules");
        plan.changes.insert(plan.changes.end(), changes.begin(), changes.end());

        const auto left = BrokenDemands(helpers, m_codec, m_formatTree, m_codecKey, stream);
        if (left.empty()) return;
        const Demand& demand = left.front();
        const Violation violation = Describe(demand, stream);
        throw RequestError(NameFor(demand, FindChoice(m_choices, demand.tag)) + ": '" + violation.value +
                           "' is not legal here; allowed: " + violation.allowed);
    }

    const Helper m_format;
    const Property m_formatTree;
    const Helper m_codec;
    const std::string m_codecKey;
    const std::vector<Choice> m_choices;
};

/// Whether the name is one of FFmpeg's layouts, or the like, that the rule book has a record of.
template <class Record>
void RequireKnown(const std::string& name, const char* option) {
    try {
        Record::Find(name);
    } catch (const FormatException&) {
        throw RequestError(std::string(option) + ": unknown name '" + name + "'");
    }
}

Property ResampleSection(const Request& request) {
    Proc::SettingsFilterResample settings;
    if (request.sampleRate) settings.sampleRate = *request.sampleRate;
    if (!request.layout.empty()) {
        RequireKnown<LayoutRecord>(request.layout, "--layout");
        settings.layout = LayoutRecord::Find(request.layout).layout;
    }
    if (!request.sampleFormat.empty()) {
        RequireKnown<SampleFmtRecord>(request.sampleFormat, "--sample-format");
        settings.sampleFormat = SampleFmtRecord::Find(request.sampleFormat).format;
    }
    return Proc::IFilterResample::Settings2Property(settings);
}

Property FrameRateSection(const Request& request) {
    return Proc::IFilterFrameRate::MakeSettings(
        request.frameRate.value_or(Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE));
}

Property ResizeSection(const Request& request, const VideoSource& source) {
    Property section = CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetDefaults();
    Property& resize = section[IResize::CLASS_ID];
    const auto useSize = [&resize](int width, int height, const std::string& mode) {
        resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_CUSTOM);
        resize.SetChildT(V::TAG_WIDTH, width);
        resize.SetChildT(V::TAG_HEIGHT, height);
        if (!mode.empty()) resize.SetChildT(IResize::MODE, mode);
    };
    if (request.size) {
        useSize(request.size->first, request.size->second, request.resizeMode);
    } else if (source.width % 2 != 0 || source.height % 2 != 0) {
        // The rule book wants even sizes, and most encoders do.
        useSize(std::max(2, source.width / 2 * 2), std::max(2, source.height / 2 * 2), IResize::MODE_STRETCH);
        resize.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
        resize.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    } else {
        resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_ORIGINAL);
    }

    ConstraintMap constraints;
    CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetConstraints(constraints);
    for (const auto& [path, constraint] : constraints) {
        if (Keeps(*constraint, section[path])) continue;
        throw RequestError((path.find(IResize::MODE) != std::string::npos ? "--resize-mode: '" : "--size: '") +
                           Core::PropertyValueToString(section[path]) +
                           "' is not legal here; allowed: " + Allowed(*constraint, path));
    }
    return section;
}

Fit FitOf(const Property& resizeSection, const FrameInfo& source, const FrameInfo& target) {
    const auto settings = Proc::IFilterResize::Property2Settings(resizeSection);
    using Modes = Proc::SettingsResizer::CustomModes;
    if (settings.frameSizeMode != Proc::SettingsResizer::FrameSizeModes::Custom) return Fit::Stretch;
    switch (settings.mode) {
        case Modes::Letterbox:
            return Fit::Letterbox;
        case Modes::Crop:
            return Fit::Crop;
        case Modes::Auto: {
            const auto shape = [](const FrameInfo& frame) {
                return static_cast<double>(frame.width) * frame.aspectX /
                       (static_cast<double>(frame.height) * frame.aspectY);
            };
            const double ratio = shape(source) / shape(target);
            return ratio > 0.98 && ratio < 1.02 ? Fit::Stretch : Fit::Letterbox;
        }
        default:
            return Fit::Stretch;
    }
}

const char* ScalerOf(const Property& resizeSection) {
    switch (Proc::IFilterResize::Property2Settings(resizeSection).method) {
        case Proc::SettingsResizer::Methods::Point:
            return "neighbor";
        case Proc::SettingsResizer::Methods::FastBilinear:
            return "fast_bilinear";
        case Proc::SettingsResizer::Methods::Bilinear:
            return "bilinear";
        case Proc::SettingsResizer::Methods::Bicubic:
            break;
    }
    return "bicubic";
}

int ToInt(const Property& value) {
    return static_cast<int>(value.GetInt64());
}

Fraction ToFraction(const Core::Ratio& ratio) {
    return {static_cast<int>(ratio.numerator()), static_cast<int>(ratio.denominator())};
}

/// The encoder's options that FFmpeg knows by the same names.
std::vector<std::pair<std::string, std::string>> EncoderOptions(const Property& stream) {
    std::vector<std::pair<std::string, std::string>> options;
    if (!stream.ChildExists(C::TAG_CODEC_OPTIONS_ENCODE)) return options;
    const Property& section = stream[C::TAG_CODEC_OPTIONS_ENCODE];
    for (const std::string* tag : {&C::TAG_PRESET, &C::TAG_PROFILE, &V::TAG_X264_TUNE}) {
        if (section.ChildExists(*tag)) options.emplace_back(*tag, section[*tag].GetString());
    }
    return options;
}

template <class Job>
void SetRateControl(const Property& stream, Job& job) {
    const bool variable = stream.ChildExists(C::TAG_BITRATE_MODE) &&
                          stream[C::TAG_BITRATE_MODE].GetString() == C::TAG_BITRATE_MODE_VBR &&
                          stream.ChildExists(C::TAG_QUALITY);
    job.rateControl = variable ? RateControl::Quality : RateControl::Bitrate;
    if (stream.ChildExists(C::TAG_BITRATE)) job.bitrate = stream[C::TAG_BITRATE].GetInt64();
    if (stream.ChildExists(C::TAG_QUALITY)) job.quality = ToInt(stream[C::TAG_QUALITY]);
}

VideoJob MakeVideoJob(const Property& stream, const VideoSource& source, const Property& resizeSection) {
    VideoJob job;
    job.streamIndex = source.streamIndex;
    job.codecId = stream[C::TAG_CODEC_ID].GetString();
    job.width = ToInt(stream[V::TAG_WIDTH]);
    job.height = ToInt(stream[V::TAG_HEIGHT]);
    job.sampleAspect = {ToInt(stream[V::TAG_ASPECTX]), ToInt(stream[V::TAG_ASPECTY])};
    job.frameRate = ToFraction(stream[V::TAG_FPS].GetRatio());
    job.fit = FitOf(resizeSection,
                    {source.width, source.height, source.sampleAspect.numerator, source.sampleAspect.denominator},
                    {job.width, job.height, job.sampleAspect.numerator, job.sampleAspect.denominator});
    job.scaler = ScalerOf(resizeSection);
    SetRateControl(stream, job);
    job.twoPass = stream.ChildExists(V::TAG_MULTIPASS_ENCODING) &&
                  stream[V::TAG_MULTIPASS_ENCODING].GetString() == V::TAG_TWO_PASS_MODE;
    // Two passes aim at a bitrate: the one that the quality stands for.
    if (job.twoPass) job.rateControl = RateControl::Bitrate;
    if (stream.ChildExists(V::TAG_MAX_B_FRAME_SEQUENCE)) job.maxBFrames = ToInt(stream[V::TAG_MAX_B_FRAME_SEQUENCE]);
    if (stream.ChildExists(V::TAG_MAX_I_FRAME_INTERVAL)) {
        job.keyFrameInterval = ToInt(stream[V::TAG_MAX_I_FRAME_INTERVAL]);
    }
    if (stream.ChildExists(C::TAG_THREAD_NUMBER)) job.threads = ToInt(stream[C::TAG_THREAD_NUMBER]);
    job.options = EncoderOptions(stream);
    return job;
}

AudioJob MakeAudioJob(const Property& stream, const AudioSource& source) {
    AudioJob job;
    job.streamIndex = source.streamIndex;
    job.codecId = stream[C::TAG_CODEC_ID].GetString();
    job.sampleRate = ToInt(stream[A::TAG_SAMPLE_RATE]);
    job.layout = stream[A::TAG_LAYOUT].GetString();
    job.sampleFormat = stream[A::TAG_SAMPLE_FORMAT].GetString();
    SetRateControl(stream, job);
    job.options = EncoderOptions(stream);
    return job;
}

std::string FpsText(const Core::Ratio& rate) {
    if (rate.denominator() == 1) return std::to_string(rate.numerator());
    std::string text = std::to_string(static_cast<double>(rate.numerator()) / static_cast<double>(rate.denominator()));
    return text.substr(0, text.find('.') + 3);
}

Property VideoStreamOf(const VideoSource& source, const std::string& codecId) {
    Property stream(V::TAG_FORMAT_CODEC_VIDEO);
    stream.SetChildT(C::TAG_CODEC_ID, codecId);
    stream.SetChildT(V::TAG_WIDTH, source.width);
    stream.SetChildT(V::TAG_HEIGHT, source.height);
    stream.SetChildT(V::TAG_ASPECTX, source.sampleAspect.numerator);
    stream.SetChildT(V::TAG_ASPECTY, source.sampleAspect.denominator);
    stream.SetChildT(V::TAG_FPS, Core::Ratio(source.frameRate.numerator, source.frameRate.denominator));
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

/// The container's first default stream of a type, or null.
const Property* FindStream(const Property& format, const std::string& type) {
    for (const Property& stream : format[P::KEY_STREAMS]) {
        if (stream[P::KEY_TYPE_ID].GetString() == type) return &stream;
    }
    return nullptr;
}

std::string CodecOf(const Property& stream, const std::string& codecKey, const std::string& asked) {
    return asked.empty() ? stream[codecKey][C::TAG_CODEC_ID].GetString() : asked;
}

Helper FindFormat(const std::string& formatId) {
    const auto& formats = GetAvailableDataHelpers(P::KEY_FORMAT);
    const auto format = formats.find(formatId);
    if (format != formats.end()) return format->second;
    std::vector<std::string> ids;
    for (const auto& row : formats) ids.push_back(row.first);
    throw RequestError((formatId.empty() ? "the output has no extension to tell the format by; give --format"
                                         : "unknown format '" + formatId + "'") +
                       "; the formats are " + Join(ids));
}

void PlanVideo(Plan& plan, const Helper& format, const Property& formatTree) {
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_VIDEO);
    const Request& request = plan.request;
    if (request.noVideo || stream == nullptr || !plan.input.video) {
        if (!request.videoCodec.empty() && !request.noVideo) {
            throw RequestError("--video: there is no picture in the " +
                               std::string(stream == nullptr ? "format '" + plan.formatId + "'" : "input"));
        }
        return;
    }
    if (stream->ChildExists(V::TAG_COVER_FLAG)) {
        plan.notes.push_back("'" + plan.formatId + "' holds sound; the picture is left out.");
        return;
    }
    const VideoSource& source = *plan.input.video;
    const std::string codecId = CodecOf(*stream, P::KEY_FILTER_VIDEO_CODEC, request.videoCodec);
    const Helper codec = FindCodec(*format, plan.formatId, P::KEY_FILTER_VIDEO_CODEC, P::STREAM_TYPE_VIDEO, codecId);
    const Property resize = ResizeSection(request, source);
    StreamSettler settler(format, formatTree, codec, P::KEY_FILTER_VIDEO_CODEC, request.video);
    StreamPlan settled = settler.Settle(VideoStreamOf(source, codecId), {resize, FrameRateSection(request)});
    settled.isVideo = true;
    settled.source = source.codecId + ", " + std::to_string(source.width) + "x" + std::to_string(source.height) + ", " +
                     FpsText({source.frameRate.numerator, source.frameRate.denominator}) + " fps";
    plan.job.video = MakeVideoJob(settled.settled, source, resize);
    plan.streams.push_back(std::move(settled));
}

void PlanAudio(Plan& plan, const Helper& format, const Property& formatTree) {
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_AUDIO);
    const Request& request = plan.request;
    if (request.noAudio || stream == nullptr || !plan.input.audio) {
        if (!request.audioCodec.empty() && !request.noAudio) {
            throw RequestError("--audio: there is no sound in the " +
                               std::string(stream == nullptr ? "format '" + plan.formatId + "'" : "input"));
        }
        return;
    }
    const AudioSource& source = *plan.input.audio;
    const std::string codecId = CodecOf(*stream, P::KEY_FILTER_AUDIO_CODEC, request.audioCodec);
    const Helper codec = FindCodec(*format, plan.formatId, P::KEY_FILTER_AUDIO_CODEC, P::STREAM_TYPE_AUDIO, codecId);
    StreamSettler settler(format, formatTree, codec, P::KEY_FILTER_AUDIO_CODEC, request.audio);
    StreamPlan settled = settler.Settle(AudioStreamOf(source, codecId), {ResampleSection(request)});
    settled.source = source.codecId + ", " + std::to_string(source.sampleRate) + " Hz, " + source.layout;
    plan.job.audio = MakeAudioJob(settled.settled, source);
    const int stored = DataHelperAudioCodecPCM::GetStoredBitsPerSample(codecId);
    const int counted = SampleFmtRecord::Find(plan.job.audio->sampleFormat).bits;
    if (stored != 0 && stored != counted) {
        plan.notes.push_back("'" + codecId + "' stores " + std::to_string(stored) + " of the " +
                             std::to_string(counted) + " bits that its encoder takes and the bitrate counts.");
    }
    plan.streams.push_back(std::move(settled));
}

}  // namespace

void TakeCensus() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
}

Plan MakePlan(const Request& request, const InputInfo& input) {
    Plan plan;
    plan.request = request;
    plan.input = input;
    plan.formatId = request.format.empty() ? FormatOf(request.output) : request.format;
    const Helper format = FindFormat(plan.formatId);
    const Property formatTree = format->GetDefaults();

    plan.job.inputPath = request.input;
    plan.job.outputPath = request.output;
    plan.job.muxer = MuxerOf(plan.formatId);
    plan.job.globalHeader = formatTree[C::TAG_GLOBAL_HEADER].GetBool();
    PlanVideo(plan, format, formatTree);
    PlanAudio(plan, format, formatTree);
    if (plan.streams.empty()) {
        throw RequestError("'" + request.input + "' has no stream that the format '" + plan.formatId + "' could hold");
    }
    return plan;
}

}  // namespace NorvexExport
