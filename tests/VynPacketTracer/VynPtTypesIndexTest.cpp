// The indexes against the walks that they stand for, on random histories.
#include "VynPacketTracer/VynPtTypesIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Grist/Grist.h"
#include "VynPacketTracer/VynPtTypes.h"

namespace {

using PacketTracer::RequestId;
using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenStatus;
using VynPacketTracer::PktGenStatusData;

RequestId req(unsigned number) {
    return {"noc", number};
}

struct Collections {
    Vanta::Ptr<PktGenConfig> config = PktGenConfig::PktGenConfigIs();
    Vanta::Ptr<PktGenStatus> status = PktGenStatus::PktGenStatusIs();

    void cfgIs(unsigned number) { config->cfgIs(req(number), Vanta::Bytes{1}, {}, {}); }
    std::string pick() const;
};

std::string name(Vanta::Ptr<VynPacketTracer::PktGenCfgData> const& job) {
    return job ? std::to_string(job->req().number()) : "none";
}

std::string Collections::pick() const {
    return name(config->firstPending(*status));
}

// The first job without an answer, entry by entry.
std::string literalPick(Collections const& all) {
    for (auto const& entry : all.config->cfg()) {
        if (!all.status->statusHas(entry.key)) {
            return name(entry.value);
        }
    }
    return "none";
}

void changeJobsAtRandom(Collections& all, std::mt19937& random) {
    unsigned const number = random() % 200;
    switch (random() % 6) {
        case 0:
        case 1:
            all.cfgIs(number);
            break;
        case 2:
            all.config->cfgDel(req(number));
            break;
        case 3:
        case 4:
            all.status->statusIs(req(number));
            break;
        default:
            all.status->statusDel(req(number));
            break;
    }
}

TEST(PendingJobs, PickWhatTheWalkOverAllJobsFinds) {
    std::mt19937 random(20260101);
    Collections all;
    for (int step = 0; step < 100000; ++step) {
        changeJobsAtRandom(all, random);
        ASSERT_EQ(all.pick(), literalPick(all)) << "step " << step;
    }
}

// Two collections of jobs and two of answers: now these are asked for together, now those, and now
// and then one of them goes.
TEST(PendingJobs, PickWhatTheWalkFindsWhoeverTheyFollowedBefore) {
    std::mt19937 random(20260102);
    std::array<Collections, 2> pairs;
    Collections asked = pairs[0];
    for (int step = 0; step < 100000; ++step) {
        if (random() % 16 == 0) {
            asked = {pairs[random() % 2].config, pairs[random() % 2].status};
        }
        if (random() % 2000 == 0) {
            Collections& renewed = pairs[random() % 2];
            asked = {};
            if (random() % 2 == 0) {
                renewed.config = PktGenConfig::PktGenConfigIs();
            } else {
                renewed.status = PktGenStatus::PktGenStatusIs();
            }
            asked = pairs[random() % 2];
        }
        Collections changed{pairs[random() % 2].config, pairs[random() % 2].status};
        changeJobsAtRandom(changed, random);
        ASSERT_EQ(asked.pick(), literalPick(asked)) << "step " << step;
    }
}

TEST(PendingJobs, PickTheOldPlaceOfAJobThatBecamePendingAgain) {
    Collections all;
    for (unsigned number : {1, 2, 3}) {
        all.cfgIs(number);
        all.status->statusIs(req(number));
    }
    all.cfgIs(4);
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "4");
    all.status->statusDel(req(2));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "2");
}

TEST(PendingJobs, FollowTheAnswersThatTheyAreAskedFor) {
    Collections all;
    all.cfgIs(1);
    all.cfgIs(2);
    all.status->statusIs(req(1));
    auto const other = PktGenStatus::PktGenStatusIs();
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "2");
    EXPECT_EQ(name(all.config->firstPending(*other)), "1");
    all.status->statusIs(req(2));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "none");
}

TEST(PendingJobs, OfSeveralCollectionsMayAskForTheSameAnswers) {
    Collections all;
    auto const others = PktGenConfig::PktGenConfigIs();
    for (unsigned number : {1, 2}) {
        all.cfgIs(number);
        others->cfgIs(req(number), Vanta::Bytes{1}, {}, {});
    }
    for (unsigned number : {1, 2}) {
        std::string const first = std::to_string(number);
        EXPECT_EQ(name(all.config->firstPending(*all.status)), first);
        EXPECT_EQ(name(others->firstPending(*all.status)), first);
        all.status->statusIs(req(number));
    }
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "none");
    EXPECT_EQ(name(others->firstPending(*all.status)), "none");
}

TEST(PendingJobs, DoNotCountAnswersThatTheyFollowNoMore) {
    Collections all;
    all.cfgIs(1);
    all.cfgIs(2);
    auto const other = PktGenStatus::PktGenStatusIs();
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "1");
    EXPECT_EQ(name(all.config->firstPending(*other)), "1");
    all.status->statusIs(req(1));
    EXPECT_EQ(name(all.config->firstPending(*other)), "1");
}

TEST(PendingJobs, AreNotTouchedByAnswersThatFollowedJobsWhichAreGone) {
    Collections all;
    all.cfgIs(1);
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "1");
    auto const answers = PktGenStatus::PktGenStatusIs();
    all.config = nullptr;  // so that the new ones may lie where the old ones were
    all.config = PktGenConfig::PktGenConfigIs();
    all.cfgIs(1);
    EXPECT_EQ(name(all.config->firstPending(*answers)), "1");
    all.status->statusIs(req(1));
    EXPECT_EQ(name(all.config->firstPending(*answers)), "1");
}

TEST(PendingJobs, ThatAreGoneAreNotToldOfAnswers) {
    Collections all;
    all.cfgIs(1);
    all.status->statusIs(req(1));
    EXPECT_EQ(all.pick(), "none");
    all.config = nullptr;
    // Their memory belongs to somebody else now.
    std::array<void*, 4> blocks;
    for (void*& block : blocks) {
        block = Grist::allocate(sizeof(PktGenConfig));
        std::memset(block, 0xa5, sizeof(PktGenConfig));
    }
    all.status->statusDel(req(1));
    EXPECT_FALSE(all.status->statusHas(req(1)));
    for (void* const block : blocks) {
        Grist::deallocate(block, sizeof(PktGenConfig));
    }
}

TEST(PendingJobs, FollowNewAnswersAlsoInPlaceOfOldOnes) {
    Collections all;
    all.cfgIs(1);
    all.cfgIs(2);
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "1");
    all.status = nullptr;  // so that the new ones may lie where the old ones were
    all.status = PktGenStatus::PktGenStatusIs();
    all.status->statusIs(req(1));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "2");
}

TEST(PendingJobs, AreNotTouchedByAJobThatHadAnAnswerFromTheBeginning) {
    Collections all;
    all.cfgIs(1);
    all.cfgIs(2);
    all.status->statusIs(req(1));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "2");
    all.config->cfgDel(req(1));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "2");
}

TEST(PendingJobs, EndBeforeAJobThatHasAnAnswerNow) {
    Collections all;
    for (unsigned number : {1, 2, 3}) {
        all.cfgIs(number);
    }
    auto const other = PktGenStatus::PktGenStatusIs();
    other->statusIs(req(3));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "1");
    EXPECT_EQ(name(all.config->firstPending(*other)), "1");
    other->statusIs(req(1));
    other->statusIs(req(2));
    EXPECT_EQ(name(all.config->firstPending(*other)), "none");
}

TEST(PendingJobs, SurviveTheirAnswers) {
    Collections all;
    all.cfgIs(1);
    all.status->statusIs(req(1));
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "none");
    all.status = PktGenStatus::PktGenStatusIs();
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "1");
}

// The length of the longest road from a link down to one of its children's children.
std::size_t depth(VynPacketTracer::PendingLink const& link) {
    std::size_t deepest = 0;
    std::vector<std::pair<VynPacketTracer::PendingLink const*, std::size_t>> open{{&link, 1}};
    while (!open.empty()) {
        auto const [current, at] = open.back();
        open.pop_back();
        deepest = std::max(deepest, at);
        for (auto const* child : {current->left, current->right}) {
            if (child != nullptr) {
                open.emplace_back(child, at + 1);
            }
        }
    }
    return deepest;
}
// The same from the top of the tree that pending jobs stand in.
std::size_t treeDepth(std::vector<VynPacketTracer::PendingLink> const& links) {
    std::set<VynPacketTracer::PendingLink const*> below;
    for (auto const& link : links) {
        below.insert({link.left, link.right});
    }
    for (auto const& link : links) {
        if (link.where == VynPacketTracer::PendingLink::Where::returned && !below.contains(&link)) {
            return depth(link);
        }
    }
    return 0;
}

TEST(PendingJobs, ThatReturnStandInATreeThatIsNotDeep) {
    constexpr std::size_t deepest = 60;  // what is balanced by chance is half as deep
    std::vector<VynPacketTracer::PendingLink> links(4096);
    VynPacketTracer::PendingJobs pending;
    for (std::size_t i = 0; i < links.size(); ++i) {
        links[i].order = i + 1;
        pending.returnedIs(links[i]);
    }
    EXPECT_LT(treeDepth(links), deepest);
    for (std::size_t i = 0; i < links.size(); i += 4) {
        for (std::size_t gone : {i, i + 1, i + 2}) {
            pending.del(links[gone]);
            links[gone].left = links[gone].right = nullptr;
        }
    }
    EXPECT_LT(treeDepth(links), deepest);
    EXPECT_EQ(pending.first(), &links[3]);
}

TEST(PendingJobs, AreKnownBeforeTheChangeIsPublished) {
    struct Observer {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef) {
            seen.push_back(name(all.config->firstPending(*all.status)));
        }
        Collections& all;
        std::vector<std::string> seen = {};
        Vanta::Subscriber config = {};
        Vanta::Subscriber status = {};
    };
    Collections all;
    Observer observer{all};
    observer.config.subscribe<&Observer::dispatch>(all.config->publisher(), &observer);
    observer.status.subscribe<&Observer::dispatch>(all.status->publisher(), &observer);
    EXPECT_EQ(name(all.config->firstPending(*all.status)), "none");
    all.cfgIs(7);
    all.status->statusIs(req(7));
    all.status->statusDel(req(7));
    all.config->cfgDel(req(7));
    EXPECT_EQ(observer.seen, (std::vector<std::string>{"7", "none", "7", "none"}));
}

// ---- Packet ids

using Visit = std::function<void(Collections&, RequestId const&)>;
using Visited = std::vector<unsigned>;

Visited literalWalk(Collections& all, std::uint16_t pktId, Visit const& visit) {
    Visited visited;
    for (auto const& entry : all.status->status()) {
        if (entry.value->pktId() == pktId) {
            RequestId const id = entry.key;
            visited.push_back(id.number());
            visit(all, id);
        }
    }
    return visited;
}

Visited indexWalk(Collections& all, std::uint16_t pktId, Visit const& visit) {
    Visited visited;
    PktGenStatus::PktIdWalk walk(*all.status, pktId);
    while (auto const entry = walk.next()) {
        RequestId const id = entry->req();
        visited.push_back(id.number());
        visit(all, id);
    }
    return visited;
}

void changeAtRandom(Collections& all, std::minstd_rand& random) {
    unsigned const number = random() % 60;
    auto const pktId = static_cast<std::uint16_t>(random() % 5);
    switch (random() % 4) {
        case 0:
            all.status->statusDel(req(number));
            break;
        case 1:
            all.status->statusIs(req(number))->pktIdIs(pktId);
            break;
        case 2:
            all.status->statusDel(req(number));
            all.status->statusIs(req(number))->pktIdIs(pktId);
            break;
        default:
            if (all.status->statusHas(req(number))) {
                all.status->statusIs(req(number))->pktIdIs(pktId);
            }
            break;
    }
}

// Both walks go over twins with the same history, and the same happens at each visit.
TEST(PktIdIndex, MeetsWhatTheWalkOverAllEntriesMeetsAlsoWhileTheyChange) {
    std::mt19937 random(7);
    Collections literal;
    Collections indexed;
    for (unsigned step = 0; step < 100000; ++step) {
        auto const changes = random();
        for (Collections* all : {&literal, &indexed}) {
            std::minstd_rand same(changes);
            changeAtRandom(*all, same);
            changeAtRandom(*all, same);
        }
        auto const pktId = static_cast<std::uint16_t>(random() % 5);
        unsigned visits = 0;
        Visit const visit = [&](Collections& all, RequestId const&) {
            std::minstd_rand same(changes + visits);
            if (++visits < 8 && same() % 2 == 0) {
                changeAtRandom(all, same);
            }
        };
        Visited const expected = literalWalk(literal, pktId, visit);
        visits = 0;
        ASSERT_EQ(indexWalk(indexed, pktId, visit), expected) << "step " << step;
    }
}

TEST(PktIdIndex, MeetsAnEntryThatAppearsDuringTheWalk) {
    Collections all;
    all.status->statusIs(req(1))->pktIdIs(9);
    Visit const add = [](Collections& now, RequestId const&) {
        now.status->statusIs(req(2))->pktIdIs(9);
    };
    EXPECT_EQ(indexWalk(all, 9, add), (Visited{1, 2}));
}

TEST(PktIdIndex, PassesAnEntryThatVanishesDuringTheWalk) {
    Collections all;
    all.status->statusIs(req(1))->pktIdIs(9);
    all.status->statusIs(req(2))->pktIdIs(9);
    all.status->statusIs(req(3))->pktIdIs(9);
    Visit const remove = [](Collections& now, RequestId const&) { now.status->statusDel(req(2)); };
    EXPECT_EQ(indexWalk(all, 9, remove), (Visited{1, 3}));
}

TEST(PktIdIndex, GoesOnBehindAnEntryThatGetsAnotherIdOrGoesWhileItIsVisited) {
    Visit const away = [](Collections& now, RequestId const& visited) {
        now.status->statusIs(visited)->pktIdIs(8);
    };
    Visit const remove = [](Collections& now, RequestId const& visited) {
        now.status->statusDel(visited);
    };
    for (auto const& visit : {away, remove}) {
        Collections all;
        for (unsigned number : {1, 2, 3}) {
            all.status->statusIs(req(number))->pktIdIs(9);
        }
        EXPECT_EQ(indexWalk(all, 9, visit), (Visited{1, 2, 3}));
    }
}

TEST(PktIdIndex, GoesOnBehindALaterEntryThatGoesWhileItIsVisited) {
    Collections all;
    for (unsigned number : {1, 2, 3}) {
        all.status->statusIs(req(number))->pktIdIs(9);
    }
    Visit const removeSecond = [](Collections& now, RequestId const& visited) {
        if (visited == req(2)) {
            now.status->statusDel(visited);
        }
    };
    EXPECT_EQ(indexWalk(all, 9, removeSecond), (Visited{1, 2, 3}));
}

TEST(PktIdIndex, PassesAnEntryThatGetsTheIdBetweenTheOnesThatWereVisited) {
    Collections all;
    all.status->statusIs(req(1))->pktIdIs(9);
    all.status->statusIs(req(2))->pktIdIs(8);
    all.status->statusIs(req(3))->pktIdIs(9);
    Visit const change = [](Collections& now, RequestId const& visited) {
        if (visited == req(3)) {
            now.status->statusIs(req(2))->pktIdIs(9);
            now.status->statusIs(req(3))->pktIdIs(8);
        }
    };
    EXPECT_EQ(indexWalk(all, 9, change), (Visited{1, 3}));
}

TEST(PktIdIndex, KnowsAnIdBeforeItIsPublished) {
    struct Observer {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef) {
            found = PktGenStatus::PktIdWalk(*status, 9).next() != nullptr;
        }
        Vanta::Ptr<PktGenStatus> status;
        bool found = false;
        Vanta::Subscriber subscriber = {};
    };
    Observer observer{PktGenStatus::PktGenStatusIs()};
    auto const entry = observer.status->statusIs(req(1));
    observer.subscriber.subscribe<&Observer::dispatch>(entry->publisher(), &observer);
    entry->pktIdIs(9);
    EXPECT_TRUE(observer.found);
}

TEST(PktIdIndex, KeepsTheOrderOfTheCollectionWhenAnOldEntryGetsTheId) {
    Collections all;
    for (unsigned number : {1, 2, 3}) {
        all.status->statusIs(req(number))->pktIdIs(static_cast<std::uint16_t>(number));
    }
    all.status->statusIs(req(3))->pktIdIs(9);
    all.status->statusIs(req(1))->pktIdIs(9);
    all.status->statusIs(req(2))->pktIdIs(9);
    EXPECT_EQ(indexWalk(all, 9, [](Collections&, RequestId const&) {}), (Visited{1, 2, 3}));
}

TEST(PktIdIndex, GivesItsTableBack) {
    PktGenStatus::PktGenStatusIs()->statusIs(req(1));
    auto const before = Grist::liveBlocks();
    PktGenStatus::PktGenStatusIs()->statusIs(req(1));
    EXPECT_EQ(Grist::liveBlocks(), before);
}

TEST(PktIdIndex, KnowsFreshEntriesUnderZero) {
    Collections all;
    all.status->statusIs(req(1));
    EXPECT_EQ(indexWalk(all, 0, [](Collections&, RequestId const&) {}), (Visited{1}));
}

}  // namespace
