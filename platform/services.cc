#include "platform/services.h"
