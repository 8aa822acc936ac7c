// Compiled into each library that needs the two operations, so that neither depends on the other's copy.
#include "platform/security_manager/SecurityManagerInterface.h"

SecurityManagerInterface::SecurityManagerInterface() = default;
SecurityManagerInterface::~SecurityManagerInterface() = default;
