// Plays a case on the module and on a plain model of it: filters, messages, log-ins, log-outs and releases must be the
// same, byte for byte. With FUZZ_SHOW set, prints each case before it is played.
#include "fuzz/FilterModel.h"
#include "fuzz/Fuzzing.h"

#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include <cstdio>
#include <cstdlib>

namespace secm::fuzzing {

using testing::outside, testing::Refusal;

namespace {

class OpenManager : public SECM_AccessControlManager {
public:
    using SECM_AccessControlManager::CheckPermissionInList, SECM_AccessControlManager::fieldDefinitions,
        SECM_AccessControlManager::GetAccessControlFilter, SECM_AccessControlManager::GetResourcesFromList,
        SECM_AccessControlManager::HandleSingleConditionForUser, SECM_AccessControlManager::SECM_AccessControlManager,
        SECM_AccessControlManager::SplitCommaList;

    // Counts the conditions of all definitions; null when there are fewer.
    const ConditionDefinition* FindCondition(std::size_t n) const
    {
        for (const auto& field : fieldDefinitions) {
            if (n < field->conditions.size()) {
                return &field->conditions[n];
            }
            n -= field->conditions.size();
        }
        return nullptr;
    }
};

std::string Joined(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += "\n  " + Shown(text);
    }
    return joined;
}

class Play {
public:
    explicit Play(const Case& played) : world(played), platform(played), model(played), manager(played.repository) {}

    void Run()
    {
        Compare("after construction", manager.GetValueMultiplicityDelimiter(), model.ListDelimiter());
        if (world.connects) {
            const bool connected = manager.InitSecurityConnection("connection", 7);
            Compare("after connecting", connected ? "connected" : "refused", model.Connect() ? "connected" : "refused");
        }
        for (std::size_t n = 0; n < world.requests.size(); ++n) {
            Ask(world.requests[n], "request " + std::to_string(n + 1));
        }
        outside.userDetails = outside.resources = outside.permissionLists = {};
        for (std::size_t n = 0; n < world.steps.size(); ++n) {
            Take(world.steps[n], "step " + std::to_string(n + 1));
        }
    }

private:
    // Sets what lies outside, before the manager is made.
    struct CasePlatform {
        explicit CasePlatform(const Case& played)
        {
            outside = testing::Outside();
            outside.configuration = played.configuration;
            outside.logLevel = played.logLevel;
            outside.securityManager = played.securityManager;
            outside.administration = played.administration;
            outside.users = played.users;
        }
    };

    void Ask(const Request& request, const std::string& where)
    {
        outside.userDetails = {request.missingDetails};
        outside.resources = {request.failedResources};
        outside.permissionLists = {request.hasList ? 0 : Refusal::every};
        std::string filter;
        if (request.road == Road::login) {
            filter = manager.GetAccessControlFilter(request.user, request.address);
        } else if (request.road == Road::administration) {
            filter = manager.GetAccessControlFilter(request.user);
        } else {
            static testing::User unknown;
            const auto user = outside.users.find(request.user);
            testing::OutsideSecurityManager().LogIn(user != outside.users.end() ? &user->second : &unknown);
            filter =
                manager.GetAccessControlFilter(request.hasInterface ? &testing::OutsideSecurityManager() : nullptr);
        }
        Compare(where, filter, model.Filter(request));
    }

    void Take(const Step& step, const std::string& where)
    {
        testing::User& user = outside.users.begin()->second;
        testing::InMemoryPermissionList list(user.permissions);
        std::vector<std::string> entries = step.values;
        manager.SplitCommaList(step.text, entries);
        std::vector<std::string> expected = step.values;
        for (const std::string& entry : model.Split(step.text)) {
            expected.push_back(entry);
        }
        Compare(where + ", split", Joined(entries), Joined(expected));

        Compare(where + ", held", manager.CheckPermissionInList(&list, step.sought) ? "held" : "not held",
                model.ListHolds(user.permissions, step.sought) ? "held" : "not held");
        std::vector<std::string> resources = step.values;
        manager.GetResourcesFromList(&list, step.sought.name(), step.sought.value(), resources);
        expected = step.values;
        for (const std::string& resource :
             model.ListResources(user.permissions, step.sought.name(), step.sought.value())) {
            expected.push_back(resource);
        }
        Compare(where + ", resources", Joined(resources), Joined(expected));

        for (std::size_t n = 0; manager.FindCondition(n) != nullptr; ++n) {
            Compare(where + ", condition " + std::to_string(n),
                    manager.HandleSingleConditionForUser(*manager.FindCondition(n), step.values, &user),
                    model.FilledCondition(n, step.values, user).value_or("no such condition"));
        }
    }

    void Compare(const std::string& where, const std::string& found, const std::string& expected)
    {
        if (found != expected || outside.calls.record != model.record) {
            Fail(where + ": the module answered\n  " + Shown(found) + "\nand not\n  " + Shown(expected) +
                 "\nand went outside with" + Joined(outside.calls.record) + "\nand not with" + Joined(model.record) +
                 "\nin the case\n" + Shown(world));
        }
    }

    const Case& world;
    CasePlatform platform;
    FilterModel model;
    OpenManager manager;
};

} // namespace

} // namespace secm::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool isShown = std::getenv("FUZZ_SHOW") != nullptr;
    const secm::fuzzing::Case world = secm::fuzzing::MakeCase(data, size);
    if (isShown) {
        std::fputs(Shown(world).c_str(), stderr);
    }
    secm::fuzzing::Play(world).Run();
    return 0;
}
