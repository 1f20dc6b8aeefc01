// norvex-rules: the rule book to look at.

#include <sys/ioctl.h>
#include <unistd.h>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/exception/diagnostic_information.hpp>

#include <cstdio>

#include "Book.h"
#include "BookDiff.h"
#include "Check.h"
#include "Fit.h"
#include "ForPeople.h"
#include "Page.h"
#include "Texts.h"
#include "common/CommandLine.h"
#include "common/Completion.h"
#include "common/ManPage.h"
#include "common/Presets.h"
#include "common/TextFiles.h"
#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace {

using namespace NorvexRules;

void Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

/// Writes to a file, or to standard output where none is named.
void Write(const std::string& path, const std::string& text) {
    if (path.empty()) return Print(text);
    NorvexApps::WriteText(path, text);
}

/// How wide lines may be.
std::size_t Columns() {
    winsize size{};
    constexpr std::size_t usual = 100;
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

using NorvexApps::Named;

const std::pair<const char*, Named> g_named[] = {{"format", Named::Format},
                                                 {"video", Named::VideoCodec},
                                                 {"audio", Named::AudioCodec},
                                                 {"subtitles", Named::SubtitleCodec},
                                                 {"filter", Named::Filter}};

/// The kind that the command line means, and what has names of that kind. "codecs" and plurals are heard as well.
std::pair<std::string, Named> KindOf(const std::string& name) {
    const std::string lower = boost::algorithm::to_lower_copy(name);
    std::string list;
    for (const auto& [kind, named] : g_named) {
        if (lower == kind || lower == std::string(kind) + "s" || lower + "s" == kind) return {kind, named};
        list += (list.empty() ? "" : named == Named::Filter ? " and " : ", ") + std::string(kind);
    }
    throw std::runtime_error("there is no kind '" + name + "'; there are " + list);
}

/// The id that a name means. Throws with what may have been meant.
std::string IdOf(Named kind, const std::string& name) {
    if (const auto id = NorvexApps::FindId(kind, name)) return *id;
    throw std::runtime_error(NorvexApps::WhyUnknown(kind, name));
}

/// One helper by its kind and a name: what holds in the end, or every rule as it stands.
std::string Show(const std::string& kindName, const std::string& name, bool rules) {
    const auto book = MakeBook();  // takes the census, before which no container may be looked up
    const auto [kind, named] = KindOf(kindName);
    const std::string id = NorvexApps::FindId(named, name).value_or(name);
    if (!rules) {
        if (const auto text = ShowForPeople(kind, id, Columns())) return *text;
    }
    if (const auto text = ShowText(book, kind, id)) return *text;
    if (id != name) throw std::runtime_error("there are no rules for the " + kind + " codec '" + id + "'");
    throw std::runtime_error(NorvexApps::WhyUnknown(named, name));
}

std::string List(const std::string& kind, const std::string& pattern, bool json) {
    const auto book = MakeBook();
    // A word alone is a kind, or else a part of the ids of every kind.
    Listing listing = {kind, pattern};
    const auto kinds = Kinds();
    try {
        if (!kind.empty()) listing.kind = KindOf(kind).first;
    } catch (const std::runtime_error&) {
        if (!pattern.empty()) throw;
        listing = {"", kind};
    }
    if (json) return ListJson(book, listing);
    const std::string text = ListText(book, listing);
    if (text.empty()) throw std::runtime_error("there is nothing of the name '" + listing.pattern + "'");
    return text;
}

/// Containers know by it what they carry.
void TakeCensus() {
    using namespace Norvex;
    Conf::FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
}

struct CheckOptions {
    std::string file;  ///< empty or "-" for standard input
    std::string mendedFile;
    bool json = false;
    bool diff = false;
};

/// Returns the exit status: 0 for a preset that keeps every rule.
int CheckFile(const CheckOptions& options) {
    namespace Document = Norvex::Document;
    TakeCensus();
    const bool isInput = options.file.empty() || options.file == "-";
    const std::string path = isInput ? "/dev/stdin" : NorvexApps::FindPreset(options.file);
    try {
        // What was set for another container or codec is dropped by mending.
        const std::string text = NorvexApps::ReadText(path, Document::g_largestPreset + 1);
        const auto document = Document::ReadPreset(text, Document::Foreign::Left);
        const auto mended = Norvex::Conf::MendPreset(document.preset);
        if (!options.mendedFile.empty()) {
            NorvexApps::WriteText(options.mendedFile, Document::WritePreset(mended.preset, document.about));
        }
        Print(options.json   ? JudgementJson(document, mended)
              : options.diff ? JudgementDiff(document, mended)
                             : JudgementText(document, mended));
        return mended.broken.empty() ? 0 : 1;
    } catch (const Document::DocumentException& error) {
        throw std::runtime_error((isInput ? "standard input" : "'" + path + "'") + ", " + error.what());
    }
}

std::string FitFile(const std::string& path, const std::string& format, bool json) {
    using namespace Norvex::Conf;
    TakeCensus();
    const FileStreams file = ReadStreams(path);
    std::vector<Norvex::SP<const IFormatCodec>> streams;
    for (const FileStream& stream : file.streams) streams.push_back(stream.description);
    if (format.empty()) {
        const std::vector<FormatFit> fits = FitIntoAll(streams);
        return json ? FitJson(file, fits) : FitText(file, fits);
    }
    const std::string id = IdOf(Named::Format, format);
    const FormatFit fit = FitInto(id, streams);
    return json ? FitJson(file, {fit}) : FitSentences(file, fit);
}

std::string Find(Norvex::Conf::WantedCodecs wanted, bool json) {
    TakeCensus();
    const std::pair<std::vector<std::string>&, Named> lists[] = {
        {wanted.video, Named::VideoCodec}, {wanted.audio, Named::AudioCodec}, {wanted.subtitles, Named::SubtitleCodec}};
    bool isEmpty = true;
    for (const auto& [names, kind] : lists) {
        for (std::string& name : names) name = IdOf(kind, name);
        isEmpty = isEmpty && names.empty();
    }
    if (isEmpty) throw std::runtime_error("say what to find, such as --video hevc --audio flac");
    const auto formats = Norvex::Conf::ContainersFor(wanted);
    return json ? HoldingJson(formats) : HoldingText(formats);
}

/// Returns the exit status: 0 for books that say the same.
int Diff(const std::string& before, const std::string& after) {
    const auto former = ReadBook(before);
    const std::string text = DiffText(former, after.empty() ? MakeBook() : ReadBook(after));
    Print(text.empty() ? "The books say the same.\n" : text);
    return text.empty() ? 0 : 1;
}

const char* const g_examples = R"(Examples:
  norvex-rules fit film.mkv             what may become of a file in each container
  norvex-rules fit film.mkv -f mp4      the same of one container, with reasons
  norvex-rules find --video hevc --audio flac
                                        which containers hold both
  norvex-rules list                     every id
  norvex-rules list audio pcm           the kinds of PCM
  norvex-rules show format mkv          what Matroska carries
  norvex-rules show video h265          presets, profiles and all else of H.265
  norvex-rules show filter resize       sizes
  norvex-rules matrix                   which codec goes into which container
  norvex-rules check my.json --diff     what is wrong with a preset, and what mends it
  norvex-rules diff old.json            what changed since 'norvex-rules json old.json'
  norvex-rules html rulebook.html       all of it, for a browser)";

/// What a shell offers for the value of an option or argument, behind a command and what follows it.
std::vector<std::string> ValuesOf(const std::string& name, const std::vector<std::string>& before) {
    if (name == "KIND") {
        std::vector<std::string> kinds;
        for (const auto& [kind, named] : g_named) kinds.emplace_back(kind);
        return kinds;
    }
    if (name == "FILE" && !before.empty() && before[0] == "check") return NorvexApps::PresetNames();
    const bool isOfKind = (name == "ID" || name == "PATTERN") && before.size() > 1;
    const std::string kind = isOfKind ? before[1] : name.substr(0, 2) == "--" ? name.substr(2) : name;
    if (!isOfKind && name.substr(0, 2) != "--") return {};
    const Named named = KindOf(kind).second;
    RegisterModernHelpers();
    TakeCensus();
    return NorvexApps::IdsOf(named);
}

const NorvexApps::ManTexts g_manTexts = {
    "Shows the rule book by which norvex-export works: which containers hold which codecs, what each parameter may be, "
    "and what may become of a file or a preset.\n"
    "Kinds are format (containers), video, audio, subtitles (codecs) and filter. Names are taken as people type them: "
    "h265, MKV.",
    g_examples,
    "0; 1 if check finds a rule broken, if diff finds a difference, or if what was asked cannot be told; 2 for a wrong "
    "command line. What went wrong is told on standard error.",
    "rulebook.schema.json, fit.schema.json and preset.schema.json, below share/norvex where Norvex is installed, "
    "describe "
    "the JSON documents of json, fit and check.",
    "norvex-export(1), ffmpeg(1), ffprobe(1)",
};

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Shows what may be exported: defaults, allowed values and rules.", "norvex-rules");
    app.set_version_flag("--version", NORVEX_VERSION);
    app.require_subcommand(1);
    int status = 0;
    std::string kind;
    std::string id;
    std::string file;
    std::string newer;
    std::string format;
    std::string pattern;
    CheckOptions checked;
    Norvex::Conf::WantedCodecs wanted;
    bool json = false;
    bool rules = false;
    bool classic = false;

    app.add_flag("--classic", classic, "Know the classic codecs and containers alone");
    app.fallthrough();
    app.parse_complete_callback([&classic] {
        if (!classic) RegisterModernHelpers();
    });
    const auto forPrograms = [&json](CLI::App* command) { command->add_flag("--json", json, "Print for programs"); };

    auto* const fit = app.add_subcommand("fit", "What may become of a file's streams in each container");
    fit->add_option("FILE", file, "A film, sound, picture or subtitles")->required()->option_text(" ");
    fit->add_option("-f,--format", format, "This container alone, with reasons")->option_text("ID");
    forPrograms(fit);
    fit->callback([&] { Print(FitFile(file, format, json)); });
    auto* const find = app.add_subcommand("find", "Which containers hold all of some codecs at once");
    find->add_option("--video", wanted.video, "Codecs of pictures, one for each stream")
        ->delimiter(',')
        ->option_text("CODEC,...");
    find->add_option("--audio", wanted.audio, "Codecs of sound")->delimiter(',')->option_text("CODEC,...");
    find->add_option("--subtitles", wanted.subtitles, "Codecs of subtitles")->delimiter(',')->option_text("CODEC,...");
    forPrograms(find);
    find->callback([&] { Print(Find(wanted, json)); });
    auto* const list = app.add_subcommand("list", "Containers, codecs and filters");
    list->add_option("KIND", kind, "format, video, audio, subtitles or filter (default: all)")->option_text(" ");
    list->add_option("PATTERN", pattern, "A part of the ids, or a pattern such as 'pcm_*le'")->option_text(" ");
    forPrograms(list);
    list->callback([&] { Print(List(kind, pattern, json)); });
    auto* const show = app.add_subcommand("show", "One helper, such as: show format mp4, show video h264");
    show->add_option("KIND", kind, "format, video, audio, subtitles or filter")->required()->option_text(" ");
    show->add_option("ID", id, "Its id, as in the list, or another name of it, such as h265 or mkv")
        ->required()
        ->option_text(" ");
    show->add_flag("--rules", rules, "Print every default, constraint and rule as it stands, with ids and raw numbers");
    show->callback([&] { Print(Show(kind, id, rules)); });
    app.add_subcommand("matrix", "Containers by codecs")->callback([] { Print(MatrixText(MakeBook())); });
    auto* const check = app.add_subcommand("check", "Judge a preset, and show it mended; status 1 if it breaks a rule");
    check
        ->add_option("FILE", checked.file,
                     "The preset, as norvex-export --save-preset writes it (default: standard input)")
        ->option_text(" ");
    check->add_flag("--diff", checked.diff, "Show what mending changes in the document");
    check->add_option("-o,--output", checked.mendedFile, "Write the mended preset there")->option_text("FILE");
    check->add_flag("--json", checked.json, "Print for programs");
    check->callback([&] { status = CheckFile(checked); });
    auto* const diff = app.add_subcommand("diff", "What came, went or changed between two books; status 1 if anything");
    diff->add_option("OLD", file, "As 'norvex-rules json' wrote it")->required()->option_text(" ");
    diff->add_option("NEW", newer, "Another one (default: that of the running FFmpeg)")->option_text(" ");
    diff->callback([&] { status = Diff(file, newer); });
    auto* const all = app.add_subcommand("json", "Everything, for programs");
    all->add_option("FILE", file, "Where to write it (default: standard output)");
    all->callback([&] { Write(file, Norvex::Document::WriteJson(MakeBook()) + '\n'); });
    auto* const page = app.add_subcommand("html", "Everything, as one page for a browser");
    page->add_option("FILE", file, "Where to write it (default: standard output)")->option_text(" ");
    page->callback([&] { Write(file, PageHtml(MakeBook())); });

    if (NorvexApps::AnswersShell(app, argc, argv, ValuesOf) || NorvexApps::PrintsManPage(app, argc, argv, g_manTexts)) {
        return 0;
    }
    try {
        app.parse(argc, argv);
        return status;
    } catch (const CLI::ParseError& error) {
        return NorvexApps::ExitStatus(app, error, g_examples);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "norvex-rules: %s\n", error.what());
    } catch (const std::exception&) {
        std::fprintf(stderr, "norvex-rules: unexpected failure\n%s\n",
                     boost::current_exception_diagnostic_information().c_str());
    }
    return 1;
}
