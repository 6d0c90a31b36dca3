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

    void readWhileTwoThreadsGoRoundTheirRings() const;

    // A statement whose values follow from each other, so that a mixture would show.
    void write(std::string_view name, std::uint64_t number) const {
        twinlog(handle_, 7, "%s %s %s %s", name, number, letters(number), number * 7919);
    }

    void writeAll(std::string_view name) const {
        for (std::uint64_t number = 0; number < each; ++number) {
            write(name, number);
        }
    }

    static std::string_view letters(std::uint64_t number) {
        static std::string const all(90, 'l');
        return std::string_view(all).substr(0, number % 90);
    }

    // The number in a message, once it is shown to be whole.
    static std::uint64_t checked(std::string const& text) {
        std::uint64_t const number = std::stoull(text.substr(2));
        EXPECT_EQ(text.substr(0, 2) + std::to_string(number) + " " + std::string(letters(number)) +
                      " " + std::to_string(number * 7919),
                  text);
        return number;
    }
};

// Two threads that write until the object goes.
class Writers {
  public:
    template <class Write>
    explicit Writers(Write write) : one_(run(write, "1")), two_(run(write, "2")) {}
    ~Writers() { stop(); }
    Writers(Writers const&) = delete;
    Writers& operator=(Writers const&) = delete;

    // Returns how many statements there were.
    std::uint64_t stop() {
        stop_.store(true);
        for (auto* const thread : {&one_, &two_}) {
            if (thread->joinable()) {
                thread->join();
            }
        }
        return written_.load();
    }

  private:
    template <class Write>
    std::thread run(Write write, char const* name) {
        return std::thread([this, write, name] {
            std::uint64_t number = 0;
            for (; !stop_.load(std::memory_order_relaxed); ++number) {
                write(name, number);
            }
            written_ += number;
        });
    }

    std::atomic<bool> stop_ = false;
    std::atomic<std::uint64_t> written_ = 0;
    std::thread one_;
    std::thread two_;
};

void RingThreads::readWhileTwoThreadsGoRoundTheirRings() const {
    RingReader reader(path_);
    reader.handleIs(handle_.name());
    Writers writers([this](char const* name, std::uint64_t number) { write(name, number); });
    std::uint64_t seen = 0;
    auto const readWhatIsThere = [&](RingReader::Unfinished unfinished) {
        int timesOvertaken = 0;
        reader.poll();
        while (auto const message = reader.next(unfinished)) {
            checked(message->text);
            ++seen;
            timesOvertaken += message->lostBefore != 0;
        }
        return timesOvertaken;
    };
    for (int timesOvertaken = 0; timesOvertaken < 500;) {
        timesOvertaken += readWhatIsThere(RingReader::Unfinished::wait);
    }
    auto const written = writers.stop();
    readWhatIsThere(RingReader::Unfinished::passOver);
    EXPECT_EQ(written, seen + reader.lost() + reader.damaged());
}

TEST_F(RingThreads, LeaveNoTornRecordToAReaderThatIsOvertakenAgainAndAgain) {
    ringIs(path_, smallest);
    readWhileTwoThreadsGoRoundTheirRings();
}

TEST_F(RingThreads, LeaveNoTornRecordInTheSharedRingEither) {
    ringIs(path_, smallest);
    Crowd const crowd;
    readWhileTwoThreadsGoRoundTheirRings();
    EXPECT_LT(1000u, sharedCount());
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
