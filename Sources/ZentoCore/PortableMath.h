#pragma once

// Elementary functions whose results are the same bits on every IEEE machine: the C library's own
// pick the processor's fused instructions where it has them, and differ in the last bit. Within two
// units in the last place of the true value over the stated ranges. Argument reduction after Cody
// and Waite, "Software Manual for the Elementary Functions", 1980; polynomials of Taylor.

namespace zento::portable {

double exp(double x);  // x in [-700, 700]
double sin(double x);  // x in [-1e5, 1e5]
double tanh(double x); // absolute error: an x near zero keeps no more bits than 1 + x has
double exp2(double x); // x in [-1000, 1000]

} // namespace zento::portable
