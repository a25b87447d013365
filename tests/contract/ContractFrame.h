#pragma once

#include <cstdint>
#include <string>

/// What the contract of the client library needs of a frame. It has the parameters of
/// `contractPids` on `contractDid`, and the lists of `contractLid`, takes every set, and tells
/// those who have subscribed what a set has changed. Its port is its own from construction on,
/// and refuses connections until `listen`.
class ContractFrame {
  public:
    virtual ~ContractFrame() = default;

    virtual std::uint16_t port() const = 0;
    virtual void listen() = 0;
    /// Neither reads nor writes, while everything stays open.
    virtual void freeze() = 0;
    /// Cuts the connection without a word.
    virtual void cut() = 0;
};

inline constexpr std::uint32_t contractDid = 0x24000000;
inline constexpr int contractLid = 6;

/// One parameter for each overload of `set`.
enum ContractPid {
    pidInt16 = 1,
    pidInt32 = 2,
    pidUInt16 = 3,
    pidUInt32 = 4,
    pidBool = 5,
    pidFloat = 6,
    pidString = 7
};
