// Maps a code to its display name, from one code table of the configuration.
// Initialize reads the table once; MapValue does not read the configuration.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <map>
#include <string>

class AccessControl_CodesDisplayNameFunction : public AccessControl_ValuesFunctionInterface {
public:
    static AccessControl_ValuesFunctionInterface* CreateInstance();

    bool Initialize(std::string codeTable) override;

    /// Maps an unknown code to the empty text, never to itself: a code without a display name must not reach the
    /// filter. Always returns true.
    bool MapValue(const std::string& code, std::string& displayName) override;

    ~AccessControl_CodesDisplayNameFunction() override;

private:
    std::map<std::string, std::string> displayNames;
};
