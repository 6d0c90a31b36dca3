#include "cli/Capture.h"

#include <pcap/pcap.h>
#include <poll.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "cli/UsageError.h"

namespace Cli {
namespace {

std::FILE* openFile(std::string const& path, std::string const& name) {
    std::FILE* const file = path == "-" ? stdin : std::fopen(path.c_str(), "rbe");
    struct stat facts {};
    bool const isDirectory =
        file != nullptr && fstat(fileno(file), &facts) == 0 && S_ISDIR(facts.st_mode);
    if (file == nullptr || isDirectory) {
        throw UsageError(name + ": " + std::strerror(isDirectory ? EISDIR : errno));
    }
    return file;
}

// The library's messages may have several lines; the first one is enough.
std::string firstLine(char const* message) {
    std::string const text(message);
    return text.substr(0, text.find('\n'));
}

}  // namespace

struct Capture::Record {
    pcap_pkthdr const* header;
    unsigned char const* bytes;
};

void Capture::Close::operator()(pcap* capture) const {
    pcap_close(capture);
}

Capture::Capture(std::string const& path, std::optional<std::uint64_t> only)
    : name_(path == "-" ? "standard input" : path), only_(only), file_(openFile(path, name_)) {
    struct stat facts {};
    if (fstat(fileno(file_), &facts) == 0 && S_ISREG(facts.st_mode)) {
        size_ = static_cast<double>(facts.st_size);
    } else {
        // Unbuffered, so that bytes left unread in a pipe stay visible to ready().
        std::setvbuf(file_, nullptr, _IONBF, 0);
    }
    std::array<char, PCAP_ERRBUF_SIZE> problem{};
    capture_.reset(pcap_fopen_offline(file_, problem.data()));
    if (!capture_) {
        if (file_ != stdin) {
            std::fclose(file_);
        }
        throw UsageError(name_ +
                         ": expected a pcap or pcapng capture: " + firstLine(problem.data()));
    }
    if (int const type = pcap_datalink(capture_.get()); type != DLT_EN10MB) {
        char const* const typeName = pcap_datalink_val_to_name(type);
        throw UsageError(name_ + ": expected Ethernet frames, got link type " +
                         (typeName != nullptr ? typeName : std::to_string(type)));
    }
}

Capture::~Capture() = default;

std::optional<Packet> Capture::next() {
    while (!ended_) {
        auto const record = read();
        if (!record) {
            return end();
        }
        if (!only_ || frames_ == *only_) {
            ended_ = only_.has_value();
            return packetOf(*record);
        }
    }
    return std::nullopt;
}

std::string Capture::frameName() const {
    return name_ + ": frame " + std::to_string(frames_);
}

std::optional<Capture::Record> Capture::read() {
    pcap_pkthdr* header = nullptr;
    unsigned char const* bytes = nullptr;
    int const status = pcap_next_ex(capture_.get(), &header, &bytes);
    if (status == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    ++frames_;
    if (status != 1) {
        ended_ = true;
        throw UsageError(frameName() + ": " + firstLine(pcap_geterr(capture_.get())));
    }
    return Record{header, bytes};
}

std::optional<Packet> Capture::end() {
    ended_ = true;
    if (frames_ == 0) {
        throw UsageError(name_ + ": expected at least one frame, got none");
    }
    if (only_) {
        throw UsageError(name_ + ": expected a frame " + std::to_string(*only_) +
                         ", got the end after frame " + std::to_string(frames_));
    }
    return std::nullopt;
}

Packet Capture::packetOf(Record const& record) const {
    if (record.header->caplen < record.header->len) {
        throw UsageError(frameName() + ": expected a whole frame, got " +
                         std::to_string(record.header->caplen) + " of its " +
                         std::to_string(record.header->len) + " bytes");
    }
    Packet packet = packetOfFrame(std::span(record.bytes, record.header->caplen));
    packet.number = frames_;
    packet.time = record.header->ts;
    return packet;
}

bool Capture::ready() const {
    if (size_ > 0 || ended_) {
        return true;
    }
    pollfd waiting{.fd = fileno(file_), .events = POLLIN, .revents = 0};
    return ::poll(&waiting, 1, 0) > 0;
}

std::optional<double> Capture::progress() const {
    return size_ > 0 ? std::optional(static_cast<double>(std::ftell(file_)) / size_) : std::nullopt;
}

bool Capture::isSameFile(std::string const& path) const {
    struct stat mine {};
    struct stat other {};
    return fstat(fileno(file_), &mine) == 0 && stat(path.c_str(), &other) == 0 &&
           mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

}  // namespace Cli
