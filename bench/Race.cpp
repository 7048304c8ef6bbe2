#include "bench/Race.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>

namespace zv::bench {

namespace {

constexpr double kTurnSeconds = 0.012;
constexpr int kMostFrames = 200;

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Pick>
Seconds medianOf(std::size_t count, Pick&& pick) {
    std::vector<double> wall;
    std::vector<double> cpu;
    for (std::size_t i = 0; i < count; ++i) {
        const Seconds value = pick(i);
        wall.push_back(value.wall);
        cpu.push_back(value.cpu);
    }
    return {median(std::move(wall)), median(std::move(cpu))};
}

}  // namespace

double median(std::vector<double> values) {
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Seconds Seconds::now() {
    return {read(CLOCK_MONOTONIC), read(CLOCK_PROCESS_CPUTIME_ID)};
}

std::size_t Race::add(std::string name, std::function<void()> enter, std::function<void()> frame,
                      std::function<void()> leave, int leastFrames) {
    mWays.push_back(
        {std::move(name), std::move(enter), std::move(frame), std::move(leave), leastFrames, 0, {}, {}});
    return mWays.size() - 1;
}

/// What one of so many frames takes.
Seconds Race::time(const Way& way, int frames) {
    const Seconds before = Seconds::now();
    for (int i = 0; i < frames; ++i) {
        way.frame();
    }
    if (way.leave) {
        way.leave();
    }
    const Seconds after = Seconds::now();
    return {(after.wall - before.wall) / frames, (after.cpu - before.cpu) / frames};
}

void Race::turn(Way& way) {
    if (way.enter) {
        way.enter();
    }
    time(way, 1);
    if (way.frames == 0) {
        const double once = std::max(time(way, 1).wall, 1e-7);
        way.frames =
            std::clamp(static_cast<int>(std::ceil(kTurnSeconds / once)), way.leastFrames, kMostFrames);
    }
    way.turns.push_back(time(way, way.frames));
}

void Race::run(int turns) {
    for (int i = 0; i < turns; ++i) {
        for (Way& way : mWays) {
            turn(way);
        }
    }
    for (Way& way : mWays) {
        way.median = medianOf(way.turns.size(), [&](std::size_t i) { return way.turns[i]; });
    }
}

Seconds Race::quickest(std::size_t way) const {
    const std::vector<Seconds>& turns = mWays[way].turns;
    const auto lowerTenth = [&](double Seconds::*clock) {
        std::vector<double> values;
        for (const Seconds& turn : turns) {
            values.push_back(turn.*clock);
        }
        std::sort(values.begin(), values.end());
        return values.empty() ? 0.0 : values[values.size() / 10];
    };
    return {lowerTenth(&Seconds::wall), lowerTenth(&Seconds::cpu)};
}

Seconds Race::ratio(std::size_t way, std::size_t other) const {
    const std::vector<Seconds>& ours = mWays[way].turns;
    const std::vector<Seconds>& theirs = mWays[other].turns;
    return medianOf(std::min(ours.size(), theirs.size()), [&](std::size_t i) {
        return Seconds{ours[i].wall / theirs[i].wall, ours[i].cpu / theirs[i].cpu};
    });
}

}  // namespace zv::bench
