// What tests of the ring share: a file of their own, a handle, and reading everything that is
// there.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ScratchPath.h"
#include "Trace/RingReader.h"
#include "Trace/Ringlog.h"
#include "Trace/Trace.h"

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

    static std::size_t recordAt(std::size_t slot) {
        using namespace Trace::RingFile;
        return sizeof(Header) + formatCount * sizeof(FormatEntry) + slot * sizeof(Record);
    }

    static constexpr std::size_t smallest = 64;

  private:
    ScratchPath const scratch_{"rings"};

  protected:
    std::string const directory_ = scratch_.string();
    std::string const path_ = directory_ + "/ring";
    Trace::Handle& handle_ = Trace::handle("VynPtSm");
};
