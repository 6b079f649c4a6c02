#pragma once

namespace zento::bench {

/// Opens the application in this process, on the display of its environment, and prints how long
/// it took from the time in ZENTO_BENCH_BEGUN (nanoseconds of the steady clock) until the window
/// shows the library: "start SECONDS".
int visitStart(int argc, char** argv);

/// Opens it, lists the library anew, records and exports, and prints the longest pause of the main
/// thread in each: "NAME MILLISECONDS OF_THEM_WORK".
int visitPauses(int argc, char** argv);

/// Opens the recording of ZENTO_BENCH_RECORDING, whose narration is then listened to, and moves the
/// playhead about until it is transcribed. Prints as `visitPauses`.
int visitListening(int argc, char** argv);

} // namespace zento::bench
