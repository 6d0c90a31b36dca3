#include "simulate/Transcript.h"

#include "VynPortTypes/PortIndex.h"
#include "scenario/ChipAnswers.h"
#include "scenario/Writer.h"
#include "sdkseam/TraceDigest.h"
#include "simulate/Socket.h"

namespace Simulate {

// The lines of an event; most of those that scenarios do not have leave none.
struct Transcript::Adding {
    Transcript& transcript;
    Wire const& wire;
    Model const& before;

    void operator()(Scenario::Event const& e) const { std::visit(*this, e); }
    template <class AnyOther>
    void operator()(AnyOther const& e) const {
        if constexpr (std::is_constructible_v<Scenario::Event, AnyOther const&>) {
            transcript.put(e);
        }
    }

    void operator()(Do::Port const& e) const {
        if (e.port >= VynPortTypes::PortIndex::invalid) {
            transcript.endedBy_ = "a port has an index that scenarios do not give";
        } else {
            transcript.put(e);
        }
    }
    void operator()(Do::Turn const&) const {
        transcript.announcements(wire);
        transcript.turn();
    }

    // Nobody sees objects that are in no directory.
    void ofRequest(PacketTracer::RequestId const& id, Scenario::Event const& e) const {
        if (before.configIsMounted(std::string(id.clientName().view()))) {
            transcript.put(e);
        }
    }
    void operator()(Do::Request const& e) const { ofRequest(e.id, e); }
    void operator()(Do::RequestSet const& e) const { ofRequest(e.id, e); }
    void operator()(Do::RequestDel const& e) const { ofRequest(e.id, e); }
    void operator()(RequestDelAll const& e) const {
        for (auto const& [client, req] : before.requestsOf(std::string(e.client.view()))) {
            (*this)(Do::RequestDel{{client, req}});
        }
    }
    void operator()(Do::Result const& e) const {
        if (before.statusIsMounted(std::string(e.id.clientName().view()))) {
            transcript.put(e);
        }
    }

    void comesBack(Vanta::String const& client) const {
        transcript.endedBy_ = joined("client ", client.view(), " comes back with its objects");
    }
    void operator()(ConfigReturns const& e) const { comesBack(e.client); }
    void operator()(StatusReturns const& e) const { comesBack(e.client); }
    void operator()(Room const& e) const {
        if (e.bytes < DigestSocket::plenty) {
            transcript.endedBy_ = "the digest socket is small from here on";
        }
    }
};

void Transcript::add(Event const& event, Wire const& wire, Model const& before) {
    if (!endedBy_.empty()) {
        return;
    }
    answers(wire);
    std::visit(Adding{*this, wire, before}, event);
    digests(wire);
}

void Transcript::put(Scenario::Event const& event) {
    text_ += Scenario::line(event) + '\n';
}

// Turns with nothing to say between them share one line.
void Transcript::turn() {
    if (text_.size() == turnsEnd_) {
        text_.resize(turnsBegin_);
    } else {
        turnsBegin_ = text_.size();
        turns_ = 0;
    }
    put(Do::Turn{++turns_});
    turnsEnd_ = text_.size();
}

// What the scripted chip is to answer during the event.
void Transcript::answers(Wire const& wire) {
    Scenario::ChipAnswers answers;
    for (auto const& answer : wire.answers) {
        answers.called(answer.function, answer.rc);
        if (answer.function == SdkSeam::SdkFunction::getPktCounters) {
            answers.counterRead(answer.pipe, answer.count);
        }
    }
    for (auto const& counter : answers.counters()) {
        put(counter);
    }
    for (auto const& [told, isAll] : answers.failures()) {
        if (!isAll) {
            endedBy_ = joined(sdkFunctionName(told.call), " fails and succeeds by turns");
        }
        put(told);
    }
}

void Transcript::announcements(Wire const& wire) {
    for (auto const& announcement : wire.announcements) {
        if (announcement.present) {
            put(Do::Phase0{announcement.intf, announcement.status, announcement.data});
        } else {
            put(Do::Phase0Del{announcement.intf});
        }
    }
}

// A message names its device before its entries.
void Transcript::digests(Wire const& wire) {
    constexpr std::size_t size = SdkSeam::digestEntryBytes;
    for (auto const& message : wire.messages) {
        Do::Digest digest;
        std::span<std::uint8_t const> rest(message.bytes);
        for (rest = rest.subspan(8); rest.size() >= size; rest = rest.subspan(size)) {
            digest.entries.push_back(SdkSeam::unpacked(rest.first<size>()));
        }
        put(digest);
    }
}

}  // namespace Simulate
