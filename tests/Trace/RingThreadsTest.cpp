// Two threads write the ring while a third reads it: the event thread, the chip's, and `ringlog`.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "Trace/RingFixture.h"
#include "Trace/Trace.h"

namespace Trace {
namespace {

class RingThreads : public RingFixture {
  protected:
    static constexpr std::uint64_t each = 40'000;

    // Statements whose values follow from each other, so that a mixture would show.
    void writeAll(std::string_view name) const {
        for (std::uint64_t number = 0; number < each; ++number) {
            auto const long_ = std::string(number % 90, static_cast<char>('a' + number % 26));
            twinlog(handle_, 7, "%s %s %s %s", name, number, long_, number * 7919);
        }
    }

    // The number in a message, once it is shown to be whole.
    static std::uint64_t checked(std::string const& text) {
        std::uint64_t const number = std::stoull(text.substr(2));
        auto const long_ = std::string(number % 90, static_cast<char>('a' + number % 26));
        EXPECT_EQ(text.substr(0, 2) + std::to_string(number) + " " + long_ + " " +
                      std::to_string(number * 7919),
                  text);
        return number;
    }
};

TEST_F(RingThreads, LeaveNoTornRecordToAReaderThatFollows) {
    ringIs(path_, smallest);
    RingReader reader(path_);
    std::atomic<int> running = 2;
    std::thread one([&] {
        writeAll("1");
        --running;
    });
    std::thread two([&] {
        writeAll("2");
        --running;
    });
    std::uint64_t seen = 0;
    bool isRunning = true;
    while (isRunning) {
        isRunning = running.load() != 0;
        reader.poll();
        while (auto const message = reader.next(RingReader::Unfinished::wait)) {
            checked(message->text);
            ++seen;
        }
    }
    one.join();
    two.join();
    EXPECT_EQ(2 * each, seen + reader.lost() + reader.damaged());
}

TEST_F(RingThreads, LoseNothingInARingThatIsLargeEnough) {
    ringIs(path_, 4 * each);
    std::thread one([&] { writeAll("1"); });
    writeAll("2");
    one.join();
    std::array<std::uint64_t, 3> expected{};
    for (auto const& text : texts()) {
        EXPECT_EQ(expected[static_cast<std::size_t>(text[0] - '0')]++, checked(text));
    }
    EXPECT_EQ(each, expected[1]);
    EXPECT_EQ(each, expected[2]);
}

TEST_F(RingThreads, MayGoOnWhileTheRingIsReplaced) {
    std::atomic<bool> stop = false;
    std::thread one([&] {
        while (!stop.load()) {
            twinlog(handle_, 7, "%s", "a");
        }
    });
    for (int round = 0; round < 20; ++round) {
        ringIs(path_, smallest);
    }
    ringDel();
    stop.store(true);
    one.join();
}

}  // namespace
}  // namespace Trace
