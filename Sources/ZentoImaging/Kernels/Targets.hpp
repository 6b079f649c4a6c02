#pragma once

// What every kernel file sets before it includes Highway: the tables of the kernels are laid out
// for vectors whose size is known when they are compiled.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
