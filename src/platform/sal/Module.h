#pragma once

#include "platform/sal/IInterface.h"

namespace sal {

/// Base of a loadable module. The module's library exports
/// `extern "C" sal::Module* onCreateModule()`; the host calls it once and owns the result.
/// `onLoad` and `onUnload` are the host's notices and do nothing here.
class QFD_PUBLIC Module : public virtual IInterface {
  public:
    Module();
    ~Module() override;
    Module(Module const&) = delete;
    Module& operator=(Module const&) = delete;

    virtual void onLoad();
    virtual void onUnload();
};

}  // namespace sal
