#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

// What a host in this standard does with them: the operators that a newer standard rewrites.
namespace {

using namespace Norvex;

[[maybe_unused]] bool Compares(const Core::Property& one, const Core::Property& two, const Core::Ratio& ratio) {
    return one != two && two == one && ratio == Core::Ratio(25, 1) && ratio != Core::Ratio(0, 1);
}

}  // namespace
