// Rings that were written before threads had rings of their own. The file is kept as it was written:
// 64 records, of which the first four were overwritten.
#include <gtest/gtest.h>

#include <charconv>
#include <fstream>

#include "SourceDir.h"
#include "Trace/RingFixture.h"

namespace Trace {
namespace {

class RingVersion1 : public RingFixture {
  protected:
    RingVersion1() {
        std::ofstream(path_).close();
        std::filesystem::resize_file(path_, 282'624);
        std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
        std::ifstream rows(sourcePath("tests/Trace/version1.ring.txt"));
        std::string comment;
        std::getline(rows, comment);
        std::size_t at = 0;
        std::string row;
        while (rows >> std::hex >> at >> row) {
            file.seekp(static_cast<std::streamoff>(at));
            for (std::size_t digit = 0; digit < row.size(); digit += 2) {
                unsigned char byte = 0;
                std::from_chars(&row[digit], &row[digit] + 2, byte, 16);
                file.put(static_cast<char>(byte));
            }
        }
    }
};

TEST_F(RingVersion1, IsReadAsBefore) {
    auto const found = messages();
    ASSERT_EQ(64u, found.size());
    for (unsigned number = 0; number < 62; ++number) {
        EXPECT_EQ("VynPtPktGenSm", found[number].handle);
        EXPECT_EQ(9u, found[number].level);
        EXPECT_EQ("checkPktCnt:cnt:" + std::to_string(number + 4), found[number].text);
    }
    EXPECT_EQ("VynPtSm", found[62].handle);
    EXPECT_EQ("handleClient:client leaf", found[62].text);
    EXPECT_EQ("true -5 " + std::string(95, 'y') + "...", found[63].text);
    EXPECT_EQ(1795333589014846650, found[0].nanoseconds);
    EXPECT_EQ(1795333589014855454, found[63].nanoseconds);
    EXPECT_EQ(4u, found[0].lostBefore);
}

TEST_F(RingVersion1, HasNoWriterAndNoDamage) {
    RingReader reader(path_);
    rest(reader);
    EXPECT_EQ(4u, reader.lost());
    EXPECT_EQ(0u, reader.damaged());
    EXPECT_FALSE(reader.hasWriter());
    EXPECT_FALSE(reader.poll());
}

TEST_F(RingVersion1, IsRefusedWhereItsHeaderIsDamaged) {
    patch(offsetof(RingFile::Header, next), RingFile::Word{63});
    EXPECT_EQ("damaged: byte 64: expected a position behind the first, found 63", refusal());
    patch(offsetof(RingFile::Header, recordCount), RingFile::Word{128});
    EXPECT_EQ("cut off: expected 299008 bytes, found 282624", refusal());
}

// What lies where later versions have more numbers means nothing in this one.
TEST_F(RingVersion1, HasNoRingsOfThreadsWhateverItsSpareBytesSay) {
    patch(offsetof(RingFile::Header, ownCount), RingFile::Word{3});
    EXPECT_EQ(64u, messages().size());
}

TEST_F(RingVersion1, MayBeReplacedByANewRing) {
    ringIs(path_, smallest);
    twinlog(handle_, 7, "new");
    EXPECT_EQ(std::vector<std::string>{"new"}, texts());
}

}  // namespace
}  // namespace Trace
