#pragma once

#include "platform/fid/FIDParameterList.h"

#include <string>

/// Whoever takes FIDs: the driver itself, and what feeds it.
///
/// Thread: any, several at once. The list is the caller's and is not kept.
class FIDHandler {
  public:
    virtual bool handleFID(std::string const& name, FIDParameterList const& parameters) = 0;

  protected:
    ~FIDHandler() = default;
};
