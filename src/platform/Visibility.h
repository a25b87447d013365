#pragma once

/// Marks a type or function that crosses the border of a shared library. Everything else is
/// hidden, so that the module's only exported name is `onCreateModule`.
#define QFD_PUBLIC __attribute__((visibility("default")))
