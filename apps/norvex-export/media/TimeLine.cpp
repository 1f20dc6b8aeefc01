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
        move(m_offsets.back());
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
    std::int64_t time = *stamp + clock.offset;
    if (!clock.hasBegun || std::abs(time - clock.next) > slack) {
        if (Adjust(clock, *stamp, peek)) {
            time = *stamp + clock.offset;
        } else {
            ++m_damaged;
            time = clock.next;
            packet.dts = packet.pts = AV_NOPTS_VALUE;
        }
    }
    move(clock.offset);
    if (packet.dts == AV_NOPTS_VALUE && packet.pts == AV_NOPTS_VALUE) packet.dts = ToTicks(time, stream);
    const auto distance = [&] { return ToLine(packet.pts - packet.dts, stream); };
    if (packet.pts != AV_NOPTS_VALUE && packet.dts != AV_NOPTS_VALUE && std::abs(distance()) > longestGap) {
        ++m_damaged;
        packet.pts = AV_NOPTS_VALUE;
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

bool TimeLine::Adjust(Clock& clock, std::int64_t stamp, const Peek& peek) {
    // Where another stream has jumped already, this one jumps with it, as far as the ends of the two and their
    // beginnings lie apart.
    constexpr std::int64_t apart = std::int64_t{5} * AV_TIME_BASE;
    const auto misses = [&](std::int64_t offset) { return std::abs(stamp + offset - clock.next); };
    const bool fits = Fits(clock, stamp + clock.offset);
    if (clock.hasBegun) {
        const auto nearest = std::min_element(m_offsets.begin(), m_offsets.end(), [&](std::int64_t a, std::int64_t b) {
            return misses(a) < misses(b);
        });
        if (misses(*nearest) <= (fits ? slack : apart) && *nearest != clock.offset) {
            clock.offset = *nearest;
            return true;
        }
    }
    if (fits) return true;
    const std::optional<std::int64_t> following = peek();
    const bool isBorneOut = following && *following >= stamp - slack && *following <= stamp + longestGap;
    if (!isBorneOut) {
        if (!clock.hasBegun) clock.next = *m_farthest;
        return false;
    }
    ++m_jumps;
    clock.offset = *m_farthest - stamp;
    m_offsets.push_back(clock.offset);
    return true;
}

}  // namespace NorvexExport::Media
