#pragma once

#include "platform/Visibility.h"

/// The root of every object that the host can hold. Always a virtual base, so that an object
/// with several interfaces has one identity; going from here to a concrete interface therefore
/// takes a `dynamic_cast`.
///
/// Ownership: never owned through this pointer by the host; whoever made the object deletes it.
/// Thread: any.
class QFD_PUBLIC IInterface {
  public:
    virtual ~IInterface() = default;

    /// The interface with the number `id`, or null if this object doesn't offer it.
    virtual IInterface* queryInterface(int id) = 0;
};
