#include "driver/QuillaneQFDModule.h"

/// The module's one export. The host owns the result.
extern "C" QFD_PUBLIC sal::Module* onCreateModule() {
    auto* const module = new QuillaneQFDModule;
    module->createDriver();
    return module;
}
