// Ending the timer service.
#pragma once

namespace zorv {
// Stops every timer and waits for a run that is under way. From then on no task can be added. Call it from
// the thread that ends the program, once.
void StopTimers();
}  // namespace zorv
