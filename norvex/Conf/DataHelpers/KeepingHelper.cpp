#include "norvex/Conf/DataHelpers/KeepingHelper.h"

#include "norvex/Conf/DataHelpers/Answers.h"

namespace Norvex::Conf {

KeepingHelper::~KeepingHelper() {
    DropAnswers();
}

const Answers* KeepingHelper::GetKeptAnswers() const {
    if (!m_keeps) return nullptr;
    return &MadeOnce(m_answers, [this] { return std::make_unique<const Answers>(*this); });
}

void KeepingHelper::DropAnswers() noexcept {
    delete m_answers.exchange(nullptr, std::memory_order_acq_rel);
}

}  // namespace Norvex::Conf
