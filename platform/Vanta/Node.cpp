#include "Vanta/Node.h"

#include "Grist/Grist.h"
#include "Vanta/Assert.h"

namespace Vanta {
namespace {

// While a node is being destroyed its count starts here, so that a reference which is taken and
// dropped by a destructor does not destroy the node a second time.
constexpr std::uint32_t dying = 1U << 31;
constexpr std::uint32_t born = 1;

std::uint64_t live = 0;

void liveCountAdd(bool threadSafe, std::uint64_t difference) noexcept {
    if (threadSafe) {
        std::atomic_ref(live).fetch_add(difference, std::memory_order_relaxed);
    } else {
        live += difference;
    }
}

}  // namespace

bool Node::threadSafeCounts_ = false;

Node::Node() noexcept {
    liveCountAdd(threadSafeCounts_, 1);
}

Node::~Node() {
    // A constructor that threw leaves the birth reference; a last release leaves none.
    assertThat(count_ == dying || count_ == born, "count_ == dying || count_ == born");
    liveCountAdd(threadSafeCounts_, static_cast<std::uint64_t>(-1));
}

void Node::destroy() const noexcept {
    count_ = dying;
    delete this;
}

void Node::threadSafeCountsIs(bool on) noexcept {
    threadSafeCounts_ = threadSafeCounts_ || on;
}

std::uint64_t Node::liveCount() noexcept {
    return live;
}

void* Node::operator new(std::size_t size) {
    return Grist::allocate(size);
}

void Node::operator delete(void* block, std::size_t size) noexcept {
    Grist::deallocate(block, size);
}

}  // namespace Vanta
