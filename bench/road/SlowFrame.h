#pragma once

namespace bench {

/// How long a change at the frame takes to the panel's sink, while nobody sends, and while a
/// thread of the panel's software sends one FID after the other to a frame that acknowledges
/// each only just within the time-out. Prints both.
void measureSlowFrame(int rounds);

}  // namespace bench
