/// What may be written to a terminal beside plain text.
#pragma once

namespace NorvexExport {

/// Whether the file is a terminal that takes escape sequences.
bool ClearsLines(int file);

/// The same for colours, which the user may not want (no-color.org).
bool TakesColours(int file);

}  // namespace NorvexExport
