// The scripted chip's phase-0 data: requests are recorded only, answers come and go as told.
#pragma once

#include "VynSdk/Phase0DataIntf.h"
#include "scriptchip/Listener.h"

namespace ScriptChip {

// Thread: the event thread.
class Phase0Data final : public VynSdk::Phase0DataIntf {
  public:
    static Vanta::Ptr<Phase0Data> Phase0DataIs(Listener* listener);

    // The listener that is told of the requests; null for none.
    void listenerIs(Listener* listener) noexcept { listener_ = listener; }

    void configIs(Plexa::IntfId const& intf) override;
    void configDel(Plexa::IntfId const& intf) override;

    // The answer for an interface appears, or is replaced by a new one, and is announced at once.
    void answerIs(Plexa::IntfId const& intf, Vanta::Bytes data, std::uint32_t status = 0);
    // The answer is removed, and that is announced; false, and nothing announced, if there is none.
    bool answerDel(Plexa::IntfId const& intf);

  private:
    friend struct Vanta::NodeFactory;
    explicit Phase0Data(Listener* listener) : listener_(listener) {}
    ~Phase0Data() override = default;

    Listener* listener_;
};

}  // namespace ScriptChip
