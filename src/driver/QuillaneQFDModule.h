#pragma once

#include "driver/QuillaneQFD.h"
#include "platform/sal/Module.h"

/// The module as the host holds it. Deleting it leaves the driver alive: threads and callbacks
/// of the driver may still run, so it stays to the end of the process, where leak checkers
/// find it referenced.
class QuillaneQFDModule : public sal::Module {
  public:
    QuillaneQFDModule() = default;
    ~QuillaneQFDModule() override;

    /// The driver's interfaces; null without a driver.
    IInterface* queryInterface(int id) override;

    void createDriver();

  private:
    QuillaneQFD* driver = nullptr;
};
