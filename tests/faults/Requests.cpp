#include "tests/faults/Requests.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"

#include <cstdio>
#include <exception>
#include <memory>

namespace {

constexpr unsigned timeoutSeconds = 1;

// Each of these users would see more if a part were lost: an attribute, one of two fields, or the restriction itself.
constexpr struct {
    const char* user;
    const char* filter;
} expectations[] = {
    {"omar", "author = ('e17')"},
    {"nils", "department = ('Finance') AND kind IN ('contract', 'invoice')"},
    {"tom", "1 = 0"},
};

Result Refused(const char* reason)
{
    std::fprintf(stderr, "refused: %s\n", reason);
    return Result::refused;
}

} // namespace

Result MakeRequests(const std::string& connection, const std::string& road)
try {
    std::string repository = "documents";
    const std::unique_ptr<SECM_AccessControlInterface> manager(SECM_AccessControlInterface::CreateInstance(repository));
    const auto connects = [&] { return manager->InitSecurityConnection(connection.c_str(), timeoutSeconds); };
    if (!connects() && !connects()) {
        return Refused("no connection");
    }
    Result result = Result::right;
    for (const auto& [user, expected] : expectations) {
        try {
            const std::string filter = road == "login" ? manager->GetAccessControlFilter(user, "")
                                                       : manager->GetAccessControlFilter(std::string(user));
            if (filter != expected) {
                std::fprintf(stderr, "wrong: the filter of %s is '%s'\n", user, filter.c_str());
                return Result::wrong;
            }
        } catch (const std::exception& error) { // the next request must be right or refused too
            result = Refused(error.what());
        }
    }
    return result;
} catch (const std::exception& error) {
    return Refused(error.what());
}
