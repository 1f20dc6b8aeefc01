// Settings trees under a program of bytes: what copies, assignments, removals and comparisons promise.

#include <array>
#include <utility>

#include "Input.h"

using namespace Norvex;
using Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;

namespace {

std::size_t Size(const Property& node) {
    std::size_t size = 1;
    for (const Property& child : node) size += Size(child);
    return size;
}

/// Some node of the tree.
Property& Pick(Property& root, Input& input) {
    Property* node = &root;
    for (std::size_t steps = input.Number(8); steps > 0 && node->Count() > 0; --steps) {
        node = &(*node)[input.Number(node->Count() < 256 ? node->Count() : 256)];
    }
    return *node;
}

void Read(Property& node, Input& input) {
    const std::string path = input.Text();
    Require(node.ChildExists(path) == (node.ChildExists(path) && &node[path] == &std::as_const(node)[path]), "path");
    (void)PropertyValueToString(node[path]);
    (void)node.GetBool();
}

void Step(std::array<Property, 3>& trees, Input& input) {
    Property& tree = trees[input.Number(3)];
    Property& node = Pick(tree, input);
    Property& other = Pick(trees[input.Number(3)], input);
    const Property source = other;
    const std::string name = node.GetName();
    switch (input.Number(11)) {
        case 0:
            node.SetChild(input.Text(), input.Leaf("leaf"));
            break;
        case 1:
            node.SetChild(input.Text());
            break;
        case 2:
            node.CreateChildT(input.Text(), input.Integer());
            break;
        case 3:
            node.AddNamed(other);
            Require(Same(node[node.Count() - 1], source), "AddNamed adds a copy");
            break;
        case 4:
            node = other;
            Require(Same(node, source), "assignment");
            break;
        case 5:
            node.CopyDataFrom(other);
            Require(node.GetName() == name && node.GetType() == source.GetType(), "CopyDataFrom keeps the name");
            break;
        case 6: {
            const std::string child = input.Text();
            const std::size_t count = node.Count();
            const bool exists = node.FindChild(child) != node.end();
            node.RemoveChild(child);
            Require(node.Count() + (exists ? 1 : 0) == count, "RemoveChild removes one");
            break;
        }
        case 7: {
            Property moved = std::move(other);
            Require(Same(moved, source), "move");
            break;
        }
        case 8:
            node = input.Text();
            Require(node.Count() == 0 && node.GetName() == name, "a value drops children and keeps the name");
            break;
        case 9:
            Read(node, input);
            break;
        default:
            Require((node == other) == (other == node), "comparison is symmetric");
            node.RemoveAll();
            Require(node.Count() == 0, "RemoveAll");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    std::array<Property, 3> trees = {Property("one"), Property("two"), Property("three")};
    while (!input.IsEmpty()) {
        try {
            Step(trees, input);
        } catch (const Core::PropertyException&) {
        }
        for (Property& tree : trees) {
            if (Size(tree) > 2000) tree.RemoveAll();  // trees that are filed under themselves double each time
            const Property copy = tree;
            Require(Same(copy, tree), "copy");
        }
    }
    return 0;
}
