#pragma once

#include "analysis/check/AskedPermissions.h"
#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"
#include "analysis/check/SubstitutionCheck.h"
#include "analysis/check/UserDirectory.h"
#include "platform/security_manager/SECM_Listing.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace secm::analysis {

/// What a user's own grants, those of the user's group and the user's attributes come to together: grants without the
/// bits that a field asks for, outright grants that make others useless, attributes that are missing. Memory grows with
/// the users, the groups and the permissions that are asked for, but not with the grants. Its arguments must outlive
/// it.
class UserGrantCheck {
public:
    UserGrantCheck(const std::vector<CheckedRepository>& repositories, const AskedPermissions& permissions,
                   const UserDirectory& directory, ConfiguredNames& names);

    /// `permission` is the number of the grant's permission.
    void Check(const SECM_Grant& grant, std::size_t permission);
    void Check(const SECM_Attribute& attribute);
    void Report(std::vector<Finding>& findings);

private:
    struct Row {
        long long position;
        std::uint32_t bits;
    };

    // The grants of one permission to one grantee.
    struct Held {
        std::uint32_t outrightBits = 0;           // of all outright grants together
        std::optional<Row> outright;              // the first
        std::optional<Row> resource;              // the first with bits that are asked for
        std::optional<Row> other;                 // the first without
        AskedPermissions::ValueSet values = 0;    // those that grants of any resource satisfy
        AskedPermissions::ValueSet ownValues = 0; // those that grants of "%my%" satisfy
        std::optional<Row> own;                   // the first of "%my%"
        std::uint32_t ownCount = 0;
        std::uint32_t otherCount = 0; // grants of other resources
    };

    // An attribute that a token stands for, in one condition.
    struct Token {
        std::string attribute;
        bool isMandatory;
        CFG_Place place;
        SubstitutionCheck substitution;
        FirstAndCount lacking;
    };

    struct Attribute {
        bool exists = false;       // any user has it, perhaps with the empty text
        std::vector<bool> holders; // users with another text
    };

    struct Field {
        const CheckedRepository& repository;
        const CheckedDefinition& definition;
        std::size_t permission;
        AskedPermissions::ValueSet value;
        std::string attribute{}; // that my_field names; empty: none
        std::vector<Token> tokens{};
        FirstAndCount nearMisses{};
        std::string nearMissRemedy{}; // for the first
        FirstAndCount useless{};
        FirstAndCount lacking{};      // the attribute of my_field, and have other values
        FirstAndCount lackingHides{}; // the attribute of my_field, and have no other value
        FirstAndCount ownTwice{};
        bool isGranted = false;
    };

    using Grantee = std::uint64_t; // the number of the user or the group, and which of both it is

    std::optional<Grantee> GranteeOf(const SECM_Grant& grant) const;
    const Held& Find(std::optional<Grantee> grantee, std::size_t permission) const;
    bool Has(UserDirectory::Number user, const std::string& attribute) const;

    void AddField(const CheckedRepository& repository, const CheckedDefinition& definition, ConfiguredNames& names);
    void Consider(UserDirectory::Number user, Field& field) const;
    void AddNearMiss(UserDirectory::Number user, const Held& own, const Held& ofGroup, Field& field) const;
    void ConsiderOwnValue(UserDirectory::Number user, const Held& own, const Held& ofGroup, Field& field) const;
    static void ReportPermission(const Field& field, FindingSink& sink);
    void ReportField(const Field& field, FindingSink& sink) const;

    const AskedPermissions& asked;
    const UserDirectory& known;
    std::vector<Field> fields;
    std::unordered_map<std::uint64_t, Held> held;                      // by grantee and permission
    std::map<std::size_t, AskedPermissions::ValueSet> ofUnknownGroups; // granted to groups that are not listed
    std::map<std::string, Attribute> attributes;                       // those that fields ask for, by name
};

} // namespace secm::analysis
