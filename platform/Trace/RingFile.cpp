#include "Trace/RingFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Trace::RingFile {
namespace {

struct flock wholeFile(short type) noexcept {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

}  // namespace

Mapping::Mapping(int descriptor, std::string const& path, std::size_t size, Access access)
    : descriptor_(descriptor), process_(::getpid()), size_(size) {
    int const protection = access == Access::write ? PROT_READ | PROT_WRITE : PROT_READ;
    address_ = ::mmap(nullptr, size, protection, MAP_SHARED, descriptor, 0);
    if (address_ == MAP_FAILED) {
        int const error = errno;
        close();
        throw RingError(path + ": cannot be mapped: " + std::strerror(error));
    }
}

Mapping::~Mapping() {
    ::munmap(address_, size_);
    close();
}

void Mapping::close() noexcept {
    if (descriptor_ >= 0) {
        if (process_ == ::getpid()) {
            auto lock = wholeFile(F_UNLCK);  // which the mapping would keep beyond the descriptor
            (void)::fcntl(descriptor_, F_OFD_SETLK, &lock);
        }
        ::close(descriptor_);
        descriptor_ = -1;
    }
}

FormatEntry* Mapping::formats() const noexcept {
    return reinterpret_cast<FormatEntry*>(static_cast<char*>(address_) + sizeof(Header));
}

Record* Mapping::records() const noexcept {
    return reinterpret_cast<Record*>(formats() + header().formatCount);
}

std::byte* Mapping::own(std::size_t ring) const noexcept {
    auto* const first = reinterpret_cast<std::byte*>(records() + header().recordCount);
    return first + ring * sizeOfOwn(header().lineCount);
}

// Locks of the open file rather than of the process: they are not lost when another descriptor of
// the same file is closed, and tell two users within one process apart.
void writerLockIs(int descriptor) noexcept {
    auto lock = wholeFile(F_WRLCK);
    (void)::fcntl(descriptor, F_OFD_SETLK, &lock);
}

bool hasWriterLock(int descriptor) noexcept {
    auto lock = wholeFile(F_RDLCK);
    return ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace Trace::RingFile
