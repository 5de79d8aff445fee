#include "platform/host/CurrentHost.h"

namespace
{
HostApplication *host = nullptr;
}

HostApplication *currentHost()
{
    return host;
}

void setCurrentHost(HostApplication *newHost)
{
    host = newHost;
}
