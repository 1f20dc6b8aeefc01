#include "SteadyRate.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/avutil.h>
}

namespace NorvexExport::Media {

SteadyRate::SteadyRate(AVRational rate, AVRational sourceRate)
    : m_perUnit(av_q2d(rate) / AV_TIME_BASE), m_held(Own(av_frame_alloc())) {
    // Where pictures are repeated, each goes to the number that is nearest to it, and where they are left out, each
    // number gets the picture that is nearest: the last of those that may stand there.
    const double spared = std::max(1.0, av_q2d(sourceRate) / av_q2d(rate));
    m_bias = 0.5 - 0.5 / spared;
}

void SteadyRate::Take(AVFrame& frame, std::int64_t time, bool coversBeginning, const Emit& emit) {
    const std::int64_t number = NumberAt(time, m_bias);
    if (!m_hasBegun) {
        m_number = coversBeginning ? 0 : number;
        m_hasBegun = true;
    } else if (number > m_number) {
        emit(*m_held, m_number, number - m_number);
        m_number = number;
    }
    av_frame_unref(m_held.get());
    av_frame_move_ref(m_held.get(), &frame);
}

void SteadyRate::Finish(std::int64_t end, const Emit& emit) {
    if (!m_hasBegun) return;
    // What is too short for a picture of its own is not lost where there is none before it.
    const std::int64_t least = m_number == 0 ? 1 : 0;
    const std::int64_t count = std::max(NumberAt(end, 0) - m_number, least);
    if (count > 0) emit(*m_held, m_number, count);
    av_frame_unref(m_held.get());
    m_hasBegun = false;
}

std::int64_t SteadyRate::NumberAt(std::int64_t time, double bias) const {
    return std::max<std::int64_t>(0, std::llround(static_cast<double>(time) * m_perUnit + bias));
}

}  // namespace NorvexExport::Media
