#pragma once

#include "platform/Visibility.h"
#include "platform/fid/FIDParameterList.h"
#include "platform/sal/IInterface.h"

#include <string>

/// Where the host delivers FIDs; obtained from the module by `functionInterfaceId`.
///
/// Thread: any; several threads may deliver at once, but no other thread while `load` runs: it
/// registers the names, and there is no lock. From within a sink's call during `load`, on its
/// thread, a FID may come. A call returns when the FID has been converted and everything it
/// leads to has been sent, so a slow frame slows the caller. Before `load` a FID reaches nothing.
/// Errors: a FID that isn't registered is dropped without a word; an exception out of a
/// conversion reaches the caller (see docs/threads.md).
class QFD_PUBLIC IFunctionID : public virtual IInterface {
  public:
    virtual void handleFID(std::string const& name, FIDParameterList const& parameters) = 0;
    /// Part of the interface's shape; the driver does nothing in either.
    virtual void reservedFunction1(void* word) = 0;
    virtual void reservedFunction2() = 0;
};

inline constexpr int functionInterfaceId = 1100;
