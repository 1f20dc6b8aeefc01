/// Pictures at a steady rate.
#pragma once

#include <cstdint>
#include <functional>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/rational.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

/// Brings pictures to a steady rate: tells at which number of the output each one stands, and for how many. The numbers
/// count from the beginning of the line that the times are on.
class SteadyRate {
public:
    /// `count` pictures from `number` on show `frame`, whose content may be taken.
    using Emit = std::function<void(AVFrame& frame, std::int64_t number, std::int64_t count)>;

    /// Both in frames per second.
    SteadyRate(AVRational rate, AVRational sourceRate);

    bool HasBegun() const { return m_hasBegun; }

    /// Takes the content of the next picture, that is first shown at `time`, in AV_TIME_BASE units. The first one also
    /// stands for the numbers before it where that is said.
    void Take(AVFrame& frame, std::int64_t time, bool coversBeginning, const Emit& emit);

    /// Says that the last picture is shown until `end`.
    void Finish(std::int64_t end, const Emit& emit);

private:
    std::int64_t NumberAt(std::int64_t time, double bias) const;

    double m_perUnit;  // pictures in an AV_TIME_BASE unit
    double m_bias;
    Owned<AVFrame> m_held;  // empty where none is
    std::int64_t m_number = 0;  // of the held one
    bool m_hasBegun = false;
};

}  // namespace NorvexExport::Media
