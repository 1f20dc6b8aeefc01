#pragma once

#include <atomic>

#include "norvex/interfaces/Conf/IDataHelper.h"

namespace Norvex::Conf {

struct Answers;

/// Base of the helpers that may keep what they answer. Most helpers never change once made, so that defaults,
/// constraints and rules need not be made anew each time that the library itself looks at them. Only what callers are
/// handed is.
///
/// A helper keeps nothing until it says so. One of a host's own that derives from a class of the library may answer
/// differently each time, and is asked each time.
class NORVEX_API KeepingHelper : public IDataHelper {
public:
    ~KeepingHelper() override;
    KeepingHelper(const KeepingHelper&) = delete;
    KeepingHelper& operator=(const KeepingHelper&) = delete;

    /// Says that GetDefaults, GetConstraints and GetValidationRules answer the same from now on. To be called before
    /// the helper is shared.
    void KeepAnswers() noexcept { m_keeps = true; }

    /// What is kept, made on the first call, whichever thread makes it; null where nothing is. For the library's own
    /// use: hosts do not know what it holds.
    const Answers* GetKeptAnswers() const;

protected:
    KeepingHelper() = default;

    /// Forgets what is kept, for what changes the answers of a helper. Must not overlap with any use of it.
    void DropAnswers() noexcept;

private:
    bool m_keeps = false;
    mutable std::atomic<const Answers*> m_answers{nullptr};
};

}  // namespace Norvex::Conf
