#pragma once

// Macros that toolkits and system headers may define before a host includes the kit.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#define emit
#define slots
#define signals public
#define foreach for
#define OUT
#define IN
#define None 0L
#define Bool int
#define Status int
#define ERROR 0
#define DELETE (0x00010000L)
