#include "driver/QFDBase.h"

QFDBase::QFDBase() : configuration(new QFDConfigHandler), functions(new FIDMapHandler) {
    configuration->setFunctions(functions);
    configuration->setFramework(this);
}

QFDBase::~QFDBase() {
    delete static_cast<IInterface*>(configuration);
    delete static_cast<IInterface*>(functions);
}

IInterface* QFDBase::queryInterface(int id) {
    switch (id) {
    case functionInterfaceId:
        return dynamic_cast<IFunctionID*>(functions);
    case configurationInterfaceId:
        return dynamic_cast<IQFDConfiguration*>(configuration);
    default:
        return nullptr;
    }
}

void QFDBase::setHostValue(void* word) {
    if (configuration)
        configuration->setHostValue(word);
}

void QFDBase::flushHostValue() {
    if (configuration)
        configuration->flushHostValue();
}
