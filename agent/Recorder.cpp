#include "agent/Recorder.h"

#include <stdexcept>
#include <utility>

#include "Orb/FileDescriptor.h"
#include "Orb/Task.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"

namespace Agent {
namespace {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;
using PacketTracer::Request;
using PacketTracer::RequestId;

// What the engine calls its task and the descriptor from which it reads digests.
constexpr std::string_view engineTask = "pktGenWorker";
constexpr std::string_view digestDescriptor = "Packet tracer digest";

bool isResultEmpty(PacketTracer::Result const& result) {
    return result.state() == PacketTracer::State{} && !result.valid() &&
           result.egressIntf().empty();
}

}  // namespace

Recorder::Recorder(Scene const& scene, RecordingFile& file)
    : scene_(scene),
      writer_(file),
      chip_(scene.device, writer_),
      phase0_(RecordedPhase0::RecordedPhase0Is(
          scene.phase0Data, scene.loop,
          {.isLate = [this] { return digestTurn_ == scene_.loop->turns(); },
           .announced =
               [this](Plexa::IntfId const& intf, VynSdk::Phase0DataResponse const* response) {
                   event(response != nullptr ? Line::phase0(intf, *response)
                                             : Line::phase0Del(intf));
               }})) {
    forwardingStateChanged();
    for (auto const& entry : scene_.clientConfigs->entry()) {
        configEntry(Vanta::String(entry.key));
    }
    for (auto const& entry : scene_.clientStatuses->entry()) {
        statusEntry(Vanta::String(entry.key));
    }
}

Recorder::~Recorder() {
    phase0_->listenerDel();
    writer_.use([](ScenarioWriter& writer) { writer.finish(); });
}

void Recorder::event(std::string line) {
    writer_.use([&](ScenarioWriter& writer) { writer.event(std::move(line)); });
}

void Recorder::starting(bool pktTracerSupported, bool pktGenSupported, std::uint32_t session) {
    event(Line::start(pktTracerSupported, pktGenSupported, session, scene_.device));
    running_ = true;
}

void Recorder::stopping() {
    writer_.use([](ScenarioWriter& writer) { writer.stop(Line::stop()); });
    running_ = false;
}

void Recorder::forwardingStateChanged() {
    for (std::string& line : state_.becomes(scene_.forwardingState)) {
        event(std::move(line));
    }
}

void Recorder::processEnds(std::string_view, std::string_view) {
    writer_.use([](ScenarioWriter& writer) { writer.finish(); });
}

// ---- What is published

void Recorder::published(Vanta::Change const& change) {
    try {
        record(change.publisher, change.attribute, change.key);
    } catch (std::exception const& error) {
        writer_.use([&](ScenarioWriter&) { throw std::runtime_error(error.what()); });
    }
}

void Recorder::record(Vanta::Publisher const& publisher, Vanta::AttributeNumber attribute,
                      Vanta::ValueRef key) {
    Vanta::Node const* const owner = publisher.owner();
    if (owner == scene_.clientConfigs.get()) {
        configEntry(key.get<Vanta::String>());
    } else if (owner == scene_.clientStatuses.get()) {
        statusEntry(key.get<Vanta::String>());
    } else if (auto const* task = dynamic_cast<Orb::Task const*>(owner)) {
        if (attribute == Orb::Task::runAttribute && task->name() == engineTask) {
            writer_.use([&](ScenarioWriter& writer) {
                writer.taskRuns(scene_.loop->turns(), scene_.loop->yieldAfter());
            });
        }
    } else if (auto const* descriptor = dynamic_cast<Orb::FileDescriptor const*>(owner)) {
        if (attribute == Orb::FileDescriptor::readableAttribute &&
            descriptor->name() == digestDescriptor) {
            digestTurn_ = scene_.loop->turns();
            writer_.use([&](ScenarioWriter& writer) { writer.digestAnnounced(digestTurn_); });
        }
    } else if (auto const* request = dynamic_cast<Request const*>(owner)) {
        requestAttribute(*request, attribute);
    } else if (auto const* config = dynamic_cast<ClientConfig const*>(owner)) {
        if (attribute == ClientConfig::requestAttribute) {
            requestEntry(*config, key.get<RequestId>());
        }
    }
}

// ---- Clients

void Recorder::configEntry(Vanta::String const& name) {
    auto const* const entry = scene_.clientConfigs->entry().find(name);
    if (entry == nullptr) {
        event(Line::clientConfigDel(name.view()));
        return;
    }
    auto const config = Vanta::dynamicCast<ClientConfig>(entry->value);
    event(Line::clientConfig(name.view(), config ? "config" : entry->value ? "other" : "none"));
    if (!config) {
        return;
    }
    content("requests", name, config->request().size());
    for (auto const& request : config->request()) {
        event(Line::request(*request.value));
    }
}

void Recorder::statusEntry(Vanta::String const& name) {
    auto const* const entry = scene_.clientStatuses->entry().find(name);
    if (entry == nullptr) {
        event(Line::clientStatusDel(name.view()));
        return;
    }
    auto const status = Vanta::dynamicCast<ClientStatus>(entry->value);
    event(Line::clientStatus(name.view(), status ? "status" : entry->value ? "other" : "none"));
    if (!status) {
        return;
    }
    content("results", name, status->result().size());
    for (auto const& result : status->result()) {
        event(Line::result(result.key));
        if (!isResultEmpty(*result.value)) {
            writer_.use([](ScenarioWriter& writer) {
                writer.remark("this result had a content from before the recording");
            });
        }
    }
}

// An entry with content comes in one change; in a scenario its content follows it.
void Recorder::content(std::string_view what, Vanta::String const& client, std::size_t count) {
    if (running_ && count > 0) {
        writer_.use([&](ScenarioWriter& writer) {
            writer.remark("the entry of " + std::string(client.view()) + " came with these " +
                          std::string(what) + " in it");
        });
    }
}

void Recorder::requestEntry(Vanta::Node const& config, RequestId const& id) {
    auto const there = scene_.clientConfigs->entity<ClientConfig>(id.clientName());
    if (there.get() != &config) {
        return;
    }
    auto const request = there->request(id);
    event(request ? Line::request(*request) : Line::requestDel(id));
}

void Recorder::requestAttribute(Request const& request, Vanta::AttributeNumber attribute) {
    auto const config = scene_.clientConfigs->entity<ClientConfig>(request.id().clientName());
    if (!config || config->request(request.id()).get() != &request) {
        return;
    }
    for (std::string& line : Line::requestSet(request, attribute)) {
        event(std::move(line));
    }
}

}  // namespace Agent
