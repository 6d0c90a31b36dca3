#include "simulate/Scenario.h"

#include <algorithm>
#include <cstring>

#include "simulate/Socket.h"

namespace Simulate {
namespace {

std::string hex(Bytes const& bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (auto const byte : bytes) {
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}

// The functions by the names that scenarios have for them.
std::string longName(std::string const& call) {
    static std::map<std::string, std::string> const names{
        {"digestRegister", "pipe_mgr_lrn_digest_notification_register"},
        {"digestDeregister", "pipe_mgr_lrn_digest_notification_deregister"},
        {"notifyAck", "pipe_mgr_flow_lrn_notify_ack"}};
    auto const found = names.find(call);
    return found != names.end() ? found->second : call;
}

// The word behind `mark` in a line; empty if it is not there.
std::string wordBehind(std::string const& line, std::string const& mark) {
    auto const at = line.find(mark);
    if (at == std::string::npos) {
        return "";
    }
    auto const begin = at + mark.size();
    return line.substr(begin, line.find(' ', begin) - begin);
}

char const* entityName(std::uint64_t entity, char const* own) {
    return entity == 0 ? own : entity == 1 ? "none" : "other";
}

}  // namespace

void Scenario::begin(char const* what) {
    text_ += joined("{\"do\":\"", what, "\"");
}

void Scenario::member(char const* name, std::string const& value) {
    text_ += joined(",\"", name, "\":\"", value, "\"");
}

void Scenario::member(char const* name, std::uint64_t value) {
    text_ += joined(",\"", name, "\":", value);
}

void Scenario::flag(char const* name, bool value) {
    text_ += joined(",\"", name, "\":", value);
}

void Scenario::client(Event const& event) {
    member("client", clientName(event.client));
}

void Scenario::end() {
    text_ += "}\n";
}

void Scenario::add(Event const& event, std::vector<std::string> const& log, Wire const& wire,
                   Model const& before) {
    if (!endedBy_.empty()) {
        return;
    }
    calls(log);
    if (event.kind <= Kind::cpuPortDel) {
        forwarding(event);
    } else if (event.kind >= Kind::clientConfig && event.kind <= Kind::clientStatusDel) {
        directory(event);
    } else if (event.kind >= Kind::request && event.kind <= Kind::result) {
        request(event, before);
    } else if (event.kind == Kind::start) {
        begin("start");
        flag("pktTracerSupported", event.flag);
        member("session", std::uint64_t{Model::session});
        member("device", std::uint64_t{Model::device});
        end();
    } else if (event.kind == Kind::stop) {
        begin("stop");
        end();
    } else if (event.kind == Kind::turn) {
        announcements(wire);
        turn();
    } else if (event.kind == Kind::yieldAfter) {
        begin("yieldAfter");
        member("checks", event.a);
        end();
    } else if (event.kind == Kind::room && event.a < DigestSocket::plenty) {
        endedBy_ = "the digest socket is small from here on";
    }
    digests(wire);
}

// Turns between which nothing is told are one line.
void Scenario::turn() {
    if (text_.size() == turnsEnd_) {
        text_.resize(turnsBegin_);
    } else {
        turnsBegin_ = text_.size();
        turns_ = 0;
    }
    begin("turn");
    if (++turns_ > 1) {
        member("times", turns_);
    }
    end();
    turnsEnd_ = text_.size();
}

void Scenario::forwarding(Event const& event) {
    if (event.kind == Kind::port && event.b > 455) {
        endedBy_ = "a port has an index that scenarios do not give";
        return;
    }
    static constexpr char const* names[] = {
        "port",      "portDel",      "portToIntfId", "portToIntfIdDel", "lagToPort", "lagToPortDel",
        "portToLag", "portToLagDel", "vlan",         "vlanDel",         "cpuPort",   "cpuPortDel"};
    begin(names[static_cast<std::size_t>(event.kind)]);
    bool const ofLag = event.kind == Kind::lagToPort || event.kind == Kind::lagToPortDel;
    bool const ofVlan = event.kind == Kind::vlan || event.kind == Kind::vlanDel;
    if (event.kind == Kind::portToIntfId || event.kind == Kind::portToIntfIdDel) {
        member("port", event.a);
    }
    if (ofVlan) {
        member("id", event.a);
    } else if (event.kind != Kind::portToIntfIdDel) {
        member(ofLag ? "lag" : "intf", event.intf.stringValue());
    }
    if (event.kind == Kind::port) {
        member("pipe", event.a);
        member("port", event.b);
    } else if (event.kind == Kind::portToLag) {
        member("lag", event.lag.stringValue());
    } else if (event.kind == Kind::vlan) {
        std::string members;
        for (auto const& intf : event.intfs) {
            members += joined(members.empty() ? "\"" : ",\"", intf, "\"");
        }
        text_ += joined(",\"intf\":[", members, "]");
        flag("internal", event.flag);
    }
    end();
}

void Scenario::directory(Event const& event) {
    if (event.a == 3) {
        endedBy_ = joined("client ", clientName(event.client), " comes back with its objects");
        return;
    }
    bool const isConfig = event.kind == Kind::clientConfig || event.kind == Kind::clientConfigDel;
    bool const isDel = event.kind == Kind::clientConfigDel || event.kind == Kind::clientStatusDel;
    begin(isConfig ? (isDel ? "clientConfigDel" : "clientConfig")
                   : (isDel ? "clientStatusDel" : "clientStatus"));
    client(event);
    if (!isDel) {
        member("entity", entityName(event.a, isConfig ? "config" : "status"));
    }
    end();
}

// Objects that are in no directory are nobody's to see.
void Scenario::request(Event const& event, Model const& before) {
    if (event.kind == Kind::result ? !before.statusIsMounted(event.client)
                                   : !before.configIsMounted(event.client)) {
        return;
    }
    if (event.kind == Kind::requestDelAll) {
        for (auto const& id : before.requestsOf(event.client)) {
            withdraw(id.first, id.second);
        }
    } else if (event.kind == Kind::requestDel) {
        withdraw(clientName(event.client), event.req);
    } else if (event.kind == Kind::requestSet) {
        requestSet(event);
    } else if (event.kind == Kind::result) {
        begin("result");
        client(event);
        member("req", event.req);
        end();
    } else {
        begin("request");
        client(event);
        member("req", event.req);
        member("intf", event.intf.stringValue());
        member("etherType", event.a);
        flag("mpls", (event.b & 1) != 0);
        flag("gre", (event.b & 2) != 0);
        flag("valid", event.flag);
        member("raw", hex(event.raw));
        end();
    }
}

void Scenario::requestSet(Event const& event) {
    static constexpr char const* names[] = {"valid", "etherType", "mpls", "gre", "intf", "raw"};
    begin("requestSet");
    client(event);
    member("req", event.req);
    member("attr", std::string(names[event.a]));
    if (event.a == RequestAttribute::etherType) {
        member("value", event.b);
    } else if (event.a == RequestAttribute::intf) {
        member("value", event.intf.stringValue());
    } else if (event.a == RequestAttribute::raw) {
        member("value", hex(event.raw));
    } else {
        flag("value", event.b != 0);
    }
    end();
}

void Scenario::withdraw(std::string const& client, std::uint32_t req) {
    begin("requestDel");
    member("client", client);
    member("req", req);
    end();
}

// What the scripted chip is to answer during the event.
void Scenario::calls(std::vector<std::string> const& log) {
    std::map<std::string, std::vector<long>> results;
    std::map<std::string, std::string> counts;
    for (auto const& line : log) {
        if (!line.starts_with("sdk ")) {
            continue;
        }
        auto const call = wordBehind(line, "sdk ");
        results[call].push_back(std::stol(wordBehind(line, " -> ")));
        if (call == "getPktCounters") {
            auto& values = counts[wordBehind(line, " pipe ")];
            values += (values.empty() ? "" : ",") + wordBehind(line, " count ");
        }
    }
    for (auto const& [pipe, values] : counts) {
        text_ += joined("{\"do\":\"counter\",\"pipe\":", pipe, ",\"values\":[", values, "]}\n");
    }
    for (auto const& [call, returned] : results) {
        failures(call, returned);
    }
}

void Scenario::failures(std::string const& call, std::vector<long> const& results) {
    auto const isFailure = [](long rc) { return rc != 0; };
    auto const first = std::ranges::find_if(results, isFailure);
    if (first == results.end()) {
        return;
    }
    auto const last = std::find_if(first, results.end(), [&](long rc) { return rc != *first; });
    if (std::any_of(last, results.end(), isFailure)) {
        endedBy_ = joined(call, " fails and succeeds by turns");
    }
    text_ += joined("{\"do\":\"sdkReturn\",\"call\":\"", longName(call), "\",\"rc\":", *first,
                    ",\"times\":", last - first, ",\"after\":", first - results.begin(), "}\n");
}

void Scenario::announcements(Wire const& wire) {
    for (auto const& announcement : wire.announcements) {
        begin(announcement.present ? "phase0" : "phase0Del");
        member("intf", announcement.intf.stringValue());
        if (announcement.present) {
            member("status", announcement.status);
            member("data", hex(announcement.data));
        }
        end();
    }
}

void Scenario::digests(Wire const& wire) {
    for (auto const& message : wire.messages) {
        std::string entries;
        for (std::size_t at = 8; at + 9 <= message.bytes.size(); at += 9) {
            auto const word = [&](std::size_t offset) {
                std::uint16_t value = 0;
                std::memcpy(&value, &message.bytes[at + offset], sizeof value);
                return value;
            };
            entries += joined(entries.empty() ? "" : ",", "{\"pktId\":", word(0),
                              ",\"copyToCpu\":", unsigned{message.bytes[at + 2]},
                              ",\"l2Domain\":", word(3), ",\"egrPort\":", word(5),
                              ",\"routed\":", unsigned{message.bytes[at + 7]},
                              ",\"dropCtl\":", unsigned{message.bytes[at + 8]}, "}");
        }
        text_ += joined("{\"do\":\"digest\",\"entries\":[", entries, "]}\n");
    }
}

}  // namespace Simulate
