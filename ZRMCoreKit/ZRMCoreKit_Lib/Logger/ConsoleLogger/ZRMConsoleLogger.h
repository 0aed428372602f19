// A logger that writes to the process's console log.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"

class ZRMConsoleLogger : public ZRMLogger {};
