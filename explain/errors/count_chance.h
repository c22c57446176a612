// How rare a number of errors is. Any thread; nothing here fails.
#pragma once

namespace explain {

// The natural logarithm of the probability that, of `count` + `others` errors that fall on intervals alike,
// `count` or more fall on `length` intervals and not on the `rest`. The counts need not be whole. 0 where
// `count` is no more than about what is expected.
double LogChance(double count, double others, double length, double rest);

}  // namespace explain
