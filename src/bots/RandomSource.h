#pragma once

#include <QTime>
#include <cstdint>
#include <functional>

namespace halvane {

// The uniform random generator of numbers in [0, 1) that picks the random
// bot sets. It is an interface so that tests can hand in draws they chose.
// The map shuffle ("Randomize Map Order") does not use it: each of its
// passes starts a generator of its own afresh from the time of day.
class RandomSource {
public:
    virtual ~RandomSource() = default;
    // The next number in [0, 1).
    virtual double draw() = 0;
    // Seeds the generator again from the time of day.
    virtual void reseed() = 0;
};

// The real generator. Re-seeding mixes the seconds since midnight into the
// current state rather than restarting from them: the bot picks re-seed before
// every draw, and a plain restart would repeat the same number for a whole
// second (and a picking loop that waits for a free slot would stall until
// the clock moved on).
class TimeSeededRandom : public RandomSource {
public:
    using Clock = std::function<double()>; // seconds since midnight

    explicit TimeSeededRandom(Clock clock = secondsSinceMidnight, std::uint64_t state = 0)
        : m_clock(std::move(clock)), m_state(state) {
        if (m_state == 0)
            reseed();
    }

    double draw() override {
        // splitmix64: small, fast and well spread; 53 bits give [0, 1).
        m_state += 0x9E3779B97F4A7C15ull;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        z ^= z >> 31;
        return double(z >> 11) * (1.0 / 9007199254740992.0);
    }

    void reseed() override {
        const double seconds = m_clock();
        const auto ticks = static_cast<std::uint64_t>(seconds * 1000.0);
        m_state = (m_state * 6364136223846793005ull) ^ (ticks + 0x632BE59BD9B4E019ull);
    }

    static double secondsSinceMidnight() {
        return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
    }

private:
    Clock m_clock;
    std::uint64_t m_state;
};

} // namespace halvane
