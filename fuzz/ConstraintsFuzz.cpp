// Constraints of every kind, of any values, on any value.

#include <cmath>
#include <utility>
#include <vector>

#include "Input.h"
#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexFuzz::Input;
using NorvexFuzz::Require;
using NorvexFuzz::Same;

namespace {

template <class T, class Make>
std::vector<std::pair<std::string, T>> List(Input& input, const Make& make) {
    std::vector<std::pair<std::string, T>> list;
    for (std::size_t count = input.Number(6); count > 0; --count) {
        std::string name = input.Text();
        list.emplace_back(std::move(name), make());
    }
    return list;
}

SP<IPropertyConstraint> Make(Input& input, std::size_t kind) {
    const auto texts = [&] { return List<std::string>(input, [&] { return input.Text(); }); };
    const auto leaves = [&] { return List<Property>(input, [&] { return input.Leaf("entry"); }); };
    const auto type = [&] { return static_cast<PropertyTypes>(input.Number(7)); };
    switch (kind) {
        case 0:
            return ConstraintSet::Create(List<bool>(input, [&] { return input.Flag(); }));
        case 1:
            return ConstraintSet::Create(List<double>(input, [&] { return input.Double(); }));
        case 2:
            return ConstraintSet::Create(List<long long>(input, [&] { return input.Integer(); }));
        case 3:
            return ConstraintSet::Create(texts());
        case 4:
            return ConstraintSet::Create(List<Core::Ratio>(input, [&] { return input.Ratio(); }));
        case 5:
            return ConstraintSet::Create(PT_INT64, leaves());
        case 6: {
            const PropertyTypes listed = type();
            return ConstraintSet::Create(listed, input.Tree("list", 3));
        }
        case 7: {
            const long long lo = input.Integer(), hi = input.Integer();
            return ConstraintRange::Create(lo, hi, input.Integer());
        }
        case 8: {
            const double lo = input.Double(), hi = input.Double();
            return ConstraintRange::Create(lo, hi, input.Double());
        }
        case 9:
            return ConstraintChannelLayout::Create(texts());
        case 10: {
            std::vector<SampleFormats> formats;
            for (std::size_t count = input.Number(6); count > 0; --count) {
                formats.push_back(static_cast<SampleFormats>(input.Number(14)));
            }
            return ConstraintSampleFormat::Create(formats);
        }
        case 11: {
            const auto codecs = texts();
            return ConstraintCodecs::Create(codecs, input.Text());
        }
        case 12:
            return ConstraintMethod::CreateEven(input.Text());
        default:
            return SizeConstraints::Create({{input.Integer(), input.Integer()}});
    }
}

/// Whether the constraint allows the value; false where it cannot judge it.
bool IsValid(const IPropertyConstraint& constraint, const Property& value) {
    try {
        return constraint.IsValid(value);
    } catch (const Core::PropertyException&) {
    } catch (const ConfException&) {
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t kind = input.Number(14);
    SP<IPropertyConstraint> constraint;
    try {
        constraint = Make(input, kind);
    } catch (const FormatException&) {
        return 0;
    }
    (void)constraint->Description(input.Text());
    (void)WhatIsAllowed(*constraint);
    const auto consumer = FakeConstraintConsumer::Create();
    constraint->FillValueList(consumer);
    (void)consumer->GetValue();
    // A set may be given entries of another type than its own, doubles that equal nothing, a fallback beside the list.
    const bool isSound = kind != 1 && kind != 5 && kind != 6 && kind != 7 && kind != 8 && kind != 11;

    while (!input.IsEmpty()) {
        const Property before = input.Tree("value", 3);
        Property value = before;
        const bool wasValid = IsValid(*constraint, value);
        bool isFixed = false;
        try {
            isFixed = constraint->Fixup(value);
        } catch (const Core::PropertyException&) {
        } catch (const ConfException&) {
        }
        Require(value.GetName() == before.GetName(), "Fixup keeps the name");
        if (!isFixed || wasValid) Require(Same(value, before), "Fixup leaves alone what it need not or cannot mend");
        Require(isFixed || !wasValid || kind == 0, "Fixup takes what is valid");
        if (!isFixed || !isSound) continue;
        Require(IsValid(*constraint, value), "what was mended is valid");
        const Property once = value;
        Require(constraint->Fixup(value) && Same(value, once), "twice is the same as once");
    }
    return 0;
}
