// A manager that watches its own steps: it puts itself between the security manager and the composition, and tells what
// an answer came to, which the text of a filter alone does not say.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "tools/acfilter/WhatIf.h"

enum class Outcome { unrestricted, restricted, hideAll, unknownUser };

/// "unrestricted", "restricted", "hide-all" or "default".
const char* NameOf(Outcome outcome);

struct Request {
    std::string userName;
    std::string ipAddress;
    bool withoutLogin = false;
};

struct Answer {
    std::string filter;
    Outcome outcome;
};

class WatchingManager : public SECM_AccessControlManager {
public:
    /// Users have the attributes and permissions that `tried` gives them.
    explicit WatchingManager(const std::string& repository, WhatIf tried = {});
    ~WatchingManager() override;

    bool InitSecurityConnection(const char* connectionText, unsigned connectionValue) override;

    /// The filter is the one that the manager answers. Needs a connection; throws what a request throws.
    Answer Ask(const Request& request);

protected:
    // What is noticed of a request, in the order in which it happens. `user` is null when there is no such user.
    virtual void NoticeUser(UserDetailsInterface* user);
    virtual void NoticeField(bool isHeld);
    virtual void NoticeResources(bool areTold, const std::vector<std::string>& resources);
    virtual void NoticeAttribute(const char* name, const char* value);

    std::string HandleSingleConditionForUser(const ConditionDefinition& condition,
                                             const std::vector<std::string>& values,
                                             UserDetailsInterface* userDetails) override;
    std::string HandleSingleCondition(const ConditionDefinition& condition, const std::vector<std::string>& values,
                                      SecurityManagerInterface* secmInterface) override;
    bool CheckPermissionInList(PermissionListInterface* permissionList, const PermissionBase& permission) override;
    bool GetResourcesFromList(PermissionListInterface* permissionList, const std::string& permissionName,
                              unsigned permissionValue, std::vector<std::string>& resources) override;

    WhatIf whatIf;

private:
    // Stand before what the security libraries gave, and pass everything on.
    class WatchedSecurityManager;
    class WatchedAdministration;
    class WatchedDetails;

    std::unique_ptr<WatchedDetails> watchedDetails;
    std::unique_ptr<WatchedSecurityManager> watchedSecurityManager;
    std::unique_ptr<WatchedAdministration> watchedAdministration;
    bool isKnown = false;
    bool wouldHideAll = false; // if the request ended now
};
