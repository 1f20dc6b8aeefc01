#pragma once

#include <map>
#include <string>

#include "norvex/document/Json.h"
#include "norvex/foundation/Property.h"

/// Settings trees in the form of documents: the one mapping that texts and other languages share.

namespace Norvex::Document {

/// The line of a value or section by its path in the tree.
using Lines = std::map<std::string, int>;

/// A tree without loss: TreeOf gives it again, the names and types of all nodes included. A section is an object, a
/// ratio the text "30000/1001", always with its denominator. What has no form of its own is an object with a single
/// member whose name begins with "$":
///   {"$text": "1/2"} for a text that looks like a ratio, {"$bytes": "ff00"} for one that is not UTF-8,
///   {"$double": "nan"} (also "inf" and "-inf"), {"$none": true} for a node without a value, and
///   {"$children": [["name", value], ...]} for a section whose names repeat, begin with "$" or are not UTF-8.
/// Throws DocumentException for a tree that needs more than `levels` lists and objects in one another.
NORVEX_API Value FormOf(const Core::Property& tree, int levels = g_deepestDocument);

/// A tree for programs that do not write it back: ratios are texts, a node without a value is null, and texts stand as
/// they are. Throws as FormOf does.
NORVEX_API Value PlainFormOf(const Core::Property& tree, int levels = g_deepestDocument);

/// The tree of that name whose form the value is. Puts the lines of the values into `lines`, if that is not null and
/// the value was read from a text. Throws DocumentException for what is the form of no tree, or too deep.
NORVEX_API Core::Property TreeOf(const std::string& name, const Value& value, Lines* lines = nullptr);

}  // namespace Norvex::Document
