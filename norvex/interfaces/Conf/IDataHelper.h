#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"
#include "norvex/interfaces/Conf/IValidationRule.h"

namespace Norvex::Conf {

/// Constraints by the path of the parameter. In a codec helper a path is relative to the codec's node, or to the
/// preset where it begins with a filter's class id; in a filter helper it is relative to the filter's node; in a
/// format helper it is the pattern of every stream of one type.
using ConstraintMap = std::map<std::string, SP<const IPropertyConstraint>>;

/// Processing objects as pairs of class id and implementation name.
using ObjectList = std::vector<std::pair<std::string, std::string>>;

/// The rule book of one container format, one codec or one processing filter. It never changes once made, so that
/// threads may share it; what it hands out is made anew on each call and belongs to the caller. The library's helpers
/// throw nothing where they tell what they hold; what applying and correcting throw stands at the class.
class NORVEX_API IDataHelper : public IRefCountable {
public:
    /// Helpers by id.
    using DataHelperMap = std::map<std::string, const SP<const IDataHelper>>;

    /// The default settings, under the thing's own key.
    virtual Core::Property GetDefaults() const = 0;
    /// Adds the processing objects that a preset must hold for this to work.
    virtual void GetRequiredObjects(ObjectList& objects) const = 0;
    /// Appends the rules between parameters. Their paths are relative to the preset. Give each helper a list of its
    /// own: what stands there counts as said by the codec's encoder, so that MP2 erases the first rule about the sample
    /// rate and AAC leaves out its layouts beside a rule about the layout, whoever put it there.
    virtual void GetValidationRules(RuleList& rules) const = 0;
    /// Sets a constraint per parameter, replacing an entry that stands under the same path. AAC leaves a key for the
    /// layout that is there, also with nothing under it.
    virtual void GetConstraints(ConstraintMap& constraints) const = 0;
    /// Moves what a preset's section says into the settings of a stream. Where it throws, the stream keeps what was
    /// written before.
    virtual void ApplyPresetSettings(const Core::Property& preset, Core::Property& stream) const = 0;
    /// Makes the settings of one stream legal, in place. Where it throws, what was corrected before stays so.
    virtual void CorrectFormatCodec(Core::Property& tree) const = 0;
};

}  // namespace Norvex::Conf
