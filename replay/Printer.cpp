#include "replay/Printer.h"

#include <unistd.h>

#include "PacketTracer/ClientStatus.h"
#include "Trace/Trace.h"
#include "replay/ClassName.h"
#include "scenario/JsonText.h"

namespace Replay {
namespace {

using PacketTracer::RequestId;
using Scenario::JsonWriter;
using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenStatus;
using VynPacketTracer::PktGenStatusData;

constexpr std::size_t largestBuffer = 1 << 16;

// {"cfg":"add","client":C,"req":R}
void writeChange(JsonWriter& json, std::string_view what, std::string_view change,
                 RequestId const& id) {
    json.member(what, change)
        .member("client", id.clientName().view())
        .member("req", id.number())
        .endObject();
}

void writePresence(JsonWriter& json, std::string_view what, bool present, RequestId const& id) {
    writeChange(json, what, present ? "add" : "del", id);
}

// The beginning of {"status":ATTR,"client":C,"req":R,"value":V}, up to the value.
JsonWriter& writeAttribute(JsonWriter& json, std::string_view what, std::string_view attribute,
                           RequestId const& id) {
    return json.member(what, attribute)
        .member("client", id.clientName().view())
        .member("req", id.number())
        .name("value");
}

void writeStatus(JsonWriter& json, PktGenStatusData const& status,
                 Vanta::AttributeNumber attribute) {
    auto const begin = [&](std::string_view name) -> JsonWriter& {
        return writeAttribute(json, "status", name, status.req());
    };
    switch (static_cast<PktGenStatusData::Attribute>(attribute)) {
        case PktGenStatusData::reqAttribute:
            break;
        case PktGenStatusData::pktIdAttribute:
            begin("pktId").number(status.pktId());
            break;
        case PktGenStatusData::readyAttribute:
            begin("ready").flag(status.ready());
            break;
        case PktGenStatusData::egrPortInfoAttribute:
            begin("egrPortInfo")
                .beginList()
                .number(status.egrPortInfo().pipe())
                .number(status.egrPortInfo().port().value())
                .endList();
            break;
        case PktGenStatusData::egrL2DomainAttribute:
            begin("egrL2Domain").number(status.egrL2Domain());
            break;
        case PktGenStatusData::copyToCpuAttribute:
            begin("copyToCpu").flag(status.copyToCpu());
            break;
        case PktGenStatusData::routedAttribute:
            begin("routed").flag(status.routed());
            break;
        case PktGenStatusData::droppedAttribute:
            begin("dropped").flag(status.dropped());
            break;
    }
    json.endObject();
}

void writeResult(JsonWriter& json, PacketTracer::Result const& result,
                 Vanta::AttributeNumber attribute, Vanta::ValueRef key) {
    auto const begin = [&](std::string_view name) -> JsonWriter& {
        return writeAttribute(json, "result", name, result.id());
    };
    switch (static_cast<PacketTracer::Result::Attribute>(attribute)) {
        case PacketTracer::Result::idAttribute:
            break;
        case PacketTracer::Result::stateAttribute:
            begin("state").number(static_cast<unsigned>(result.state()));
            break;
        case PacketTracer::Result::validAttribute:
            begin("valid").flag(result.valid());
            break;
        case PacketTracer::Result::egressIntfAttribute: {
            auto const& entry = key.get<PacketTracer::ResultEntry>();
            begin("egressIntf")
                .beginList()
                .text(entry.physicalIntf().stringValue())
                .text(entry.logicalIntf().stringValue())
                .endList();
            break;
        }
    }
    json.endObject();
}

void writeArguments(JsonWriter& json, SdkSeam::SdkCall const& call) {
    eachArgument(call, [&json](std::string_view name, auto value) {
        if constexpr (std::is_integral_v<decltype(value)>) {
            json.member(name, value);
        } else {
            json.name(name).hex(value);
        }
    });
}

}  // namespace

template <class Write>
void Printer::print(Write const& write) {
    if (closed_) {
        return;
    }
    JsonWriter json(buffer_);
    json.beginObject();
    write(json);
    buffer_.push_back('\n');
    if (buffer_.size() > largestBuffer) {
        flush();
    }
}

void Printer::event(std::uint64_t line) {
    print([&](JsonWriter& json) { json.member("event", line).endObject(); });
}

void Printer::engine(VynPacketTracer::PktGenState state) {
    if (printedState_ == state) {
        return;
    }
    printedState_ = state;
    print([&](JsonWriter& json) {
        json.member("engine", VynPacketTracer::stringValue(state).view()).endObject();
    });
}

void Printer::error(std::exception const& error) {
    print([&](JsonWriter& json) {
        json.member("error", classNameOf(typeid(error))).member("text", error.what()).endObject();
    });
}

void Printer::fatal(std::string_view type, std::string_view text) {
    print([&](JsonWriter& json) { json.member("fatal", type).member("text", text).endObject(); });
}

void Printer::lines(std::string_view text) {
    buffer_.append(text);
}

void Printer::trace(std::string_view handle, unsigned level, std::string_view text) {
    print([&](JsonWriter& json) {
        json.member("trace", handle).member("level", level).member("text", text).endObject();
    });
}

void Printer::exitFatal(std::string_view type, std::string_view text) {
    fatal(type, text);
    flush();
    ::_exit(fatalStatus);
}

void Printer::published(Vanta::Change const& change) {
    Vanta::Node const* const owner = change.publisher.owner();
    if (auto const* status = dynamic_cast<PktGenStatusData const*>(owner)) {
        print([&](JsonWriter& json) { writeStatus(json, *status, change.attribute); });
    } else if (auto const* result = dynamic_cast<PacketTracer::Result const*>(owner)) {
        print([&](JsonWriter& json) { writeResult(json, *result, change.attribute, change.key); });
    } else if (auto const* statuses = dynamic_cast<PktGenStatus const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        print(
            [&](JsonWriter& json) { writePresence(json, "status", statuses->statusHas(id), id); });
    } else if (auto const* configs = dynamic_cast<PktGenConfig const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        print([&](JsonWriter& json) { writePresence(json, "cfg", configs->cfgHas(id), id); });
    } else if (auto const* client = dynamic_cast<PacketTracer::ClientStatus const*>(owner)) {
        auto const& id = change.key.get<RequestId>();
        print(
            [&](JsonWriter& json) { writePresence(json, "result", client->result().has(id), id); });
    }
}

void Printer::sdkCalled(SdkSeam::SdkCall const& call) {
    print([&](JsonWriter& json) {
        json.member("sdk", sdkFunctionName(call.function)).name("args").beginObject();
        writeArguments(json, call);
        json.endObject().member("rc", call.rc);
        if (call.function == SdkSeam::SdkFunction::getPktCounters) {
            json.member("count", call.count);
        }
        json.endObject();
    });
}

void Printer::phase0ConfigIs(Plexa::IntfId const& intf) {
    print([&](JsonWriter& json) {
        json.member("phase0", "configIs").member("intf", intf.stringValue()).endObject();
    });
}

void Printer::phase0ConfigDel(Plexa::IntfId const& intf) {
    print([&](JsonWriter& json) {
        json.member("phase0", "configDel").member("intf", intf.stringValue()).endObject();
    });
}

bool Printer::flush() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    out_.flush();
    buffer_.clear();
    return out_.good();
}

Observation::Observation(Printer& printer)
    : lastStep_(Vanta::LastStep::to<&Printer::exitFatal>(&printer)),
      publications_(Vanta::Tap::to<&Printer::published>(&printer)),
      traces_(Trace::Tap::to<&Printer::trace>(&printer)) {}

}  // namespace Replay
