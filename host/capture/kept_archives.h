// Archives at which several programs look, one after the other, unpacked once.
#pragma once

#include <string>

namespace zorv {
// From now on programs that this one starts leave the archives that they unpack in the folder `directory`,
// each in a folder of its own in it, for those that come after; while half of what is free there now stays
// free. It belongs to the caller, who removes it when none of them runs any more. Changes the environment:
// call it before there are other threads.
void KeepArchivesIn(const std::string& directory);

// As Unpack() into `directory`, unless one of the programs that this one's starter has started has unpacked
// the archive before, or leaves it to the next. Returns the folder where the files are, and stay while this
// program runs.
std::string UnpackOnce(const std::string& archive, const std::string& directory);
}  // namespace zorv
