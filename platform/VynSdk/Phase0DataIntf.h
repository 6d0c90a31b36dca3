// Phase-0 data of ingress ports: what the ingress parser expects ahead of a packet.
//
// The tracer names an interface with configIs(); the chip computes the answer on the event thread
// and delivers it in a later turn, in the order of the requests. configDel() takes effect before it
// returns: an answer under way is discarded, and the removal of an entry is announced in a later
// turn.
//
//   request     response entry   left by
//   none        none             configIs()
//   requested   none             the chip's answer, configDel()
//   requested   there            configDel()
//
// A change of the response collection is published under responseAttribute with the interface as
// key. Thread: the event thread.
#pragma once

#include <cstdint>

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"

namespace VynSdk {

// One answer. Status 0 is success.
struct Phase0DataResponse {
    Vanta::Bytes data;
    std::uint32_t status = 0;
};

inline void reflectValue(Kel::AttributeSink& sink, Phase0DataResponse const& response) {
    sink.listStart();
    Kel::reflectValue(sink, response.data);
    Kel::reflectValue(sink, response.status);
    sink.listEnd();
}

class VYN_EXPORT Phase0DataIntf : public Kel::Object {
  public:
    static constexpr Vanta::AttributeNumber responseAttribute = 130;
    using Responses = Kel::Collection<Plexa::IntfId, Phase0DataResponse>;

    // Asks for the data of an interface. Asking again while asked changes nothing.
    virtual void configIs(Plexa::IntfId const& intf) = 0;
    // Withdraws the request for an interface; nothing happens if there is none.
    virtual void configDel(Plexa::IntfId const& intf) = 0;

    Responses const& response() const noexcept { return response_; }
    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  protected:
    Phase0DataIntf() = default;
    ~Phase0DataIntf() override = default;

    // For the chip. Puts an entry and replaces one that is there, without publishing.
    void responseIs(Plexa::IntfId const& intf, Phase0DataResponse response);
    // Removes an entry without publishing; false if there was none.
    bool responseDel(Plexa::IntfId const& intf) { return response_.remove(intf).has_value(); }
    // Announces a change of the entry of an interface.
    void publishResponse(Plexa::IntfId const& intf) const;

  private:
    Responses response_;
    Vanta::Publisher publisher_{this};
};

}  // namespace VynSdk
