// A literal model of the tracer: it says what an event leads to.
//
// It walks the steps of each operation one by one over lists and plain values, and knows nothing of
// the plug-in's code, indexes, publishers or reference counts. For an event it foretells, in order:
// every trace statement, every published change of jobs, answers and results, and every call of the
// chip; for the time after it, the content of every collection, the engine's state, the bytes in
// the digest socket and the number of live nodes. Where the process must end it throws Fatal.
//
// Of the chip it knows only the wire. It decodes the digests from the same stream of bytes as the
// engine, so it foretells the effects of a stream that is out of step, too.
//
// A client that is taken from the directories keeps its two objects in hand; the model keeps them
// likewise, so a reactor that still reacted to them would be noticed.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "simulate/Event.h"
#include "simulate/Text.h"
#include "simulate/Wire.h"

namespace Simulate {

// The end of the process: the error's class, and for a range error or an assertion its text.
struct Fatal {
    std::string type;
    std::string text;
};

// A client's name and a request's number.
using Id = std::pair<std::string, std::uint32_t>;

// Keys and values in the order in which the keys were added. Plain search, on purpose.
template <class Key, class Value>
class Listed {
  public:
    Value* find(Key const& key) {
        for (auto& entry : entries_) {
            if (entry.first == key) {
                return &entry.second;
            }
        }
        return nullptr;
    }
    Value const* find(Key const& key) const { return const_cast<Listed*>(this)->find(key); }
    bool has(Key const& key) const { return find(key) != nullptr; }
    // Replaces the value and keeps its position, or adds it at the end.
    void put(Key const& key, Value value) {
        if (auto* const there = find(key)) {
            *there = std::move(value);
        } else {
            entries_.emplace_back(key, std::move(value));
        }
    }
    bool remove(Key const& key) {
        return entries_.remove_if([&](auto const& entry) { return entry.first == key; }) > 0;
    }
    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    void clear() { entries_.clear(); }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

  private:
    std::list<std::pair<Key, Value>> entries_;
};

class Model {
  public:
    using IntfId = Plexa::IntfId;
    enum class State : std::uint8_t {
        init,
        idle,
        waitPhase0Data,
        phase0DataReady,
        waitPktSent,
        reset,
        error
    };
    // The session that the tracer gives in its calls of the chip.
    static constexpr unsigned session = 1;
    static constexpr unsigned device = 1;

    Model();

    // Whether the event makes sense now; if not it is skipped.
    bool applies(Event const& event) const;
    // Carries the event out; a `turn` is one turn. Throws Fatal.
    void apply(Event const& event, Wire& wire);

    // What the step led to, line by line.
    std::vector<std::string> takeLog() { return std::exchange(log_, {}); }
    // Everything that there is, line by line, in the order of the collections.
    std::vector<std::string> content() const;
    // Live nodes beyond those that are always there.
    std::size_t nodes() const;

    // For invariants, and for the closing of a run.
    bool running() const { return running_; }
    State state() const { return engine_.state; }
    std::optional<Id> currentJob() const;
    std::uint16_t pktId() const { return engine_.pktId; }
    std::size_t unread() const { return stream_.size(); }
    std::vector<Id> pendingJobs() const;
    std::vector<Id> jobs() const;
    std::vector<Id> answers() const;
    bool clientRuns(std::string const& client) const { return clients_.has(client); }
    // Whether the directories have the object that a client has in hand.
    bool configIsMounted(std::string const& client) const;
    bool statusIsMounted(std::string const& client) const;
    // The requests of the configuration in hand of a client.
    std::vector<Id> requestsOf(std::string const& client) const;

  private:
    struct PortInfo {
        unsigned pipe = 0;
        unsigned port = 456;
        bool operator==(PortInfo const&) const = default;
    };
    struct Vlan {
        std::vector<IntfId> members;
        bool internal = false;
    };
    struct Request {
        Id id;
        bool valid = false;
        unsigned etherType = 0;
        bool mpls = false;
        bool gre = false;
        IntfId intf;
        Bytes raw;
    };
    using RequestPtr = std::shared_ptr<Request>;
    struct Config {
        Listed<Id, RequestPtr> requests;
    };
    using ConfigPtr = std::shared_ptr<Config>;
    using Entry = std::pair<IntfId, IntfId>;
    struct Result {
        unsigned state = 0;
        bool valid = false;
        std::vector<Entry> egress;
    };
    struct Status {
        Listed<Id, Result> results;
    };
    using StatusPtr = std::shared_ptr<Status>;
    // What a client has in hand.
    struct Hand {
        ConfigPtr config;
        StatusPtr status;
    };
    Hand hand(Vanta::String const& client) const;
    // A directory's entry of a name.
    template <class Object>
    struct Entity {
        std::shared_ptr<Object> own;  // null for an entity that is absent or of another type
        bool other = false;
    };
    struct Client {
        std::string name;
        ConfigPtr config;
        StatusPtr status;
        Listed<Id, RequestPtr> reactors;
    };
    struct Job {
        Id id;
        Bytes pkt;
        PortInfo port;
        IntfId intf;
    };
    using JobPtr = std::shared_ptr<Job const>;
    struct Answer {
        std::uint16_t pktId = 0;
        bool ready = false;
        PortInfo egress;
        unsigned l2Domain = 0;
        bool copyToCpu = false;
        bool routed = false;
        bool dropped = false;
    };
    struct Engine {
        State state = State::init;
        std::uint16_t pktId = 0;
        std::uint64_t count = 0;  // read just before the injection
        JobPtr current;
        bool scheduled = false;
        bool taskRuns = false;
    };
    struct Response {
        std::uint32_t status = 0;
        Bytes data;
    };
    struct DigestEntry {
        unsigned pktId, copyToCpu, l2Domain, egrPort, routed, dropCtl;
    };

    template <class... Parts>
    void note(Parts const&... parts) {
        log_.push_back(joined(parts...));
    }
    template <class... Parts>
    void trace(std::string_view module, unsigned level, Parts const&... parts) {
        note("trace ", module, " ", level, " ", parts...);
    }
    template <class... Parts>
    Wire::Answer call(Parts const&... parts);

    // The outside events (Model.cpp).
    struct Applies;
    struct Applying;
    template <class Object>
    void mount(Listed<std::string, Entity<Object>>& directory, Vanta::String const& client,
               std::shared_ptr<Object> const& own, Do::Entity entity);
    template <class Object>
    void unmount(Listed<std::string, Entity<Object>>& directory, Vanta::String const& client);
    void putRequest(Do::Request const& event);
    void setRequest(Do::RequestSet const& event);
    void withdraw(Id const& id);
    void receiveAll();
    void start(bool supported);
    void stop();
    void turn();
    void receive(Wire::Message const& message);

    // The root (Model.cpp).
    void handleClient(std::string const& name);
    void handleAnswer(Id const& id);
    void relayDispatch(Id const& id);

    // A client (ModelClient.cpp).
    void startClient(Client& client);
    void handleRequest(Client& client, Id const& id);
    bool isValid(Request const& request);
    void finish(Client& client, Id const& id, unsigned state);
    void requestChanged(Client& client, Id const& id);
    void updateResult(Client& client, Id const& id, Answer const& answer);
    void addPort(Status& status, Id const& id, IntfId intf);
    void flood(Status& status, Id const& id, Answer const& answer, IntfId const& ingress);
    void addVlan(Status& status, Id const& id, unsigned vlan);
    void unicast(Status& status, Id const& id, Answer const& answer);
    Result& resultIs(Status& status, Id const& id);
    void resultDel(Status& status, Id const& id);
    void setState(Status& status, Id const& id, unsigned state);
    void setValid(Status& status, Id const& id);
    void addEgress(Status& status, Id const& id, Entry const& entry);
    Client* clientOf(std::string const& name);
    static void checkVlan(unsigned vlan);

    // The engine (ModelEngine.cpp).
    void makeEngine();
    void endEngine();
    void jobIs(Job job);
    void jobDel(Id const& id);
    void answerIs(Id const& id);
    void answerDel(Id const& id);
    void handleJob(Id const& id);
    void phase0Changed(Wire::Announcement const& announcement);
    void work();
    bool processRequest();
    void getPhase0();
    Wire::Answer readCounter();
    void send();
    void checkCount();
    void disable();
    void processError();
    void processDigest();
    void processEntry(Bytes const& entry);
    void complete(Id const& id, DigestEntry const& entry);
    void configIs(IntfId const& intf);
    void configDel(IntfId const& intf);
    Id currentId() const { return engine_.current ? engine_.current->id : Id(); }

    std::vector<std::string> log_;
    Wire* wire_ = nullptr;

    Listed<IntfId, PortInfo> ports_;
    std::map<unsigned, IntfId> portToIntfId_;
    std::set<IntfId> lags_;
    std::map<IntfId, IntfId> portToLag_;
    std::map<unsigned, Vlan> vlans_;
    std::set<IntfId> cpuPorts_;

    Listed<std::string, Entity<Config>> configs_;
    Listed<std::string, Entity<Status>> statuses_;
    std::map<std::string, Hand> hands_;

    bool running_ = false;
    bool supported_ = false;
    unsigned yieldAfter_ = 64;
    std::size_t room_;
    Listed<std::string, std::shared_ptr<Client>> clients_;
    Listed<Id, JobPtr> jobs_;
    Listed<Id, Answer> answers_;
    std::set<Id> watched_;
    Engine engine_;
    std::map<IntfId, Response> responses_;
    Bytes stream_;  // what the digest socket holds
};

char const* text(Model::State state);

}  // namespace Simulate
