#pragma once

#include "analysis/check/AskedPermissions.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"
#include "platform/security_manager/SECM_Listing.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

/// Grants that repeat another one, that lack bits which the grantee has for other resources, or whose resources look
/// alike or hold those of several others. Compares hashes of texts: memory grows by less than 100 bytes with each
/// grant, however long the texts are.
class RepeatedGrantCheck {
public:
    explicit RepeatedGrantCheck(const AskedPermissions& permissions) : asked(permissions) {}

    /// `permission` is the number of the grant's permission.
    void Check(const SECM_Grant& grant, std::size_t permission);
    void Report(FindingSink& sink);

private:
    struct Row {
        std::size_t granteeHash; // with the permission
        std::size_t resourceHash;
        long long position;
        std::uint32_t bits;
        bool isOutright;
        bool isConditional;
        bool isAskedFor; // a field asks for no more bits
    };
    using Rows = std::vector<Row>;

    struct Resource {
        std::size_t hash;
        long long position;
    };

    // A resource that may list several.
    struct Candidate {
        std::size_t permission;
        long long position;
        std::string resource;
    };
    static constexpr std::size_t mostCandidates = 1000;

    void FindLists(FindingSink& sink) const;
    void CompareAppearance(const SECM_Grant& grant, std::size_t permission, std::size_t resourceHash);
    // The rows from `first` to `last` have the same grantee and permission.
    static void FindRepeated(Rows::const_iterator first, Rows::const_iterator last, FirstAndCount& repeated);
    static void FindOtherBits(Rows::const_iterator first, Rows::const_iterator last, FirstAndCount& otherBits);

    const AskedPermissions& asked;
    Rows rows;
    std::unordered_map<std::size_t, Resource> firstOfAppearance; // by the permission and the appearance
    std::vector<Candidate> candidates;                           // the first
    FirstAndCount alike;
};

} // namespace secm::analysis
