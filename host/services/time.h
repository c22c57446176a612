// Times as an operator reads them.
#pragma once

#include <ctime>
#include <string>

// UTC seconds as local time, such as "2023-01-05 10:30:00". The zone counts in whole hours, as it does for
// the plug-in. Any thread.
std::string LocalTimeText(time_t seconds);
