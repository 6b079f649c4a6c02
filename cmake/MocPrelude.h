// Read by moc before every header. It stops at "namespace std _GLIBCXX_VISIBILITY(default)" where a
// standard header has that before the one which defines the macro (<compare>, <chrono>).
#define _GLIBCXX_VISIBILITY(V)
