#include "platform/accessible.h"

UINT OrvikDescribeMessage() {
    static const UINT s_message = RegisterWindowMessageA("OrvikDescribe");
    return s_message;
}

UINT OrvikActMessage() {
    static const UINT s_message = RegisterWindowMessageA("OrvikAct");
    return s_message;
}
