#include "simulate/Logbook.h"

#include "Trace/Trace.h"

namespace Simulate {

using PacketTracer::ClientStatus;
using PacketTracer::RequestId;
using PacketTracer::Result;
using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenStatus;
using VynPacketTracer::PktGenStatusData;

namespace {

std::string valueOf(PktGenStatusData const& status, Vanta::AttributeNumber attribute) {
    switch (static_cast<PktGenStatusData::Attribute>(attribute)) {
        case PktGenStatusData::pktIdAttribute:
            return joined("pktId ", status.pktId());
        case PktGenStatusData::readyAttribute:
            return joined("ready ", status.ready());
        case PktGenStatusData::egrPortInfoAttribute:
            return joined("egrPortInfo ", unsigned{status.egrPortInfo().pipe()}, ":",
                          status.egrPortInfo().port().value());
        case PktGenStatusData::egrL2DomainAttribute:
            return joined("egrL2Domain ", status.egrL2Domain());
        case PktGenStatusData::copyToCpuAttribute:
            return joined("copyToCpu ", status.copyToCpu());
        case PktGenStatusData::routedAttribute:
            return joined("routed ", status.routed());
        case PktGenStatusData::droppedAttribute:
            return joined("dropped ", status.dropped());
        case PktGenStatusData::reqAttribute:
            break;
    }
    return "an attribute that never changes";
}

std::string egressOf(Result const& result) {
    std::string text;
    for (auto const& entry : result.egressIntf()) {
        text += joined(" ", entry.key.physicalIntf(), ",", entry.key.logicalIntf());
    }
    return text;
}

std::string valueOf(Result const& result, Vanta::AttributeNumber attribute) {
    if (attribute == Result::stateAttribute) {
        return joined("state ", static_cast<unsigned>(result.state()));
    }
    return attribute == Result::validAttribute ? joined("valid ", result.valid())
                                               : egressOf(result);
}

constexpr Vanta::AttributeNumber statusAttributes[] = {
    PktGenStatusData::pktIdAttribute,       PktGenStatusData::readyAttribute,
    PktGenStatusData::egrPortInfoAttribute, PktGenStatusData::egrL2DomainAttribute,
    PktGenStatusData::copyToCpuAttribute,   PktGenStatusData::routedAttribute,
    PktGenStatusData::droppedAttribute};
constexpr Vanta::AttributeNumber resultAttributes[] = {
    Result::stateAttribute, Result::validAttribute, Result::egressIntfAttribute};

template <class Record>
auto valuesOf(Record const& record, auto const& attributes) {
    std::map<Vanta::AttributeNumber, std::string> values;
    for (auto const attribute : attributes) {
        values[attribute] = valueOf(record, attribute);
    }
    return values;
}

}  // namespace

std::string line(RequestId const& id) {
    return joined(id.clientName().view(), "/", id.number());
}

void Logbook::traced(std::string_view handle, unsigned level, std::string_view text) {
    note("trace ", handle, " ", level, " ", text);
    if (silence_) {
        breachIs({"silence", joined("there is no tracer, but ", handle, " was called: ", text)});
    }
}

namespace {

std::string sizeAndDigest(std::span<std::uint8_t const> bytes) {
    return joined(bytes.size(), ":", digestOf(bytes));
}

std::uint64_t sizeAndDigest(std::uint64_t number) {
    return number;
}

}  // namespace

// If the function does not set the count, it is the value that the caller had.
void Logbook::call(SdkSeam::SdkCall const& call) {
    std::string line = joined("sdk ", sdkFunctionName(call.function));
    eachArgument(call, [&line](std::string_view name, auto value) {
        line += joined(" ", name, " ", sizeAndDigest(value));
    });
    bool const counts = call.function == SdkSeam::SdkFunction::getPktCounters;
    Wire::Answer const answer{call.rc, counts ? call.count : 0, call.function, call.pipe};
    note(line, " -> ", answer.rc, " count ", answer.count);
    wire_.answers.push_back(answer);
}

void Logbook::breachIs(Breach breach) {
    if (!breach_) {
        breach_ = std::move(breach);
    }
}

void Logbook::published(Vanta::Change const& change) {
    Node const* const owner = change.publisher.owner();
    if (auto const* status = dynamic_cast<PktGenStatusData const*>(owner)) {
        statusPublished(*status, change.attribute);
    } else if (auto const* result = dynamic_cast<Result const*>(owner)) {
        resultPublished(*result, change.attribute, change.key);
    } else if (auto const* answers = dynamic_cast<PktGenStatus const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        presence(owner, "status", id, answers->status(id).get());
    } else if (auto const* jobs = dynamic_cast<PktGenConfig const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        presence(owner, "cfg", id, jobs->cfg(id).get());
    } else if (auto const* client = dynamic_cast<ClientStatus const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        presence(owner, "result", id, client->result(id).get());
    }
}

// The copy of a new entry starts from the defaults of its type, not from the values that the entry
// has when it is first published.
void Logbook::presence(Node const* collection, std::string_view what, RequestId const& id,
                       Node const* entry) {
    note(what, entry != nullptr ? " add " : " del ", line(id));
    auto& there = present_[collection];
    bool const real = entry != nullptr ? there.insert(id).second : there.erase(id) > 0;
    if (!real) {
        breachIs({"published", joined(what, " ", line(id), " was published without a change")});
    }
    if (auto const* status = dynamic_cast<PktGenStatusData const*>(entry)) {
        values_[status] = {{PktGenStatusData::pktIdAttribute, "pktId 0"},
                           {PktGenStatusData::readyAttribute, "ready false"},
                           {PktGenStatusData::egrPortInfoAttribute, "egrPortInfo 0:456"},
                           {PktGenStatusData::egrL2DomainAttribute, "egrL2Domain 0"},
                           {PktGenStatusData::copyToCpuAttribute, "copyToCpu false"},
                           {PktGenStatusData::routedAttribute, "routed false"},
                           {PktGenStatusData::droppedAttribute, "dropped false"}};
    } else if (auto const* result = dynamic_cast<Result const*>(entry)) {
        addedResults_.insert(id);
        values_[result] = {{Result::stateAttribute, "state 0"},
                           {Result::validAttribute, "valid false"},
                           {Result::egressIntfAttribute, ""}};
    }
}

void Logbook::value(Node const* record, Vanta::AttributeNumber attribute, std::string value,
                    std::string_view noted) {
    note(noted);
    auto& known = values_[record][attribute];
    if (known == value) {
        breachIs({"published", joined(noted, " was published without a change")});
    }
    known = std::move(value);
}

void Logbook::statusPublished(PktGenStatusData const& status, Vanta::AttributeNumber attribute) {
    auto const now = valueOf(status, attribute);
    value(&status, attribute, now, joined("status ", line(status.req()), " ", now));
}

void Logbook::resultPublished(Result const& result, Vanta::AttributeNumber attribute,
                              Vanta::ValueRef key) {
    auto const now = valueOf(result, attribute);
    if (attribute != Result::egressIntfAttribute) {
        value(&result, attribute, now, joined("result ", line(result.id()), " ", now));
        return;
    }
    auto const& entry = key.get<PacketTracer::ResultEntry>();
    value(&result, attribute, now,
          joined("result ", line(result.id()), " egressIntf ", entry.physicalIntf(), ",",
                 entry.logicalIntf()));
}

std::optional<Breach> Logbook::unpublished(PktGenConfig const* jobs, PktGenStatus const* answers,
                                           std::vector<ClientStatus const*> const& results) const {
    auto const known = [this](Node const* collection) {
        auto const found = present_.find(collection);
        return found != present_.end() ? found->second : std::set<RequestId>();
    };
    auto const differs = [&](auto const& collection, Node const* owner) {
        std::set<RequestId> there;
        for (auto const& entry : collection) {
            there.insert(entry.key);
        }
        return there != known(owner);
    };
    auto const records = [this](auto const& collection, auto const& attributes) {
        for (auto const& entry : collection) {
            auto const found = values_.find(entry.value.get());
            if (found == values_.end() || found->second != valuesOf(*entry.value, attributes)) {
                return line(entry.key);
            }
        }
        return std::string();
    };
    if (jobs != nullptr && differs(jobs->cfg(), jobs)) {
        return Breach{"published", "a job came or went unpublished"};
    }
    if (answers != nullptr) {
        if (differs(answers->status(), answers)) {
            return Breach{"published", "an answer came or went unpublished"};
        }
        if (auto const id = records(answers->status(), statusAttributes); !id.empty()) {
            return Breach{"published", "the answer " + id + " changed unpublished"};
        }
    }
    for (auto const* status : results) {
        if (differs(status->result(), status)) {
            return Breach{"published", "a result came or went unpublished"};
        }
        if (auto const id = records(status->result(), resultAttributes); !id.empty()) {
            return Breach{"published", "the result " + id + " changed unpublished"};
        }
    }
    return std::nullopt;
}

}  // namespace Simulate
