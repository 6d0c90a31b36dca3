#include "PacketTracer/PacketFields.h"

#include <algorithm>
#include <array>

namespace PacketTracer {
namespace {

constexpr std::array ipProtocols{IpProtocol::tcp, IpProtocol::udp, IpProtocol::icmp,
                                 IpProtocol::icmpv6};
constexpr std::array arpOperations{ArpOperation::request, ArpOperation::reply};

template <class Values>
auto valueFromText(Values const& values, std::string_view name) noexcept
    -> std::optional<typename Values::value_type> {
    for (auto const value : values) {
        if (text(value) == name) {
            return value;
        }
    }
    return std::nullopt;
}

std::string valueText(MacAddress const& address) {
    return address.text();
}
std::string valueText(IpAddress const& address) {
    return address.text();
}
std::string valueText(IpProtocol protocol) {
    return std::string(text(protocol));
}
std::string valueText(ArpOperation operation) {
    return std::string(text(operation));
}
std::string valueText(std::uint32_t number) {
    return std::to_string(number);
}

std::string tcpFlagsText(std::uint8_t flags) {
    std::string joined;
    for (TcpFlag::Name const& flag : TcpFlag::names) {
        if ((flags & flag.bit) != 0) {
            joined += joined.empty() ? "" : ",";
            joined += flag.name;
        }
    }
    return joined.empty() ? "none" : joined;
}

class Names {
  public:
    template <class T>
    void add(std::string_view name, std::optional<T> const& value) {
        if (value) {
            add(name, valueText(*value));
        }
    }
    void add(std::string_view name, std::string value) {
        fields_.push_back({name, std::move(value)});
    }

    void addEthernet(PacketFields const& fields) {
        add("eth-dst", fields.ethDst);
        add("eth-src", fields.ethSrc);
        for (VlanTag const& tag : fields.tags) {
            add("vlan", tag.text());
        }
    }

    void addArp(ArpFields const& arp) {
        add("arp-op", arp.operation);
        add("arp-sender-mac", arp.senderMac);
        add("arp-sender-ip", arp.senderIp);
        add("arp-target-mac", arp.targetMac);
        add("arp-target-ip", arp.targetIp);
    }

    void addIp(PacketFields const& fields) {
        add("ip-dst", fields.ipDst);
        add("ip-src", fields.ipSrc);
        add("ttl", fields.ttl);
        add("dscp", fields.dscp);
        if (fields.dontFragment) {
            add("dont-fragment", "true");
        }
        add("proto", fields.protocol);
    }

    void addTransport(PacketFields const& fields) {
        add("sport", fields.srcPort);
        add("dport", fields.dstPort);
        if (fields.tcpFlags) {
            add("tcp-flags", tcpFlagsText(*fields.tcpFlags));
        }
        add("icmp-type", fields.icmpType);
        add("icmp-code", fields.icmpCode);
    }

    void addContent(PacketFields const& fields) {
        if (!fields.payload.empty()) {
            add("payload", Vanta::hexText(fields.payload.view()));
        }
        add("length", fields.length);
    }

    std::vector<NamedField> take() { return std::move(fields_); }

  private:
    std::vector<NamedField> fields_;
};

}  // namespace

std::uint16_t impliedEtherType(PacketFields const& fields) noexcept {
    if (fields.arp) {
        return Net::EtherType::arp;
    }
    if (auto const& address = fields.ipDst ? fields.ipDst : fields.ipSrc) {
        return address->isV6() ? Net::EtherType::ipv6 : Net::EtherType::ipv4;
    }
    return 0;
}

std::string_view text(IpProtocol protocol) noexcept {
    bool const isKnown =
        std::find(ipProtocols.begin(), ipProtocols.end(), protocol) != ipProtocols.end();
    return isKnown ? Net::IpProtocol::text(static_cast<std::uint8_t>(protocol)) : "other";
}

std::optional<IpProtocol> ipProtocolFromText(std::string_view text) noexcept {
    return valueFromText(ipProtocols, text);
}

std::string_view text(ArpOperation operation) noexcept {
    switch (operation) {
        case ArpOperation::request:
            return "request";
        case ArpOperation::reply:
            return "reply";
    }
    return "other";
}

std::optional<ArpOperation> arpOperationFromText(std::string_view text) noexcept {
    return valueFromText(arpOperations, text);
}

std::vector<NamedField> namedFields(PacketFields const& fields) {
    Names names;
    names.addEthernet(fields);
    if (fields.arp) {
        names.addArp(*fields.arp);
    }
    names.addIp(fields);
    names.addTransport(fields);
    names.addContent(fields);
    return names.take();
}

void reflectValue(Kel::AttributeSink& sink, PacketFields const* fields) {
    sink.listStart();
    for (NamedField const& field :
         fields != nullptr ? namedFields(*fields) : std::vector<NamedField>()) {
        sink.listStart();
        sink.text(field.name);
        sink.text(field.value);
        sink.listEnd();
    }
    sink.listEnd();
}

}  // namespace PacketTracer
