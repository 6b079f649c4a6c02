#include "ZentoCapture/ThreadName.h"

#include <pthread.h>

namespace zento {

void nameThread(const char* name)
{
    pthread_setname_np(pthread_self(), name);
}

} // namespace zento
