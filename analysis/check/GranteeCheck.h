#pragma once

#include "analysis/check/CountByName.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/UserDirectory.h"
#include "platform/security_manager/SECM_Listing.h"

#include <set>
#include <string>

namespace secm::analysis {

/// Whether grants and attributes belong to users and groups that exist. `directory` must outlive it.
class GranteeCheck {
public:
    explicit GranteeCheck(const UserDirectory& directory) : known(directory) {}

    void Check(const SECM_GrantRow& row);
    void Check(const SECM_Attribute& attribute);
    void Report(FindingSink& sink) const;

private:
    void CheckGrantee(const SECM_Grant& grant);

    void AbsentUsers(FindingSink& sink) const;
    void AbsentGroups(FindingSink& sink) const;
    void WrongTypes(FindingSink& sink) const;
    void AttributesOfAbsentUsers(FindingSink& sink) const;
    void SameNames(FindingSink& sink) const;
    void ReservedNames(FindingSink& sink) const;
    void MisspeltGroups(FindingSink& sink) const;

    const UserDirectory& known;
    std::set<UserDirectory::Number> grantedGroups;
    CountByName absentUsers;
    CountByName absentGroups;
    CountByName groupsAsUsers; // grants with grantee_type 'user' to names that only groups have
    CountByName usersAsGroups;
    CountByName unknownTypes; // by grantee_type
    CountByName absentOwners; // of attributes
    CountByName ofBothTypes;  // grants to names that a user and a group have
    CountByName reserved;
};

} // namespace secm::analysis
