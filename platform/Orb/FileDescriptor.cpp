#include "Orb/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

namespace Orb {

Vanta::Ptr<FileDescriptor> FileDescriptor::FileDescriptorIs(Vanta::Ptr<TaskSchedulerRoot> loop,
                                                            int descriptor, Vanta::String name) {
    return Vanta::makeNode<FileDescriptor>(std::move(loop), descriptor, std::move(name));
}

FileDescriptor::FileDescriptor(Vanta::Ptr<TaskSchedulerRoot> loop, int descriptor,
                               Vanta::String name)
    : loop_(std::move(loop)), descriptor_(descriptor), name_(std::move(name)) {
    // Room for a turn's lists as well, so that a turn allocates nothing.
    std::size_t const descriptors = loop_->descriptors_.size() + 1;
    loop_->readable_.reserve(descriptors);
    loop_->polled_.reserve(descriptors + 1);
    loop_->descriptors_.push_back(this);
}

FileDescriptor::~FileDescriptor() {
    close();
    std::erase(loop_->descriptors_, this);
    // A turn under way may still be about to announce this one.
    std::ranges::replace(loop_->readable_, this, nullptr);
}

void FileDescriptor::nonBlockingIs(bool on) {
    int const flags = ::fcntl(descriptor_, F_GETFL);
    int const wanted = on ? flags | O_NONBLOCK : flags & ~O_NONBLOCK;
    if (flags == -1 || ::fcntl(descriptor_, F_SETFL, wanted) == -1) {
        throw std::system_error(errno, std::generic_category(), "fcntl");
    }
}

void FileDescriptor::close() noexcept {
    if (descriptor_ != -1) {
        ::close(std::exchange(descriptor_, -1));
    }
}

Kel::TypeInfo const& FileDescriptor::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&FileDescriptor::name>(130, "name", "Vanta::String"),
        Kel::attribute<&FileDescriptor::notifyOnReadable>(131, "notifyOnReadable", "bool"),
    };
    static constexpr Kel::TypeInfo info{"FileDescriptor", attributes, {}};
    return info;
}

}  // namespace Orb
