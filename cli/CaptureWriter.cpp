#include "cli/CaptureWriter.h"

#include <pcap/pcap.h>

#include <cstdio>
#include <utility>

#include "PacketTracer/PacketSize.h"
#include "cli/Packet.h"
#include "cli/UsageError.h"

namespace Cli {

void CaptureWriter::Close::operator()(pcap* capture) const {
    pcap_close(capture);
}
void CaptureWriter::Close::operator()(pcap_dumper* dumper) const {
    pcap_dump_close(dumper);
}

CaptureWriter::CaptureWriter(std::string path)
    : path_(std::move(path)), format_(pcap_open_dead(DLT_EN10MB, PacketTracer::maximumFrameSize)) {
    dumper_.reset(pcap_dump_open(format_.get(), path_.c_str()));
    if (!dumper_) {
        throw UsageError(pcap_geterr(format_.get()));
    }
}

CaptureWriter::~CaptureWriter() = default;

void CaptureWriter::write(std::span<std::uint8_t const> frame, timeval const& time) {
    pcap_pkthdr header{};
    header.ts = time;
    header.caplen = static_cast<bpf_u_int32>(frame.size());
    header.len = header.caplen;
    pcap_dump(reinterpret_cast<unsigned char*>(dumper_.get()), &header, frame.data());
}

void CaptureWriter::flush() {
    bool const failed =
        pcap_dump_flush(dumper_.get()) != 0 || std::ferror(pcap_dump_file(dumper_.get())) != 0;
    if (failed) {
        throw UsageError(path_ + ": cannot be written");
    }
}

}  // namespace Cli
