// Robust statistics of a few values. Any thread; nothing here is undefined for any finite input.
#pragma once

#include <vector>

namespace explain {

// What is usual for a series, and how far from it a value must lie to be unusual.
struct Usual {
    double median = 0.0;
    double scale = 1.0;  // always above 0

    // How many scales `value` lies above the median.
    double Deviations(double value) const { return (value - median) / scale; }
};

// The median, and the larger of two scales: 1.4826 median absolute deviations, which no event inflates that
// fills less than half of the values, and 2 % of the median. A constant series of median 0 has the scale 1.
// `values` must not be empty.
Usual UsualOf(std::vector<double> values);

// The middle value, or the mean of the two middle ones. `values` must not be empty.
double MedianOf(std::vector<double>& values);

double MeanOf(const std::vector<double>& values);

// How high the highest of so many values comes to lie by chance, once in thirty times: if their tail goes on
// as in their highest twentieth, of which half lie as far above its begin as half of these above them, and so
// on. Normal values reach 5 scales so, others more. A tail that is all but flat from its middle on goes no
// higher. 0 for fewer than 80 values, which tell no tail.
double HighestByChance(std::vector<double> values);

}  // namespace explain
