#include "engine/RandomSequence.h"

namespace tolvar {

namespace {
constexpr int kSeparation = 3;  // the front word runs this far ahead of the rear one
}

void RandomSequence::seed(std::uint32_t seed) {
    std::array<std::int32_t, kWords>& r = state_.words;
    // The seed's bits as a signed word; 0 would leave the generator stuck at 0.
    std::int32_t word = static_cast<std::int32_t>(seed == 0 ? 1u : seed);
    r[0] = word;
    for (int i = 1; i < kWords; ++i) {
        // 16807 * word mod (2^31 - 1), without overflow (Schrage's method).
        const std::int64_t hi = word / 127773;
        const std::int64_t lo = word % 127773;
        std::int64_t next = 16807 * lo - 2836 * hi;
        if (next < 0) next += 2147483647;
        word = static_cast<std::int32_t>(next);
        r[i] = word;
    }
    state_.front = kSeparation;
    state_.rear = 0;
    // The first ten rounds are thrown away, so nearby seeds part ways.
    for (int i = 0; i < kWords * 10; ++i) next();
}

std::int32_t RandomSequence::next() {
    std::array<std::int32_t, kWords>& r = state_.words;
    const std::uint32_t sum =
        static_cast<std::uint32_t>(r[state_.front]) + static_cast<std::uint32_t>(r[state_.rear]);
    r[state_.front] = static_cast<std::int32_t>(sum);
    state_.front = (state_.front + 1) % kWords;
    state_.rear = (state_.rear + 1) % kWords;
    return static_cast<std::int32_t>(sum >> 1);
}

bool RandomSequence::restore(const State& state) {
    if (state.front < 0 || state.front >= kWords || state.rear < 0 || state.rear >= kWords) return false;
    if ((state.rear + kSeparation) % kWords != state.front) return false;
    state_ = state;
    return true;
}

}  // namespace tolvar
