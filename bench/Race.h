#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zv::bench {

/// Seconds on two clocks: the one on the wall, and what all threads of the process have worked.
struct Seconds {
    double wall = 0;
    double cpu = 0;

    /// Both clocks now; only differences mean something.
    static Seconds now();
};

/// Times several ways by turns in one process, so that whatever else the machine does falls on all of them.
/// A turn is one frame that is not counted, which brings the caches back to this way, and then as many as
/// take some milliseconds, or the least number that the way asks for. Figures are medians of the turns
/// where nothing else is said.
class Race {
public:
    /// @param enter makes this way's surroundings current, outside of what is timed; may be empty
    /// @param frame does the work once
    /// @param leave waits for all that the frames have started, inside of what is timed, once a turn; may be
    ///   empty when each frame waits for itself
    /// @param leastFrames of a turn, however long they take. More than one where frames do not wait for
    ///   themselves: in turns of one frame `leave` would be the wait that they are timed without.
    /// @return number of this way
    std::size_t add(std::string name, std::function<void()> enter, std::function<void()> frame,
                    std::function<void()> leave = {}, int leastFrames = 1);
    /// For `leastFrames` of ways that are compared with and without the wait at a frame's end: what one wait
    /// a turn brings the frames without it is spread over so many.
    static constexpr int FRAMES_OF_A_STREAM = 4;

    /// Runs turns until each way has had `turns` of them.
    void run(int turns);

    /// What a frame of a way takes.
    Seconds of(std::size_t way) const { return mWays[way].median; }
    const std::string& nameOf(std::size_t way) const { return mWays[way].name; }
    std::size_t count() const { return mWays.size(); }

    /// What a frame of a way takes in the quickest turns, by each clock where the lowest tenth ends. For
    /// differences of ways: cores of one machine may differ by half for one way and by a tenth for another,
    /// so that a median depends on where the turns happened to run, while other work only ever adds.
    Seconds quickest(std::size_t way) const;

    /// Median over the turns of a way's frame through another way's of the same turn: what the machine did
    /// meanwhile cancels out.
    Seconds ratio(std::size_t way, std::size_t other) const;

private:
    struct Way {
        std::string name;
        std::function<void()> enter;
        std::function<void()> frame;
        std::function<void()> leave;
        int leastFrames;
        int frames = 0;              ///< of a turn
        std::vector<Seconds> turns;  ///< a frame's seconds in each
        Seconds median;
    };

    static Seconds time(const Way& way, int frames);
    static void turn(Way& way);

    std::vector<Way> mWays;
};

/// Of an odd or even number of values; 0 for none.
double median(std::vector<double> values);

}  // namespace zv::bench
