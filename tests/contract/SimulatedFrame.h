#pragma once

#include "ContractFrame.h"
#include "sims/frame/FrameServer.h"

/// The frame simulator under the contract's view of a frame.
class SimulatedFrame : public ContractFrame {
  public:
    SimulatedFrame();

    std::uint16_t port() const override { return server.port(); }
    void listen() override { server.refuse(false); }
    void freeze() override { server.freeze(true); }
    void cut() override { server.disconnect(); }

  private:
    FrameSim::FrameServer server;
};
