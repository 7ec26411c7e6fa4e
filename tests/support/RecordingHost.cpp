#include "support/RecordingHost.h"

void RecordingHost::yield()
{
    ++yields;
    if (stop && stopAfter > 0 && yields == stopAfter)
        stop();
}
