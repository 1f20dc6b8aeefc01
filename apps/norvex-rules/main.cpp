// norvex-rules: the rule book to look at.

#include <sys/ioctl.h>
#include <unistd.h>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/exception/diagnostic_information.hpp>

#include <cstdio>

#include "Book.h"
#include "Check.h"
#include "ForPeople.h"
#include "Page.h"
#include "Texts.h"
#include "common/CommandLine.h"
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

/// One helper by its kind and a name: what holds in the end, or every rule as it stands.
std::string Show(const std::string& kindName, const std::string& name, bool rules) {
    const std::pair<const char*, NorvexApps::Named> kinds[] = {{"format", NorvexApps::Named::Format},
                                                               {"video", NorvexApps::Named::VideoCodec},
                                                               {"audio", NorvexApps::Named::AudioCodec},
                                                               {"filter", NorvexApps::Named::Filter}};
    const auto book = MakeBook();  // takes the census, before which no container may be looked up
    for (const auto& [kind, named] : kinds) {
        if (kind != boost::algorithm::to_lower_copy(kindName)) continue;
        const std::string id = NorvexApps::FindId(named, name).value_or(name);
        if (const auto text = rules ? ShowText(book, kind, id) : ShowForPeople(kind, id, Columns())) return *text;
        if (id != name)
            throw std::runtime_error("there are no rules for the " + std::string(kind) + " codec '" + id + "'");
        throw std::runtime_error(NorvexApps::WhyUnknown(named, name));
    }
    throw std::runtime_error("there is no kind '" + kindName + "'; there are format, video, audio and filter");
}

/// Returns the exit status: 0 for a preset that keeps every rule.
int CheckFile(const std::string& path, bool json) {
    namespace Document = Norvex::Document;
    MakeBook();  // takes the census, by which containers know what they carry
    try {
        // What was set for another container or codec is dropped by mending.
        const std::string text = NorvexApps::ReadText(path, Document::g_largestPreset + 1);
        const auto mended = Norvex::Conf::MendPreset(Document::ReadPreset(text, Document::Foreign::Left).preset);
        Print(json ? JudgementJson(mended) : JudgementText(mended));
        return mended.broken.empty() ? 0 : 1;
    } catch (const Document::DocumentException& error) {
        throw std::runtime_error("'" + path + "', " + error.what());
    }
}

const char* const g_examples = R"(Examples:
  norvex-rules list                     every id
  norvex-rules show format mkv          what Matroska carries
  norvex-rules show video h265          presets, profiles and all else of H.265
  norvex-rules show filter resize       sizes
  norvex-rules matrix                   which codec goes into which container
  norvex-rules check my.json            what is wrong with a preset
  norvex-rules html rulebook.html       all of it, for a browser)";

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Shows what may be exported: defaults, allowed values and rules.", "norvex-rules");
    app.set_version_flag("--version", NORVEX_VERSION);
    app.require_subcommand(1);
    int status = 0;
    std::string kind;
    std::string id;
    std::string file;
    bool json = false;
    bool rules = false;
    bool classic = false;

    app.add_flag("--classic", classic, "Know the classic codecs and containers alone");
    app.fallthrough();
    app.parse_complete_callback([&classic] {
        if (!classic) RegisterModernHelpers();
    });
    app.add_subcommand("list", "Every container, codec and filter")->callback([] { Print(ListText(MakeBook())); });
    auto* const show = app.add_subcommand("show", "One helper, such as: show format mp4, show video h264");
    show->add_option("KIND", kind, "format, video, audio or filter")->required()->option_text(" ");
    show->add_option("ID", id, "Its id, as in the list, or another name of it, such as h265 or mkv")
        ->required()
        ->option_text(" ");
    show->add_flag("--rules", rules, "Print every default, constraint and rule as it stands, with ids and raw numbers");
    show->callback([&] { Print(Show(kind, id, rules)); });
    app.add_subcommand("matrix", "Containers by codecs")->callback([] { Print(MatrixText(MakeBook())); });
    auto* const check = app.add_subcommand("check", "Judge a preset, and show it mended; status 1 if it breaks a rule");
    check->add_option("FILE", file, "The preset, as norvex-export --save-preset writes it")
        ->required()
        ->option_text(" ");
    check->add_flag("--json", json, "Print for programs");
    check->callback([&] { status = CheckFile(file, json); });
    auto* const all = app.add_subcommand("json", "Everything, for programs");
    all->add_option("FILE", file, "Where to write it (default: standard output)");
    all->callback([&] { Write(file, Norvex::Document::WriteJson(MakeBook()) + '\n'); });
    auto* const page = app.add_subcommand("html", "Everything, as one page for a browser");
    page->add_option("FILE", file, "Where to write it (default: standard output)")->option_text(" ");
    page->callback([&] { Write(file, PageHtml(MakeBook())); });

    app.footer(g_examples);

    try {
        app.parse(argc, argv);
        return status;
    } catch (const CLI::ParseError& error) {
        return NorvexApps::ExitStatus(app, error);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "norvex-rules: %s\n", error.what());
    } catch (const std::exception&) {
        std::fprintf(stderr, "norvex-rules: unexpected failure\n%s\n",
                     boost::current_exception_diagnostic_information().c_str());
    }
    return 1;
}
