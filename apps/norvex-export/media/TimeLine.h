/// One continuous line of time through the stamps of an input, however they jump.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace NorvexExport::Media {

/// Whether the stream has a place on the time line that the others follow. A cover has none; subtitles tell their
/// times on the line of the pictures and the sound, and may begin long after it.
bool IsTimed(const AVStream& stream);

/// Moves the stamps of packets so that time goes on where it jumps.
///
/// Time jumps where files were joined or a recorder began anew: backwards, or forwards by more than the longest gap.
/// The packet then goes where the film has come to, and so do all that follow, each stream at the same distance from
/// the others as before. Stamps that those behind them in the stream do not bear out are damaged: their packets follow
/// the ones before. A stream may pause for as long as another one goes on, and all may for as long as the
/// input has said that it lasts.
class TimeLine {
public:
    /// In AV_TIME_BASE units, as all times here.
    static constexpr std::int64_t longestGap = std::int64_t{10} * AV_TIME_BASE;

    /// A packet behind the one that is being placed.
    struct Coming {
        std::optional<std::int64_t> stamp;
        std::int64_t duration = 0;
    };
    struct FirstPicture {
        int stream;
        std::int64_t shown;
        std::int64_t duration;
    };
    struct Ahead {
        std::vector<Coming> coming;           ///< of the same stream, as many as it takes to tell a jump from damage
        std::int64_t lead = 0;                ///< how much earlier another stream begins that is still to come
        std::optional<FirstPicture> picture;  ///< of the part that may begin here
    };
    using Peek = std::function<Ahead()>;
    static constexpr std::size_t peeked = 32;

    /// When a packet is decoded, or none where it does not say.
    static std::optional<std::int64_t> StampOf(const AVPacket& packet, const AVStream& stream);

    /// `statedEnd` is the last time that the header of the input tells of, or AV_NOPTS_VALUE.
    void Expect(std::int64_t statedEnd) { m_statedEnd = statedEnd; }

    /// Moves the packet to its place. The packets of a stream are placed in their order.
    void Place(AVPacket& packet, const AVStream& stream, const Peek& peek);

    /// How far the first stamp of a stream was from its place; 0 where it was true, or is not known yet.
    std::int64_t FirstMoved(const AVStream& stream) const;
    bool HasBegun(const AVStream& stream) const;

    long long Jumps() const { return m_jumps; }
    long long DamagedStamps() const { return m_damaged; }

private:
    /// How far a stamp may be from where its stream has come to without being looked at.
    static constexpr std::int64_t slack = AV_TIME_BASE / 10;

    struct Clock {
        std::int64_t offset = 0;  // from the stamps to the line
        bool hasBegun = false;
        std::int64_t last = 0;   // on the line, as the next
        std::int64_t next = 0;   // where the stream has come to
        std::int64_t delay = 0;  // from decoding to showing, of the last packet that tells it
        std::int64_t longestDelay = 0;
        std::int64_t firstMoved = 0;
    };

    /// The packet that is being placed.
    struct Placed {
        std::int64_t stamp;
        std::int64_t delay;  // from decoding to showing, whether that can be or not
        std::int64_t duration;
    };

    Clock& ClockOf(const AVStream& stream);
    const Clock* FindClock(const AVStream& stream) const;
    /// Whether the stream comes back to where it would be without this stamp.
    static bool ComesBack(const Clock& clock, std::int64_t stamp, std::int64_t duration,
                          const std::vector<Coming>& coming);
    /// Where a stream begins whose first stamps do not go with those behind them; none where they do.
    std::optional<std::int64_t> TrueBeginning(std::int64_t stamp, std::int64_t duration,
                                              const std::vector<Coming>& coming) const;
    bool Fits(const Clock& clock, std::int64_t time) const;
    /// How much later, or earlier, a part has to begin for its pictures to go on in step with those before. A file of a
    /// steady rate would show them beside their sound, by half a picture at most.
    std::int64_t ToStep(const FirstPicture& picture, std::int64_t offset) const;
    /// False where the stamp is damaged.
    bool Adjust(Clock& clock, const Placed& packet, const Peek& peek);
    bool Refuse() {
        ++m_damaged;
        return false;
    }

    std::vector<Clock> m_clocks;                // by the stream's index
    std::vector<std::int64_t> m_offsets = {0};  // all so far, the last of which is that of the film
    std::optional<std::int64_t> m_farthest;     // where what is shown of the film has come to
    std::int64_t m_statedEnd = AV_NOPTS_VALUE;
    long long m_jumps = 0;
    long long m_damaged = 0;
};

}  // namespace NorvexExport::Media
