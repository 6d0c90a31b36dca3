#include "agent/RunRecorder.h"

#include <stdexcept>
#include <utility>

#include "Orb/FileDescriptor.h"
#include "Orb/Task.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "agent/RequestEvents.h"

namespace Agent {
namespace {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;
using PacketTracer::Request;
using PacketTracer::RequestId;
namespace Do = Scenario::Do;

// What the engine calls its task and the descriptor from which it reads digests.
constexpr std::string_view engineTask = "pktGenWorker";
constexpr std::string_view digestDescriptor = "Packet tracer digest";

bool isResultEmpty(PacketTracer::Result const& result) {
    return result.state() == PacketTracer::State{} && !result.valid() &&
           result.egressIntf().empty();
}

// What an entry of a directory is: `any` is its entity, `own` the same as the directory's own type,
// or null.
Do::Entity entityOf(Vanta::Ptr<Vanta::Node> const& any, Vanta::Ptr<Vanta::Node> const& own) {
    return own ? Do::Entity::own : any ? Do::Entity::other : Do::Entity::none;
}

}  // namespace

RunRecorder::RunRecorder(Subject const& subject, Scenario::RecordingFile& file)
    : subject_(subject),
      writer_(file),
      chip_(subject.device, writer_),
      phase0_(RecordedPhase0::RecordedPhase0Is(
          subject.phase0Data, subject.loop,
          {.isLate = [this] { return digestTurn_ == subject_.loop->turns(); },
           .announced =
               [this](Plexa::IntfId const& intf, VynSdk::Phase0DataResponse const* response) {
                   if (response != nullptr) {
                       event(Do::Phase0{intf, response->status, response->data});
                   } else {
                       event(Do::Phase0Del{intf});
                   }
               }})) {
    forwardingStateChanged();
    for (auto const& entry : subject_.clientConfigs->entry()) {
        configEntry(Vanta::String(entry.key));
    }
    for (auto const& entry : subject_.clientStatuses->entry()) {
        statusEntry(Vanta::String(entry.key));
    }
}

RunRecorder::~RunRecorder() {
    phase0_->listenerDel();
    writer_.use([](Scenario::RunWriter& writer) { writer.finish(); });
}

void RunRecorder::event(Scenario::Event event) {
    writer_.use([&](Scenario::RunWriter& writer) { writer.event(std::move(event)); });
}

void RunRecorder::starting(bool pktTracerSupported, bool pktGenSupported, std::uint32_t session) {
    event(Do::Start{pktTracerSupported, pktGenSupported, session, subject_.device});
    running_ = true;
}

void RunRecorder::stopping() {
    event(Do::Stop());
    running_ = false;
}

void RunRecorder::forwardingStateChanged() {
    for (Scenario::Event& change : state_.becomes(subject_.forwardingState)) {
        event(std::move(change));
    }
}

void RunRecorder::processEnds(std::string_view, std::string_view) {
    writer_.use([](Scenario::RunWriter& writer) { writer.finish(); });
}

// ---- What is published

void RunRecorder::published(Vanta::Change const& change) {
    try {
        record(change);
    } catch (std::exception const& error) {
        writer_.use([&](Scenario::RunWriter&) { throw std::runtime_error(error.what()); });
    }
}

void RunRecorder::record(Vanta::Change const& change) {
    Vanta::Node const* const owner = change.publisher.owner();
    if (owner == subject_.clientConfigs.get()) {
        configEntry(change.key.get<Vanta::String>());
    } else if (owner == subject_.clientStatuses.get()) {
        statusEntry(change.key.get<Vanta::String>());
    } else if (auto const* task = dynamic_cast<Orb::Task const*>(owner)) {
        if (change.attribute == Orb::Task::runAttribute && task->name() == engineTask) {
            writer_.use([&](Scenario::RunWriter& writer) {
                writer.taskRuns(subject_.loop->turns(), subject_.loop->yieldAfter());
            });
        }
    } else if (auto const* descriptor = dynamic_cast<Orb::FileDescriptor const*>(owner)) {
        if (change.attribute == Orb::FileDescriptor::readableAttribute &&
            descriptor->name() == digestDescriptor) {
            digestTurn_ = subject_.loop->turns();
            writer_.use([&](Scenario::RunWriter& writer) { writer.digestAnnounced(digestTurn_); });
        }
    } else if (auto const* request = dynamic_cast<Request const*>(owner)) {
        requestAttribute(*request, change.attribute);
    } else if (auto const* config = dynamic_cast<ClientConfig const*>(owner)) {
        if (change.attribute == ClientConfig::requestAttribute) {
            requestEntry(*config, change.key.get<RequestId>());
        }
    }
}

// ---- Clients

void RunRecorder::configEntry(Vanta::String const& name) {
    auto const* const entry = subject_.clientConfigs->entry().find(name);
    if (entry == nullptr) {
        event(Do::ClientConfigDel{name});
        return;
    }
    auto const config = Vanta::dynamicCast<ClientConfig>(entry->value);
    event(Do::ClientConfig{name, entityOf(entry->value, config)});
    if (!config) {
        return;
    }
    content("requests", name, config->request().size());
    for (auto const& request : config->request()) {
        event(requestEvent(*request.value));
    }
}

void RunRecorder::statusEntry(Vanta::String const& name) {
    auto const* const entry = subject_.clientStatuses->entry().find(name);
    if (entry == nullptr) {
        event(Do::ClientStatusDel{name});
        return;
    }
    auto const status = Vanta::dynamicCast<ClientStatus>(entry->value);
    event(Do::ClientStatus{name, entityOf(entry->value, status)});
    if (!status) {
        return;
    }
    content("results", name, status->result().size());
    for (auto const& result : status->result()) {
        event(Do::Result{result.key});
        if (!isResultEmpty(*result.value)) {
            writer_.use([](Scenario::RunWriter& writer) {
                writer.remark("this result had a content from before the recording");
            });
        }
    }
}

// An entry with content appears in one change; in a scenario its content follows it.
void RunRecorder::content(std::string_view what, Vanta::String const& client, std::size_t count) {
    if (running_ && count > 0) {
        writer_.use([&](Scenario::RunWriter& writer) {
            writer.remark("the entry of " + std::string(client.view()) + " came with these " +
                          std::string(what) + " in it");
        });
    }
}

void RunRecorder::requestEntry(Vanta::Node const& config, RequestId const& id) {
    auto const there = subject_.clientConfigs->entity<ClientConfig>(id.clientName());
    if (there.get() != &config) {
        return;
    }
    auto const request = there->request(id);
    if (request) {
        event(requestEvent(*request));
    } else {
        event(Do::RequestDel{id});
    }
}

void RunRecorder::requestAttribute(Request const& request, Vanta::AttributeNumber attribute) {
    auto const config = subject_.clientConfigs->entity<ClientConfig>(request.id().clientName());
    if (!config || config->request(request.id()).get() != &request) {
        return;
    }
    for (Do::RequestSet& set : requestSetEvents(request, attribute)) {
        event(std::move(set));
    }
}

}  // namespace Agent
