#include "driver/QuillaneQFDModule.h"

#include <mutex>
#include <vector>

namespace {

/// Every driver of the process. The list itself is never destroyed, so that a thread that
/// outlives `main` still finds its driver.
void keepToTheEnd(QuillaneQFD* driver) {
    static std::mutex lock;
    static auto* const drivers = new std::vector<QuillaneQFD*>;
    std::lock_guard const guard(lock);
    drivers->push_back(driver);
}

}  // namespace

QuillaneQFDModule::~QuillaneQFDModule() { driver = nullptr; }

IInterface* QuillaneQFDModule::queryInterface(int id) {
    if (!driver)
        return nullptr;
    return static_cast<IQFDFramework*>(driver)->queryInterface(id);
}

void QuillaneQFDModule::createDriver() {
    driver = new QuillaneQFD;
    keepToTheEnd(driver);
    driver->onCreated();
}
