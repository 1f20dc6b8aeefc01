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
    const bool isWhole = packet.pts != AV_NOPTS_VALUE && packet.dts != AV_NOPTS_VALUE;
    const std::int64_t delay = isWhole ? ToLine(packet.pts - packet.dts, stream) : 0;
    bool isTrue = true;
    if (!clock.hasBegun || std::abs(*stamp + clock.offset - clock.next) > slack) {
        isTrue = Adjust(clock, {*stamp, delay, duration}, peek);
    }
    move(clock.offset);
    const std::int64_t time = isTrue ? *stamp + clock.offset : clock.next;
    if (isWhole) {
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
    const std::int64_t end = clock.next + clock.delay;
    m_farthest = std::max(m_farthest.value_or(end), end);
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

const TimeLine::Clock* TimeLine::FindClock(const AVStream& stream) const {
    const auto index = static_cast<std::size_t>(stream.index);
    return index < m_clocks.size() ? &m_clocks[index] : nullptr;
}

std::int64_t TimeLine::FirstMoved(const AVStream& stream) const {
    const Clock* const clock = FindClock(stream);
    return clock != nullptr ? clock->firstMoved : 0;
}

bool TimeLine::HasBegun(const AVStream& stream) const {
    const Clock* const clock = FindClock(stream);
    return clock != nullptr && clock->hasBegun;
}

bool TimeLine::ComesBack(const Clock& clock, std::int64_t stamp, std::int64_t duration,
                         const std::vector<Coming>& coming) {
    bool hasFallen = stamp + clock.offset < clock.last - slack;
    std::int64_t before = stamp;
    std::int64_t expected = clock.next + duration;
    for (const Coming& packet : coming) {
        if (packet.stamp) {
            hasFallen = hasFallen || *packet.stamp < before - slack / 2;
            if (hasFallen && std::abs(*packet.stamp + clock.offset - expected) <= slack) return true;
            before = *packet.stamp;
        }
        expected += packet.duration;
    }
    return false;
}

std::optional<std::int64_t> TimeLine::TrueBeginning(std::int64_t stamp, std::int64_t duration,
                                                    const std::vector<Coming>& coming) const {
    std::int64_t before = stamp;
    std::int64_t passed = duration;
    for (const Coming& packet : coming) {
        if (packet.stamp) {
            const bool isGap = m_statedEnd == AV_NOPTS_VALUE && *packet.stamp > before + longestGap;
            if (isGap || *packet.stamp < before - slack / 2) return *packet.stamp - passed;
            before = *packet.stamp;
        }
        passed += packet.duration;
    }
    return std::nullopt;
}

std::int64_t TimeLine::ToStep(const FirstPicture& picture, std::int64_t offset) const {
    const auto index = static_cast<std::size_t>(picture.stream);
    if (index >= m_clocks.size() || !m_clocks[index].hasBegun || picture.duration <= 0) return 0;
    constexpr std::int64_t mostCut = AV_TIME_BASE / 40;  // of the sound before: about one of its packets
    const std::int64_t late = picture.shown + offset - (m_clocks[index].next + m_clocks[index].delay);
    const std::int64_t over = ((late % picture.duration) + picture.duration) % picture.duration;
    return over <= std::min(mostCut, picture.duration / 2) ? -over : picture.duration - over;
}

bool TimeLine::Adjust(Clock& clock, const Placed& packet, const Peek& peek) {
    const std::int64_t stamp = packet.stamp;
    const std::int64_t duration = packet.duration;
    const auto misses = [&](std::int64_t offset) { return std::abs(stamp + offset - clock.next); };
    const bool fits = Fits(clock, stamp + clock.offset);
    const Ahead ahead = peek();
    const std::vector<Coming>& coming = ahead.coming;
    if (clock.hasBegun) {
        if (ComesBack(clock, stamp, duration, coming)) return Refuse();
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
    } else if (const auto beginning = TrueBeginning(stamp, duration, coming)) {
        clock.next = *beginning + clock.offset;
        clock.firstMoved = clock.next - stamp;
        return Refuse();
    }
    if (fits) return true;
    const auto following = std::find_if(coming.begin(), coming.end(), [](const Coming& one) { return one.stamp; });
    const bool isBorneOut =
        following != coming.end() && *following->stamp >= stamp - slack && *following->stamp <= stamp + longestGap;
    if (!isBorneOut) {
        if (!clock.hasBegun) clock.next = *m_farthest;
        return Refuse();
    }
    ++m_jumps;
    const bool isDelayed = packet.delay > 0 && packet.delay <= longestGap;
    clock.offset = *m_farthest - stamp - (isDelayed ? packet.delay : 0) + ahead.lead;
    if (ahead.picture) clock.offset += ToStep(*ahead.picture, clock.offset);
    if (!clock.hasBegun) clock.firstMoved = clock.offset;
    m_offsets.push_back(clock.offset);
    return true;
}

}  // namespace NorvexExport::Media
