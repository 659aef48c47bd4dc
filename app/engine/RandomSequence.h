// The game's random sequence: every draw of the board, the refills, the removal flash and the
// score screen comes from here. It gives exactly the numbers of the C library's random() after
// srandom(seed) (the additive generator with 31 words of state), and its whole state can be
// copied, saved and put back, so an undone move or a continued game draws the same numbers again.
#pragma once

#include <array>
#include <cstdint>

namespace tolvar {

class RandomSequence {
public:
    static constexpr int kWords = 31;
    struct State {
        std::array<std::int32_t, kWords> words{};
        int front = 0;  // where the next sum is stored
        int rear = 0;   // the older word added to it
        bool operator==(const State&) const = default;
    };

    RandomSequence() { seed(1); }

    // Starts the sequence again from seed, as srandom(seed) does.
    void seed(std::uint32_t seed);
    // The next number, 0 to 2^31 - 1.
    std::int32_t next();

    const State& state() const { return state_; }
    // Puts back a state taken with state(); false (and nothing changed) when the state could
    // not have come from this generator (positions out of range or not 3 words apart).
    bool restore(const State& state);

private:
    State state_;
};

}  // namespace tolvar
