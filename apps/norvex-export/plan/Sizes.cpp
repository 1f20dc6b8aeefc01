#include "Sizes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex-export/Settle.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using V = IFormatCodecVideo;
using Proc::IResize;

namespace {

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

/// The least and the greatest size that the resizer makes, in pixels.
struct Bounds {
    double least, most;

    double Hold(double length) const { return std::clamp(length, least, most); }
    /// By what a length must be multiplied to lie within them.
    double Factor(double length) const { return Hold(length) / length; }
};

Bounds BoundsOf(const std::string& side) {
    ConstraintMap constraints;
    CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetConstraints(constraints);
    const Allowed allowed = WhatIsAllowed(*constraints.at(Path({IResize::CLASS_ID, side})));
    return {allowed.min->GetDouble(), allowed.max->GetDouble()};
}

/// The source's own size as far as codec, container and resizer let it pass, and else the nearest of its shape.
void UseFittingSize(Draft& draft, const NamedHelper& codec, const VideoSource& source, Property& section) {
    double width = source.width, height = source.height;
    Fraction aspect = source.sampleAspect;
    const std::string name = "the picture of stream " + std::to_string(source.streamIndex);
    if (aspect.numerator != aspect.denominator && !HoldsPixelShape(draft.plan.formatId, codec.id)) {
        width = width * aspect.numerator / aspect.denominator;
        aspect = {1, 1};
        draft.Note("'" + codec.id + "' has no place for the shape of pixels in '" + draft.plan.formatId + "'; " + name +
                   " is brought to square ones.");
    }
    const Bounds wide = BoundsOf(V::TAG_WIDTH), high = BoundsOf(V::TAG_HEIGHT);
    const double shrinking = std::min({1.0, wide.Factor(width), high.Factor(height)});
    const double factor = shrinking < 1 ? shrinking : std::max(wide.Factor(width), high.Factor(height));
    width *= factor, height *= factor;
    const bool hasBars = wide.Hold(width) < width - 1 || high.Hold(height) > height + 1 ||
                         wide.Hold(width) > width + 1 || high.Hold(height) < height - 1;
    const auto nearest = [&](const Bounds& bounds, double length, int own) {
        // Of a size that stays the odd line is left out, rather than one made.
        const bool stays = std::abs(length - own) < 0.5;
        return static_cast<long long>(bounds.Hold(stays ? own : std::round(length / 2) * 2));
    };
    const auto [fitWidth, fitHeight] =
        FittingSize(codec.id, nearest(wide, width, source.width), nearest(high, height, source.height));
    if (factor != 1) {
        draft.Note("Pictures may be from " + SizeText(std::llround(wide.least), std::llround(high.least)) + " to " +
                   SizeText(std::llround(wide.most), std::llround(high.most)) + "; " + name + " is brought from " +
                   SizeText(source.width, source.height) + " to " + SizeText(fitWidth, fitHeight) +
                   (hasBars ? ", between bars." : "."));
    }
    if (fitWidth == source.width && fitHeight == source.height) return;
    UseSize(section, fitWidth, fitHeight);
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::MODE, hasBars ? IResize::MODE_LETTERBOX : IResize::MODE_STRETCH);
    resize.SetChildT(V::TAG_ASPECTX, aspect.numerator);
    resize.SetChildT(V::TAG_ASPECTY, aspect.denominator);
}

}  // namespace

Property ResizeSection(Draft& draft, const Request& request, const NamedHelper& codec, const VideoSource& source) {
    Property section = CreateDataHelper(Proc::IFilterResize::CLASS_ID, std::string())->GetDefaults();
    Property& resize = section[IResize::CLASS_ID];
    resize.SetChildT(IResize::FRAME_SIZE_MODE, IResize::FRAME_SIZE_ORIGINAL);
    section = WithChoices(std::move(section), request);
    const bool isChosen = request.Asks(Proc::IFilterResize::CLASS_ID);
    const auto sizes = SizesOf(*codec.helper, request);
    if (!sizes.empty()) {
        const Property& chosen = section[IResize::CLASS_ID];
        const auto size = std::pair(chosen[V::TAG_WIDTH].GetInt64(), chosen[V::TAG_HEIGHT].GetInt64());
        if (!isChosen) {
            const auto nearest = NearestSize(sizes, codec.id, source);
            UseSize(section, nearest.first, nearest.second);
            draft.Note("'" + codec.id + "' has its own frame sizes; the picture is brought to " +
                       SizeText(nearest.first, nearest.second) + ".");
        } else if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) {
            std::vector<std::string> names;
            names.reserve(sizes.size());
            for (const auto& [width, height] : sizes) names.push_back(SizeText(width, height));
            throw RequestError("--size: '" + SizeText(size.first, size.second) +
                               "' is not legal here; allowed: one of " + Join(names));
        }
    } else if (!isChosen) {
        UseFittingSize(draft, codec, source, section);
    }
    RequireLegal(section, request);
    return section;
}

}  // namespace NorvexExport
