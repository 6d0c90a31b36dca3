// What happens, as lines, in the order in which it happens:
//
//   VynPtSm/7 handleClients:                      a trace statement: handle, level, text
//   cfg add noc/1                                 a job comes or goes
//   status add noc/1                              an answer comes or goes,
//   status egrPortInfo noc/1 1/132                or one of its attributes changes
//   result add noc/1                              a result comes or goes,
//   result egressIntf noc/1 (Ethernet2,)          or changes
//   phase0 configIs Ethernet1                     phase-0 data is asked for, or given up
//   sdk disableAppId session=1 device=0 pipe=0 appId=4 -> 0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "PacketTracer/ClientStatus.h"
#include "Trace/Tap.h"
#include "Vanta/Tap.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "scriptchip/Listener.h"

using Lines = std::vector<std::string>;

inline Lines operator+(Lines all, Lines const& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

// The lines that begin so.
inline Lines beginning(std::string_view with, Lines const& lines) {
    Lines found;
    for (auto const& line : lines) {
        if (line.starts_with(with)) {
            found.push_back(line);
        }
    }
    return found;
}

// The first and the last line; the empty text if there is none.
inline std::string first(Lines const& lines) {
    return lines.empty() ? std::string() : lines.front();
}
inline std::string last(Lines const& lines) {
    return lines.empty() ? std::string() : lines.back();
}

inline std::string keyText(PacketTracer::RequestId const& id) {
    return std::string(id.clientName().view()) + "/" + std::to_string(id.number());
}

// Hears everything while it lives.
class Recorder final : public ScriptChip::Listener {
  public:
    Recorder() { hearsIs(true); }
    Recorder(Recorder const&) = delete;
    Recorder& operator=(Recorder const&) = delete;

    // The lines since the last call.
    Lines take() { return std::exchange(lines_, {}); }
    Lines const& lines() const noexcept { return lines_; }

    void note(std::string line) {
        if (hears_) {
            lines_.push_back(mark ? mark() + std::move(line) : std::move(line));
        }
    }
    // Switched off, it records no lines: for tests that repeat something very often.
    void hearsIs(bool on) {
        hears_ = on;
        publications_.reset();
        traces_.reset();
        if (on) {
            publications_.emplace(published, this);
            traces_.emplace(traced, this);
        }
    }

    // What is put in front of every line, as it is at that moment.
    std::function<std::string()> mark;
    // Called inside a call of the chip or a trace statement, after it was noted.
    std::function<void(SdkSeam::SdkCall const&)> onSdkCall;
    std::function<void()> onTrace;

    void sdkCalled(SdkSeam::SdkCall const& call) override {
        if (hears_) {
            note("sdk " + SdkSeam::text(call));
        }
        if (onSdkCall) {
            onSdkCall(call);
        }
    }
    void phase0ConfigIs(Plexa::IntfId const& intf) override {
        note("phase0 configIs " + intf.stringValue());
    }
    void phase0ConfigDel(Plexa::IntfId const& intf) override {
        note("phase0 configDel " + intf.stringValue());
    }

  private:
    using Config = VynPacketTracer::PktGenConfig;
    using Status = VynPacketTracer::PktGenStatus;
    using StatusData = VynPacketTracer::PktGenStatusData;

    static void traced(void* self, std::string_view handle, unsigned level, std::string_view text) {
        auto& recorder = *static_cast<Recorder*>(self);
        recorder.note(std::string(handle) + "/" + std::to_string(level) + " " + std::string(text));
        if (recorder.onTrace) {
            recorder.onTrace();
        }
    }

    static void published(void* self, Vanta::Change const& published) {
        auto& recorder = *static_cast<Recorder*>(self);
        auto const attribute = published.attribute;
        auto const key = published.key;
        Vanta::Node const* const owner = published.publisher.owner();
        if (auto const* config = dynamic_cast<Config const*>(owner)) {
            recorder.noteEntry("cfg", config->cfg(), key);
        } else if (auto const* status = dynamic_cast<Status const*>(owner)) {
            recorder.noteEntry("status", status->status(), key);
        } else if (auto const* client = dynamic_cast<PacketTracer::ClientStatus const*>(owner)) {
            recorder.noteEntry("result", client->result(), key);
        } else if (auto const* data = dynamic_cast<StatusData const*>(owner)) {
            recorder.note("status " + change(*data, attribute));
        } else if (auto const* result = dynamic_cast<PacketTracer::Result const*>(owner)) {
            recorder.note("result " + change(*result, attribute, key));
        }
    }

    template <class Collection>
    void noteEntry(std::string kind, Collection const& collection, Vanta::ValueRef key) {
        auto const& id = key.get<PacketTracer::RequestId>();
        note(std::move(kind) + (collection.has(id) ? " add " : " del ") + keyText(id));
    }

    static std::string text(bool value) { return value ? "true" : "false"; }
    static std::string text(VynSystem::PortInfo const& info) {
        return std::to_string(info.pipe()) + "/" + std::to_string(info.port().value());
    }

    static std::string change(StatusData const& data, Vanta::AttributeNumber attribute) {
        std::string const key = " " + keyText(data.req()) + " ";
        switch (attribute) {
            case StatusData::pktIdAttribute:
                return "pktId" + key + std::to_string(data.pktId());
            case StatusData::readyAttribute:
                return "ready" + key + text(data.ready());
            case StatusData::egrPortInfoAttribute:
                return "egrPortInfo" + key + text(data.egrPortInfo());
            case StatusData::egrL2DomainAttribute:
                return "egrL2Domain" + key + std::to_string(data.egrL2Domain());
            case StatusData::copyToCpuAttribute:
                return "copyToCpu" + key + text(data.copyToCpu());
            case StatusData::routedAttribute:
                return "routed" + key + text(data.routed());
            case StatusData::droppedAttribute:
                return "dropped" + key + text(data.dropped());
            default:
                return std::to_string(attribute) + key;
        }
    }

    static std::string change(PacketTracer::Result const& result, Vanta::AttributeNumber attribute,
                              Vanta::ValueRef entry) {
        std::string const key = " " + keyText(result.id()) + " ";
        switch (attribute) {
            case PacketTracer::Result::stateAttribute:
                return "state" + key + std::to_string(static_cast<unsigned>(result.state()));
            case PacketTracer::Result::validAttribute:
                return "valid" + key + text(result.valid());
            case PacketTracer::Result::egressIntfAttribute:
                return "egressIntf" + key + text(entry.get<PacketTracer::ResultEntry>());
            default:
                return std::to_string(attribute) + key;
        }
    }
    static std::string text(PacketTracer::ResultEntry const& entry) {
        return "(" + entry.physicalIntf().stringValue() + "," + entry.logicalIntf().stringValue() +
               ")";
    }

    bool hears_ = false;
    Lines lines_;
    std::optional<Vanta::Tap> publications_;
    std::optional<Trace::Tap> traces_;
};
