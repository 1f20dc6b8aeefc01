#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Conf/IDataHelper.h"

/// A check of whole presets that is safe and says why. A rule's own IsValid ends the process where a path is missing;
/// these functions never do, and never throw for what a preset holds. What a helper throws when it is asked for its
/// constraints or rules passes.

namespace Norvex::Conf {

/// A helper, and what findings call it.
struct NamedHelper {
    std::string kind;  ///< the section that it rules, as CreateDataHelper takes it
    std::string id;    ///< empty for a filter
    SP<const IDataHelper> helper;
};

/// The helper of the catalogue. Throws HelperException as CreateDataHelper does.
NORVEX_API NamedHelper FindHelper(const std::string& kind, const std::string& id);

/// The helpers of the catalogue for what a preset names: its container, codecs and filters, in this order. What the
/// catalogue does not hold is left out.
NORVEX_API std::vector<NamedHelper> HelpersOf(const Core::Property& preset);

/// What a constraint allows: a list, or a range, or only words.
struct Allowed {
    std::vector<Core::Property> values;  ///< in the constraint's order, each named by its display name
    std::optional<Core::Property> min;
    std::optional<Core::Property> max;
    std::optional<Core::Property> step;
    std::string words;  ///< such as "one of 1, 2" or "from 1 to 51", translated; empty where nobody knows
};

/// Never throws for what the constraint does.
NORVEX_API Allowed WhatIsAllowed(const IPropertyConstraint& constraint);

/// Whether the constraint takes the value; a value that it cannot judge it does not take. Never throws.
NORVEX_API bool IsLegal(const Core::Property& value, const IPropertyConstraint& constraint) noexcept;

/// What came of looking at one rule, or at one constraint and one value, or at what a helper has room for.
struct Finding {
    enum class Source { Constraint, Rule, Helper };
    enum class Verdict { Kept, DoesNotApply, Violated };
    enum class Problem {
        None,
        NotAllowed,
        Missing,    ///< a rule demands a value that is not there
        WrongType,  ///< of a type that the constraint cannot judge
        NoPlace,    ///< the helper knows no such section, stream or parameter
        TooMany,    ///< more streams of a kind than the container may hold
    };

    std::string helperKind;
    std::string helperId;
    Source source = Source::Constraint;
    Verdict verdict = Verdict::Kept;
    Problem problem = Problem::None;
    std::string key;                           ///< of a constraint, as the helper has it
    std::string conditionPath;                 ///< of a rule; empty for a rule without a condition
    std::optional<Core::Property> condition;   ///< the value there
    std::string path;                          ///< of the value in question, from the preset's root
    std::optional<Core::Property> value;       ///< empty where it is missing, and where the helper has no room
    SP<const IPropertyConstraint> constraint;  ///< on that value; null in a rule that has none, and without a value
    // Filled for violations:
    Allowed allowed;
    std::string documentPath;  ///< where a preset's document has the value, which its message names; see DocumentPathOf
    std::string message;       ///< one sentence, translated like the lists' own
};

/// Every rule of the helpers and every constraint on a value that the preset holds, in the order of the helpers, of
/// each first its constraints. Build the preset with AssemblePreset.
///
/// A rule applies if its condition holds, or if it has none. A constraint is looked at where the preset has the value:
/// in the helper's own section, or from the root; that of a container, on every stream of its type.
///
/// Of what a container has room for, only what breaks it is told: a codec's section or a stream of a kind that it does
/// not hold, a stream's section of another kind than the stream, and more streams than its own defaults' limits and
/// default streams allow. A container holds a kind of stream if it has a list of codecs for it, whatever the limit
/// says; then it has room for one.
NORVEX_API std::vector<Finding> ExplainPreset(const Core::Property& preset, const std::vector<NamedHelper>& helpers);

/// Only what is violated.
NORVEX_API std::vector<Finding> CheckPreset(const Core::Property& preset, const std::vector<NamedHelper>& helpers);

/// The sentences of findings by name, translated, for programs that judge by the data of the book: the marks stand for
/// %1 the path, %2 the value, %3 what is allowed, %4 the path of the condition and %5 its value; of sentences about
/// what has no place %2 is who says so, %3 the kind of stream, and %4 how many there may be.
NORVEX_API std::map<std::string, std::string> FindingSentences();

/// Leaves out each violation that says of a value what one before it says, as a rule often repeats a constraint.
NORVEX_API std::vector<Finding> TellOnce(std::vector<Finding> violations);

}  // namespace Norvex::Conf
