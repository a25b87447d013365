#pragma once

#include "platform/sal/IInterface.h"

/// Marks a part of the panel's software.
class Component : public virtual IInterface {};
