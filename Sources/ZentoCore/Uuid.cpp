#include "ZentoCore/Uuid.h"

#include <random>

namespace zento {

std::string makeUuid()
{
    thread_local std::random_device source; // the system's own: no seed that could repeat
    std::string uuid = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    for (char& c : uuid) {
        const unsigned bits = source() & 0xfU;
        if (c == 'x')
            c = "0123456789abcdef"[bits];
        else if (c == 'y')
            c = "89ab"[bits & 3U];
    }
    return uuid;
}

} // namespace zento
