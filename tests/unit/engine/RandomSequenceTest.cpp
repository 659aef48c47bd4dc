// The game's random sequence gives the C library's random() numbers for every seed, and a state
// put back draws the same numbers again.
#include <gtest/gtest.h>

#include <cstdlib>

#include "engine/RandomSequence.h"

namespace tolvar {
namespace {

TEST(RandomSequenceTest, DrawsWhatTheCLibraryDrawsForEverySeed) {
    // 0 and 1 start alike; large seeds are negative as words.
    const std::uint32_t seeds[] = {0, 1, 2, 7, 42, 127773, 2147483646, 2147483647, 2147483648u,
                                   3000000000u, 4294967295u};
    for (const std::uint32_t seed : seeds) {
        srandom(seed);
        RandomSequence sequence;
        sequence.seed(seed);
        for (int i = 0; i < 2000; ++i) ASSERT_EQ(sequence.next(), random()) << "seed " << seed << " draw " << i;
    }
    RandomSequence unseeded;
    srandom(1);
    EXPECT_EQ(unseeded.next(), random()) << "an unseeded sequence starts as seed 1";
}

TEST(RandomSequenceTest, AStatePutBackDrawsTheSameNumbers) {
    RandomSequence sequence;
    sequence.seed(99);
    for (int i = 0; i < 45; ++i) sequence.next();  // the positions wrap part way round
    const RandomSequence::State kept = sequence.state();
    std::vector<std::int32_t> first, again;
    for (int i = 0; i < 100; ++i) first.push_back(sequence.next());
    ASSERT_TRUE(sequence.restore(kept));
    for (int i = 0; i < 100; ++i) again.push_back(sequence.next());
    EXPECT_EQ(first, again);

    // Positions that no state of the generator has are refused and change nothing.
    const RandomSequence::State now = sequence.state();
    for (const auto& [front, rear] : {std::pair{31, 28}, {-1, 27}, {5, 5}, {0, 31}}) {
        RandomSequence::State bad = kept;
        bad.front = front;
        bad.rear = rear;
        EXPECT_FALSE(sequence.restore(bad)) << front << "," << rear;
        EXPECT_EQ(sequence.state(), now);
    }
}

}  // namespace
}  // namespace tolvar
