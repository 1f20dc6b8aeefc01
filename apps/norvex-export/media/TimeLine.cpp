#include "TimeLine.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace NorvexExport::Media {

namespace {

std::int64_t ToLine(std::int64_t ticks, const AVStream& stream) {
    return av_rescale_q(ticks, stream.time_base, av_get_time_base_q());
}

std::int64_t ToTicks(std::int64_t time, const AVStream& stream) {
    return av_rescale_q(time, av_get_time_base_q(), stream.time_base);
}

}  // namespace

bool IsTimed(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    const bool isAttached = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    return (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO) && !isAttached;
}

std::optional<std::int64_t> TimeLine::StampOf(const AVPacket& packet, const AVStream& stream) {
    if (packet.dts != AV_NOPTS_VALUE) return ToLine(packet.dts, stream);
    // Pictures are shown in another order than they are decoded in.
    const bool isSound = stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
    if (packet.pts != AV_NOPTS_VALUE && isSound) return ToLine(packet.pts, stream);
    return std::nullopt;
}

void TimeLine::Place(AVPacket& packet, const AVStream& stream, const Peek& peek) {
    const auto move = [&](std::int64_t offset) {
        const std::int64_t ticks = ToTicks(offset, stream);
        if (packet.pts != AV_NOPTS_VALUE) packet.pts += ticks;
        if (packet.dts != AV_NOPTS_VALUE) packet.dts += ticks;
    };
    if (!IsTimed(stream)) {
        // What stands beside the film keeps its times; what is told on the film's line goes with it.
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE) move(m_offsets.back());
        return;
    }
    Clock& clock = ClockOf(stream);
    const std::int64_t duration = ToLine(std::max<std::int64_t>(packet.duration, 0), stream);
    const std::optional<std::int64_t> stamp = StampOf(packet, stream);
    if (!stamp) {
        move(clock.offset);
        clock.next += duration;
        return;
    }
    bool isTrue = true;
    if (!clock.hasBegun || std::abs(*stamp + clock.offset - clock.next) > slack) {
        isTrue = Adjust(clock, *stamp, duration, peek);
    }
    move(clock.offset);
    const std::int64_t time = isTrue ? *stamp + clock.offset : clock.next;
    if (packet.pts != AV_NOPTS_VALUE && packet.dts != AV_NOPTS_VALUE) {
        const std::int64_t delay = ToLine(packet.pts - packet.dts, stream);
        const std::int64_t usual = std::max<std::int64_t>(AV_TIME_BASE, 4 * clock.longestDelay);
        if (delay >= -slack && delay <= (clock.hasBegun ? usual : longestGap)) {
            clock.delay = delay;
            clock.longestDelay = std::max(clock.longestDelay, delay);
        } else {
            if (isTrue) ++m_damaged;
            packet.pts = packet.dts + ToTicks(clock.delay, stream);
        }
    }
    if (!isTrue) {
        packet.dts = ToTicks(time, stream);
        if (packet.pts != AV_NOPTS_VALUE) packet.pts = packet.dts + ToTicks(clock.delay, stream);
    }
    clock.hasBegun = true;
    clock.last = time;
    clock.next = time + duration;
    m_farthest = std::max(m_farthest.value_or(clock.next), clock.next);
}

TimeLine::Clock& TimeLine::ClockOf(const AVStream& stream) {
    const auto index = static_cast<std::size_t>(stream.index);
    if (index >= m_clocks.size()) m_clocks.resize(index + 1);
    Clock& clock = m_clocks[index];
    if (!clock.hasBegun) clock.offset = m_offsets.back();
    return clock;
}

bool TimeLine::Fits(const Clock& clock, std::int64_t time) const {
    if (!m_farthest) return true;
    const bool isStated = m_statedEnd != AV_NOPTS_VALUE && time <= m_statedEnd;
    if (clock.hasBegun && time < clock.last - slack) return false;
    return isStated || time <= *m_farthest + longestGap;
}

bool TimeLine::Adjust(Clock& clock, std::int64_t stamp, std::int64_t duration, const Peek& peek) {
    const auto misses = [&](std::int64_t offset) { return std::abs(stamp + offset - clock.next); };
    const bool fits = Fits(clock, stamp + clock.offset);
    if (!clock.hasBegun && fits) return true;
    const std::optional<std::int64_t> following = peek();
    if (clock.hasBegun && following) {
        const std::int64_t time = stamp + clock.offset;
        const std::int64_t nextTime = *following + clock.offset;
        const bool goesOn = nextTime >= clock.last - slack && nextTime <= clock.next + duration + longestGap;
        const bool isBetween = time >= clock.last - slack && time <= nextTime + slack;
        if (goesOn && !isBetween) return Refuse();
    }
    if (clock.hasBegun) {
        // Where another stream has jumped already, this one jumps with it, as far as the ends of the two and their
        // beginnings lie apart.
        constexpr std::int64_t apart = std::int64_t{5} * AV_TIME_BASE;
        const auto nearest =
            std::min_element(m_offsets.begin(), m_offsets.end(),
                             [&](std::int64_t one, std::int64_t two) { return misses(one) < misses(two); });
        if (*nearest != clock.offset && misses(*nearest) <= (fits ? slack : apart)) {
            clock.offset = *nearest;
            return true;
        }
    }
    if (fits) return true;
    const bool isBorneOut = following && *following >= stamp - slack && *following <= stamp + longestGap;
    if (!isBorneOut) {
        if (!clock.hasBegun) clock.next = *m_farthest;
        return Refuse();
    }
    ++m_jumps;
    clock.offset = *m_farthest - stamp;
    m_offsets.push_back(clock.offset);
    return true;
}

}  // namespace NorvexExport::Media
