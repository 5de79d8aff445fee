#pragma once

class HostApplication;

// The browser that loaded this plug-in; null until it has (and in tests without one).
HostApplication *currentHost();
void setCurrentHost(HostApplication *host);
