#include "VynPacketTracer/VynPtMounts.h"

#include <gtest/gtest.h>

#include <string>

namespace VynPacketTracer {
namespace {

// An entity that notes when it goes: put into a directory, it tells when the directory goes.
class Canary final : public Kel::Object {
  public:
    static Vanta::Ptr<Canary> CanaryIs(std::string name, std::string& log) {
        return Vanta::makeNode<Canary>(std::move(name), log);
    }
    Kel::TypeInfo const& typeInfo() const noexcept override {
        static constexpr Kel::TypeInfo info{"Canary", {}, {}};
        return info;
    }

  private:
    friend struct Vanta::NodeFactory;
    Canary(std::string name, std::string& log) : name_(std::move(name)), log_(log) {}
    ~Canary() override { log_ += name_ + " "; }

    std::string name_;
    std::string& log_;
};

class VynPtMountsTest : public testing::Test {
  protected:
    // A directory that notes its name when it goes.
    Vanta::Ptr<Kel::Dir> dir(std::string name) {
        auto const made = Kel::Dir::DirIs();
        made->entryIs("canary", Canary::CanaryIs(std::move(name), gone));
        return made;
    }
    std::string gone;
    Vanta::Ptr<VynPacketTracerMounts> mounts = vynPacketTracerMountsFactory();
};

TEST_F(VynPtMountsTest, BeginsWithoutDirectories) {
    EXPECT_EQ(mounts->config(), nullptr);
    EXPECT_EQ(mounts->status(), nullptr);
}

TEST_F(VynPtMountsTest, TheCreatorDoesTheSameAsTheFactory) {
    EXPECT_EQ(VynPacketTracerMounts::VynPacketTracerMountsIs()->config(), nullptr);
}

TEST_F(VynPtMountsTest, HoldsTheDirectoriesThatItIsGiven) {
    auto const config = dir("config");
    auto const status = dir("status");
    mounts->configIs(config);
    mounts->statusIs(status);
    EXPECT_EQ(mounts->config(), config);
    EXPECT_EQ(mounts->status(), status);
    EXPECT_EQ(config->refCount(), 2u);
    EXPECT_EQ(status->refCount(), 2u);
}

TEST_F(VynPtMountsTest, ReleasesTheDirectoryThatIsReplaced) {
    mounts->configIs(dir("config"));
    mounts->statusIs(dir("status"));
    mounts->configIs(dir("other"));
    EXPECT_EQ(gone, "config ");
    mounts->statusIs(nullptr);
    EXPECT_EQ(gone, "config status ");
}

TEST_F(VynPtMountsTest, SettingTheDirectoryThatIsHeldChangesNothing) {
    auto const config = dir("config");
    mounts->configIs(config);
    mounts->configIs(config);
    mounts->configIs(mounts->config());
    EXPECT_EQ(config->refCount(), 2u);
    auto const status = dir("status");
    mounts->statusIs(status);
    mounts->statusIs(status);
    mounts->statusIs(mounts->status());
    EXPECT_EQ(status->refCount(), 2u);
}

TEST_F(VynPtMountsTest, GoesWithStatusFirstThenConfig) {
    mounts->configIs(dir("config"));
    mounts->statusIs(dir("status"));
    mounts = nullptr;
    EXPECT_EQ(gone, "status config ");
}

TEST_F(VynPtMountsTest, NumbersConfig130AndStatus131) {
    auto const attributes = mounts->typeInfo().attributes;
    ASSERT_EQ(attributes.size(), 2u);
    EXPECT_EQ(attributes[0].number, 130u);
    EXPECT_EQ(attributes[0].name, "config");
    EXPECT_EQ(attributes[1].number, 131u);
    EXPECT_EQ(attributes[1].name, "status");
}

}  // namespace
}  // namespace VynPacketTracer
