#include "Vanta/Node.h"

#include "Grist/Grist.h"
#include "Vanta/Assert.h"

namespace Vanta {
namespace {

// Plain in any mode: nodes are made and destroyed on the allocator's one thread.
std::uint64_t live = 0;

}  // namespace

bool Node::threadSafeCounts_ = false;

Node::Node() noexcept {
    ++live;
}

Node::~Node() {
    // The reference that destroy() sets, or the birth reference if a constructor threw.
    assertThat(count_ == 1, "count_ == 1");
    --live;
}

void Node::destroy() const noexcept {
    // The node holds a reference to itself while it is being destroyed, so a reference that a
    // destructor takes and drops does not destroy it a second time.
    count_ = 1;
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
