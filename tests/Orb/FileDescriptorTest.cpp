#include "Orb/FileDescriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <new>
#include <system_error>

#include "Grist/Grist.h"
#include "Orb/Fixture.h"
#include "TableRow.h"

namespace {

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

struct Descriptor : LoopTest {
    std::unique_ptr<Pipe> a = pipe("a");
    std::unique_ptr<Pipe> b = pipe("b");
    std::unique_ptr<Pipe> c = pipe("c");
};

TEST_F(Descriptor, IsAnnouncedOnceInEveryTurnThatFindsItReadable) {
    a->write();
    a->write();
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, IsNotAnnouncedWhenThereIsNothingToRead) {
    a->write();
    a->work = [&] {
        char byte;
        EXPECT_EQ(::read(a->descriptor->descriptor(), &byte, 1), 1);
    };
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Descriptor, IsAnnouncedInTheOrderOfCreation) {
    c->write();
    a->write();
    b->write();
    EXPECT_EQ(turn(), (Log{"a", "b", "c"}));
}

TEST_F(Descriptor, IsAnnouncedAtItsEnd) {
    a->closeWriteEnd();
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, IsAnnouncedWhenItIsFaulty) {
    ::close(a->descriptor->descriptor());
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, IsNotAnnouncedBeforeItIsAskedTo) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    auto const silent = Orb::FileDescriptor::FileDescriptorIs(loop, ends[0], "silent");
    EXPECT_FALSE(silent->notifyOnReadable());
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_FALSE(loop->turn());
    ::close(ends[1]);
}

TEST_F(Descriptor, IsNotAnnouncedOnceItIsSwitchedOff) {
    a->write();
    a->descriptor->notifyOnReadableIs(false);
    EXPECT_EQ(turn(), Log{});
    a->descriptor->notifyOnReadableIs(true);
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, SwitchedOffByAnAnnouncementBeforeItsOwnIsNotAnnounced) {
    a->write();
    b->write();
    a->work = [&] { b->descriptor->notifyOnReadableIs(false); };
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, ClosedByAnAnnouncementBeforeItsOwnIsNotAnnounced) {
    a->write();
    b->write();
    c->write();
    a->work = [&] { b->descriptor->close(); };
    EXPECT_EQ(turn(), (Log{"a", "c"}));
}

TEST_F(Descriptor, DestroyedByAnAnnouncementBeforeItsOwnIsNotAnnounced) {
    a->write();
    b->write();
    c->write();
    a->work = [&] { b.reset(); };
    EXPECT_EQ(turn(), (Log{"a", "c"}));
}

TEST_F(Descriptor, DestroyedByAPostedCallIsNotAnnounced) {
    a->write();
    b->write();
    loop->post([&] { a.reset(); });
    EXPECT_EQ(turn(), (Log{"b"}));
}

TEST_F(Descriptor, MayDestroyItselfInItsAnnouncement) {
    a->write();
    b->write();
    a->work = [&] { a->descriptor = nullptr; };
    EXPECT_EQ(turn(), (Log{"a", "b"}));
    EXPECT_EQ(turn(), (Log{"b"}));
}

TEST_F(Descriptor, CreatedByAnAnnouncementIsAnnouncedInTheNextTurn) {
    std::unique_ptr<Pipe> added;
    a->write();
    a->work = [&] {
        if (!added) {
            added = pipe("added");
            added->write();
        }
    };
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_EQ(turn(), (Log{"a", "added"}));
}

// The system gives the new descriptor the number of the one that was just closed.
TEST_F(Descriptor, IsNotAnnouncedInPlaceOfAClosedOneWithItsNumber) {
    std::unique_ptr<Pipe> added;
    a->write();
    b->write();
    a->work = [&] {
        if (!added) {
            b->descriptor->close();
            added = pipe("added");
        }
    };
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(Descriptor, OwnsItsDescriptor) {
    int const number = a->descriptor->descriptor();
    EXPECT_TRUE(isOpen(number));
    a.reset();
    EXPECT_FALSE(isOpen(number));
}

TEST_F(Descriptor, ClosedTwiceClosesOnce) {
    int const number = a->descriptor->descriptor();
    a->descriptor->close();
    EXPECT_EQ(a->descriptor->descriptor(), -1);
    int const reused = ::dup(b->descriptor->descriptor());
    EXPECT_EQ(reused, number);
    a->descriptor->close();
    EXPECT_TRUE(isOpen(reused));
    ::close(reused);
}

TEST_F(Descriptor, SwitchesBlockingOffAndOn) {
    int const number = a->descriptor->descriptor();
    a->descriptor->nonBlockingIs(true);
    EXPECT_NE(::fcntl(number, F_GETFL) & O_NONBLOCK, 0);
    a->descriptor->nonBlockingIs(false);
    EXPECT_EQ(::fcntl(number, F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(Descriptor, CannotBeMadeNonBlockingOnceItIsClosed) {
    a->descriptor->close();
    EXPECT_THROW(a->descriptor->nonBlockingIs(true), std::system_error);
}

// Its making fails at each allocation in its turn before it succeeds.
struct DescriptorMadeAtLast : Descriptor {
    DescriptorMadeAtLast() {
        EXPECT_EQ(::pipe(ends), 0);
        std::uint64_t failures = 0;
        while (!made) {
            Grist::failAfterIs(failures + 1);
            try {
                made = Orb::FileDescriptor::FileDescriptorIs(loop, ends[0], {});
            } catch (std::bad_alloc const&) {
                ++failures;
                wasAlwaysOpen = wasAlwaysOpen && isOpen(ends[0]);
            }
        }
        Grist::failAfterIs(0);
        EXPECT_GT(failures, 1U);
    }
    ~DescriptorMadeAtLast() override { ::close(ends[1]); }

    void readable(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                  Vanta::ValueRef, Vanta::ValueRef) {
        log.emplace_back("made");
    }

    int ends[2];
    Vanta::Ptr<Orb::FileDescriptor> made;
    bool wasAlwaysOpen = true;
    Vanta::Subscriber subscriber;
};

TEST_F(DescriptorMadeAtLast, WasTheCallersWheneverMemoryRanOut) {
    EXPECT_TRUE(wasAlwaysOpen);
}

TEST_F(DescriptorMadeAtLast, LeavesTheOthersAnnounced) {
    a->write();
    EXPECT_EQ(turn(), (Log{"a"}));
}

// It lies where those were that were not made; the loop must not follow one of them as well.
TEST_F(DescriptorMadeAtLast, IsAnnouncedOnce) {
    made->notifyOnReadableIs(true);
    subscriber.subscribe<&DescriptorMadeAtLast::readable>(made->publisher(), this);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_EQ(turn(), (Log{"made"}));
}

TEST_F(Descriptor, IsReadByItsAttributes) {
    ASSERT_EQ(a->descriptor->typeInfo().name, "FileDescriptor");
    EXPECT_EQ(tableRow(*a->descriptor, 130), "name=a");
    EXPECT_EQ(tableRow(*a->descriptor, 131), "notifyOnReadable=true");
}

}  // namespace
