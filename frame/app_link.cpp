#include "frame/app_link.h"

namespace {
IOrvikApp* g_app = nullptr;
}

int Connect2Application(IOrvikApp* app) {
    g_app = app;
    return 1;
}

IOrvikApp* GetOrvikApp() { return g_app; }
