#include "platform/sal/Module.h"

namespace sal {

Module::Module() = default;
Module::~Module() = default;
void Module::onLoad() {}
void Module::onUnload() {}

}  // namespace sal
