#include "norvex/Conf/DataHelpers/KeepingHelper.h"

#include <memory>

#include "norvex/Conf/DataHelpers/Answers.h"

namespace Norvex::Conf {

KeepingHelper::~KeepingHelper() {
    DropAnswers();
}

const Answers* KeepingHelper::GetKeptAnswers() const {
    if (!m_keeps) return nullptr;
    if (const Answers* const kept = m_answers.load(std::memory_order_acquire)) return kept;
    auto made = std::make_unique<const Answers>(*this);
    // Of several threads that make them at once the first one's stay.
    const Answers* kept = nullptr;
    if (m_answers.compare_exchange_strong(kept, made.get(), std::memory_order_acq_rel)) return made.release();
    return kept;
}

void KeepingHelper::DropAnswers() noexcept {
    delete m_answers.exchange(nullptr, std::memory_order_acq_rel);
}

}  // namespace Norvex::Conf
