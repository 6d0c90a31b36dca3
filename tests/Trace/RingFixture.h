// What tests of the ring share: a file of their own, a handle, and reading everything that is
// there.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "ScratchPath.h"
#include "Trace/RingReader.h"
#include "Trace/Ringlog.h"
#include "Trace/Trace.h"

// Threads that have all own rings while this lives, so that everybody else's statements go to the
// shared one. Their own statements are of the handle "Crowd".
class Crowd {
  public:
    Crowd() {
        for (auto& thread : threads_) {
            thread = std::thread([this] {
                Trace::twinlog(Trace::handle("Crowd"), 7, "here");
                arrived_.count_down();
                leave_.wait();
            });
        }
        arrived_.wait();
    }
    ~Crowd() {
        leave_.count_down();
        for (auto& thread : threads_) {
            thread.join();
        }
    }
    Crowd(Crowd const&) = delete;
    Crowd& operator=(Crowd const&) = delete;

  private:
    std::latch arrived_{Trace::RingFile::ownRings};
    std::latch leave_{1};
    std::array<std::thread, Trace::RingFile::ownRings> threads_;
};

class RingFixture : public ::testing::Test {
  protected:
    RingFixture() { std::filesystem::create_directories(directory_); }
    ~RingFixture() override { Trace::ringDel(); }

    std::vector<Trace::RingMessage> messages() const {
        Trace::RingReader reader(path_);
        return rest(reader);
    }

    static std::vector<Trace::RingMessage> rest(Trace::RingReader& reader) {
        std::vector<Trace::RingMessage> found;
        while (auto message = reader.next(Trace::RingReader::Unfinished::passOver)) {
            found.push_back(std::move(*message));
        }
        return found;
    }

    std::vector<std::string> texts() const {
        std::vector<std::string> found;
        for (auto& message : messages()) {
            found.push_back(std::move(message.text));
        }
        return found;
    }

    // Why the file cannot be opened, without the path in front; empty if it can.
    std::string refusal() const {
        try {
            Trace::RingReader const reader(path_);
            return "";
        } catch (Trace::RingError const& error) {
            EXPECT_EQ(0u, std::string(error.what()).find(path_ + ": ")) << error.what();
            return std::string(error.what()).substr(path_.size() + 2);
        }
    }

    // Puts bytes into the file, behind the writer's back.
    template <class T>
    void patch(std::size_t at, T const& bytes) const {
        int const file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_EQ(static_cast<ssize_t>(sizeof bytes),
                  ::pwrite(file, &bytes, sizeof bytes, static_cast<off_t>(at)));
        ::close(file);
    }

    template <class T>
    T found(std::size_t at) const {
        T bytes{};
        int const file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_EQ(static_cast<ssize_t>(sizeof bytes),
                  ::pread(file, &bytes, sizeof bytes, static_cast<off_t>(at)));
        ::close(file);
        return bytes;
    }

    // Where a record begins in the smallest ring: in the own ring of the thread that came first, and
    // in the shared one.
    static std::size_t recordAt(std::size_t line) {
        using namespace Trace::RingFile;
        return sizeOfShared(smallestShared, formatCount) + line * lineSize;
    }
    static std::size_t sharedRecordAt(std::size_t slot) {
        using namespace Trace::RingFile;
        return sizeOfShared(slot, formatCount);
    }

    // How many records went to the smallest ring's shared part.
    std::uint64_t sharedCount() const {
        using namespace Trace::RingFile;
        return found<Word>(offsetof(Header, next)) - smallestShared;
    }

    // The smallest ring: lines of each own one, records of the shared one.
    static constexpr std::size_t smallest = 64;
    static constexpr std::size_t smallestShared = smallest / Trace::RingFile::mostLines;

  private:
    ScratchPath const scratch_{"rings"};

  protected:
    std::string const directory_ = scratch_.string();
    std::string const path_ = directory_ + "/ring";
    Trace::Handle& handle_ = Trace::handle("VynPtSm");
};
