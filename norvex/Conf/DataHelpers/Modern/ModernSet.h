#pragma once

#include "norvex/foundation/Export.h"

/// Registers the second set of helpers: the codecs of today and their containers, in the vocabulary of
/// ModernVocabulary.h. Some of its containers take the place of the classic ones and carry more; without this call
/// everything stays as the classic book has it.
///
/// Call it before the first lookup, as RegisterDataHelper wants. What the host has registered itself before stays the
/// host's, and a second call does nothing. Throws RegistrationException where a table stands, and registers nothing
/// then.
NORVEX_API void RegisterModernHelpers();
