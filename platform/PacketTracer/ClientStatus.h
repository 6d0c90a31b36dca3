// The answers to one client: its results, by request id.
//
// Creating and removing a result is published with the request's id as key; a status that is
// destroyed publishes nothing about its results. Thread: the event thread.
#pragma once

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "PacketTracer/Result.h"
#include "VynExport.h"

namespace PacketTracer {

class VYN_EXPORT ClientStatus final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber { resultAttribute = Kel::firstAttribute };
    using Results = Kel::Collection<RequestId, Vanta::Ptr<Result>>;

    static Vanta::Ptr<ClientStatus> ClientStatusIs();

    Results const& result() const noexcept { return result_; }
    // The result, or null.
    Vanta::Ptr<Result> result(RequestId const& id) const { return result_.get(id); }

    // The result of a request, created empty if there is none.
    Vanta::Ptr<Result> resultIs(RequestId const& id);
    // Removes and returns a result; null, and no publication, if there is none.
    Vanta::Ptr<Result> resultDel(RequestId const& id);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    ClientStatus() = default;
    ~ClientStatus() override = default;

    Results const& allResults() const noexcept { return result_; }

    Results result_;
    Vanta::Publisher publisher_{this};
};

}  // namespace PacketTracer
