// The questions of one client: its requests, by id.
//
// A change of the request collection is published with the request's id as key. Replacing a request
// object under its id is one publication and keeps its position in the order. Thread: the event
// thread.
#pragma once

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "PacketTracer/Request.h"
#include "VynExport.h"

namespace PacketTracer {

class VYN_EXPORT ClientConfig final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber {
        requestAttribute = Kel::firstAttribute,
        descriptionAttribute,
    };
    using Requests = Kel::Collection<RequestId, Vanta::Ptr<Request>>;

    static Vanta::Ptr<ClientConfig> ClientConfigIs();

    Requests const& request() const noexcept { return request_; }
    // The request, or null.
    Vanta::Ptr<Request> request(RequestId const& id) const { return request_.get(id); }

    // Puts a request under its id and replaces the one that is there. Putting the same object again
    // changes nothing. Errors: Kel::NullArgumentError.
    void requestIs(Vanta::Ptr<Request> request);
    // Removes and returns a request; null, and no publication, if there is none.
    Vanta::Ptr<Request> requestDel(RequestId const& id);

    // A text for people; the tracer does not react to it.
    Vanta::String const& description() const noexcept { return description_; }
    void descriptionIs(Vanta::String const& description);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    ClientConfig() = default;
    ~ClientConfig() override = default;

    Requests const& allRequests() const noexcept { return request_; }

    Requests request_;
    Vanta::String description_;
    Vanta::Publisher publisher_{this};
};

}  // namespace PacketTracer
