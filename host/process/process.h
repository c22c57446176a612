// How a program of the host begins.
#pragma once

namespace zorv {
// To be called first in main(). A database would otherwise be opened on the number of a closed standard
// stream and be printed into, and a file that grows too long would end the process instead of failing to be
// written.
void BeginProcess();
}  // namespace zorv
