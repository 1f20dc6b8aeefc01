#pragma once

#include <string>
#include <vector>

#include "norvex/Norvex.h"

namespace NorvexTest {

/// Both trees where they differ; empty when names, types, values and the order of children agree.
std::string TreeDiff(const Norvex::Core::Property& expected, const Norvex::Core::Property& actual);

/// A tree in one line a leaf: "path: type value", nodes without children included. For comparing with text.
std::string Dump(const Norvex::Core::Property& tree);

/// A tree from text, as PropertyValueToString writes one behind its name: "stream{codec_id: h264, frame_rate: 25/1}".
/// Whole numbers, ratios, true and false are values of their types, everything else is text.
Norvex::Core::Property Tree(const std::string& text);

/// The calls that a constraint makes on a consumer, as text: "add NAME=VALUE", "end", "min 1", "max 2", "step 3".
/// Numbers of double calls carry a point.
std::vector<std::string> CallsOf(const Norvex::Conf::IPropertyConstraint& constraint);

/// The display names that a constraint lists, as "NAME=VALUE" where they are not the values themselves; or its bounds
/// as "1..51" (with "/step" where it has one); or else its words.
std::string ListOf(const Norvex::Conf::IPropertyConstraint& constraint);

/// The rules of a helper, a line each: "FIRST PATH in LIST -> SECOND PATH in LIST".
std::vector<std::string> RulesOf(const Norvex::Conf::IDataHelper& helper);

/// The constraints of a helper, a line each in the order of the paths: "PATH in LIST".
std::vector<std::string> ConstraintsOf(const Norvex::Conf::IDataHelper& helper);

}  // namespace NorvexTest
