#pragma once

#include "driver/Component.h"
#include "driver/FIDMapHandler.h"
#include "driver/IQFDFramework.h"
#include "driver/QFDConfigHandler.h"

/// The framework under the driver: owns the two objects that the host talks to and hands them
/// out by number. Thread: the host's.
class QFDBase : public IQFDFramework, public Component {
  public:
    QFDBase();
    ~QFDBase() override;
    QFDBase(QFDBase const&) = delete;
    QFDBase& operator=(QFDBase const&) = delete;

    /// `functionInterfaceId` and `configurationInterfaceId`; null for any other number.
    IInterface* queryInterface(int id) override;

    void onConfigured() override {}
    void initialize() override {}
    void deinitialize() override {}
    void onNotify(void* /*word*/) override {}
    /// The module calls it once, right after the driver is constructed.
    virtual void onCreated() {}
    virtual void setHostValue(void* word);
    virtual void flushHostValue();

  protected:
    QFDConfigHandler* configuration;  // owned
    FIDMapHandler* functions;         // owned
};
