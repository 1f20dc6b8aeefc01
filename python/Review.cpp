#include <pybind11/stl.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Book.h"
#include "Classes.h"
#include "Errors.h"
#include "Gil.h"
#include "Helpers.h"
#include "Records.h"
#include "Trees.h"
#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace NorvexPython {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

const char* const g_root = "preset";

/// Judges a preset with each of the helpers for itself, so that one that fails leaves the others' findings.
using Judge = std::vector<Finding> (*)(const Property& preset, const std::vector<NamedHelper>& helpers);

struct Failed {
    const NamedHelper* helper;
    std::exception_ptr failure;
};

py::list FindingsWithFailures(const std::vector<Finding>& findings, const std::vector<Failed>& failed) {
    py::list list = FindingsFrom(findings);
    for (const auto& [helper, failure] : failed) {
        RaiseUnlessException(failure);
        list.append(FailedFinding(helper != nullptr ? helper->kind : std::string(),
                                  helper != nullptr ? helper->id : std::string(), ErrorFrom(failure)));
    }
    return list;
}

py::list JudgeOneByOne(const Property& document, Judge judge, const std::exception_ptr& known) {
    std::vector<Finding> findings;
    std::vector<Failed> failed;
    std::vector<NamedHelper> helpers;
    WithoutGil([&] {
        const Property preset = AssembleDocument(document);
        helpers = HelpersOf(preset);
        for (const NamedHelper& helper : helpers) {
            try {
                std::vector<Finding> more = judge(preset, {helper});
                std::move(more.begin(), more.end(), std::back_inserter(findings));
            } catch (...) {
                failed.push_back({&helper, std::current_exception()});
            }
        }
        // It may not have failed again.
        if (failed.empty() && known) failed.push_back({nullptr, known});
    });
    return FindingsWithFailures(findings, failed);
}

py::list Explain(const py::object& preset) {
    const Property document = SectionFrom(preset, g_root);
    RequireBook();
    return JudgeOneByOne(document, &ExplainPreset, nullptr);
}

py::list Check(const py::object& preset) {
    const Property document = SectionFrom(preset, g_root);
    RequireBook();
    std::vector<Finding> findings;
    std::exception_ptr failure;
    WithoutGil([&] {
        try {
            findings = JudgePreset(document);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    if (!failure) return FindingsFrom(findings);
    const auto judge = [](const Property& assembled, const std::vector<NamedHelper>& helpers) {
        return TellOnce(CheckPreset(assembled, helpers));
    };
    return JudgeOneByOne(document, judge, failure);
}

py::object Mend(const py::object& preset) {
    const Property document = SectionFrom(preset, g_root);
    RequireBook();
    MendedPreset mended;
    WithoutGil([&] { mended = MendPreset(document); });
    return MendedFrom(mended);
}

/// Another helper, which remembers what its correction threw: a report does not tell it from what asking the helper for
/// its rules threw.
class Watched final : public RefCounted<IDataHelper> {
public:
    explicit Watched(SP<const IDataHelper> helper) : m_helper(std::move(helper)) {}

    const std::exception_ptr& GetFailure() const { return m_failure; }

    Property GetDefaults() const override { return m_helper->GetDefaults(); }
    void GetRequiredObjects(ObjectList& objects) const override { m_helper->GetRequiredObjects(objects); }
    void GetValidationRules(RuleList& rules) const override { m_helper->GetValidationRules(rules); }
    void GetConstraints(ConstraintMap& constraints) const override { m_helper->GetConstraints(constraints); }
    void ApplyPresetSettings(const Property& preset, Property& stream) const override {
        m_helper->ApplyPresetSettings(preset, stream);
    }
    void CorrectFormatCodec(Property& tree) const override {
        try {
            m_helper->CorrectFormatCodec(tree);
        } catch (...) {
            m_failure = std::current_exception();
            throw;
        }
    }

private:
    const SP<const IDataHelper> m_helper;
    mutable std::exception_ptr m_failure;
};

py::object Correct(const py::object& stream, const std::optional<std::string>& format,
                   const std::optional<std::string>& codec) {
    RequireBook();
    const std::string& name = StreamName(std::string(), stream);
    Property tree = SectionFrom(stream, name);
    std::vector<NamedHelper> helpers;
    if (format) helpers.push_back(FindHelper(IPreset::KEY_FORMAT, *format));
    helpers.push_back(FindHelper(name, codec ? *codec : tree[IFormatCodec::TAG_CODEC_ID].GetString()));
    std::vector<SP<const Watched>> watched;
    for (NamedHelper& named : helpers) {
        watched.emplace_back(new Watched(named.helper));
        named.helper = watched.back();
    }
    const CorrectionReport report = CorrectWithReport(tree, helpers);
    for (const auto& helper : watched) {
        if (helper->GetFailure()) std::rethrow_exception(helper->GetFailure());
    }
    RaiseUnlessException(report.failure);
    py::list changes;
    for (const CorrectedValue& change : report.changes) changes.append(ChangeFrom(change));
    return Call(RecordClass("Correction"), ObjectFrom(tree), changes, FindingsFrom(report.left),
                ErrorOrNone(report.failure));
}

py::object ReadPreset(const std::string& text) {
    RequireBook();
    return ObjectFrom(Document::ReadPreset(text).preset);
}

py::object ReadAbout(const std::string& text) {
    const Document::PresetAbout about = Document::ParsePreset(text).about;
    return py::dict(py::arg("name") = TextFrom(about.name), py::arg("description") = TextFrom(about.description),
                    py::arg("purpose") = TextFrom(about.purpose));
}

py::str WritePreset(const py::object& preset, const std::string& name, const std::string& description,
                    const std::string& purpose) {
    return TextFrom(Document::WritePreset(SectionFrom(preset, g_root), {name, description, purpose}));
}

}  // namespace

void BindReview(py::module_& module) {
    module.def("check", &Check, py::arg("preset"),
               "What a preset breaks, each fault once. Raises for what is no tree alone: what a helper raises is in "
               "the `failure` of a finding.");
    module.def("explain", &Explain, py::arg("preset"),
               "Every rule and constraint that was looked at, and what came of it. Raises as check does.");
    module.def("mend", &Mend, py::arg("preset"),
               "A preset made legal, and what became of its values. What a helper raises passes.");
    module.def("correct", &Correct, py::arg("stream"), py::kw_only(), py::arg("format") = py::none(),
               py::arg("codec") = py::none(),
               "Lets the container and the codec (the stream's own where none is named) correct a stream, and tells "
               "what they changed. What their corrections raise passes.");
    module.def("read_preset", &ReadPreset, py::arg("text"),
               "The preset of a JSON document, held against the rule book. Raises DocumentError.");
    module.def("read_about", &ReadAbout, py::arg("text"),
               "What the document of a preset says of it to people: name, description and purpose, for write_preset to "
               "take as keywords. Raises DocumentError.");
    module.def("write_preset", &WritePreset, py::arg("preset"), py::kw_only(), py::arg("name") = "",
               py::arg("description") = "", py::arg("purpose") = "",
               "The JSON document of a preset, and what it is to people.");
}

}  // namespace NorvexPython
