#include "ZRMPlatform/Ports/ZRMPlatform.h"
