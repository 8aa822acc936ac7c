// Maps a code to its display name, from one code table of the configuration.
// The table is read once; mapping never goes back to the repository.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <map>
#include <string>

class AccessControl_CodesDisplayNameFunction : public AccessControl_ValuesFunctionInterface {
public:
    static AccessControl_ValuesFunctionInterface* CreateInstance();

    bool Initialize(std::string codeTable) override;

    /// An unknown code maps to the empty text, never to itself: what has no name must not reach the filter.
    bool MapValue(const std::string& code, std::string& displayName) override;

    ~AccessControl_CodesDisplayNameFunction() override;

private:
    std::map<std::string, std::string> displayNames;
};
