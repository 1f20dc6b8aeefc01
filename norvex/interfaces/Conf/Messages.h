#pragma once

namespace Norvex::Conf {

/// The gettext domain of the rule book's sentences. A host gives their translations with bindtextdomain and this name;
/// docs/translations.md lists them.
inline constexpr char DATAHELPERS_MESSAGE_DOMAIN[] = "core";

}  // namespace Norvex::Conf
