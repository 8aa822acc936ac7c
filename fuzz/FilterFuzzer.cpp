// The module on a platform that a case describes, against a plain model of it: every filter, every message and every
// log-in and release must be the same, byte for byte. With FUZZ_SHOW set, every case is printed before it is played.
#include "fuzz/FilterModel.h"
#include "fuzz/FilterPlatform.h"
#include "fuzz/Fuzzing.h"

#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include <cstdio>
#include <cstdlib>

namespace {

class OpenManager : public SECM_AccessControlManager {
public:
    using SECM_AccessControlManager::CheckPermissionInList, SECM_AccessControlManager::fieldDefinitions,
        SECM_AccessControlManager::GetAccessControlFilter, SECM_AccessControlManager::GetResourcesFromList,
        SECM_AccessControlManager::HandleSingleConditionForUser, SECM_AccessControlManager::SECM_AccessControlManager,
        SECM_AccessControlManager::SplitCommaList;

    // Of all definitions, one after the other; null when there are not as many.
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
    explicit Play(const Case& played) : world(played), stageOfCase(played), model(played), manager(played.repository) {}

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
        const Request none;
        stage.request = &none;
        for (std::size_t n = 0; n < world.steps.size(); ++n) {
            Take(world.steps[n], "step " + std::to_string(n + 1));
        }
    }

private:
    // What members of the manager's construction need.
    struct StageOfCase {
        explicit StageOfCase(const Case& played)
        {
            stage = Stage();
            stage.world = &played;
        }
    };

    void Ask(const Request& request, const std::string& where)
    {
        stage.request = &request;
        stage.resourceQueries = 0;
        stage.detailQueries = 0;
        std::string filter;
        if (request.road == Road::login) {
            filter = manager.GetAccessControlFilter(request.user, request.address);
        } else if (request.road == Road::administration) {
            filter = manager.GetAccessControlFilter(request.user);
        } else {
            static const User unknown;
            const User* user = world.FindUser(request.user);
            user = user != nullptr ? user : &unknown;
            filter = manager.GetAccessControlFilter(OwnSecurityManager(request.hasInterface ? user : nullptr));
        }
        Compare(where, filter, model.Filter(request));
    }

    void Take(const Step& step, const std::string& where)
    {
        const User& user = world.users.front();
        PermissionList list(user.grants);
        std::vector<std::string> entries = step.values;
        manager.SplitCommaList(step.text, entries);
        std::vector<std::string> expected = step.values;
        for (const std::string& entry : model.Split(step.text)) {
            expected.push_back(entry);
        }
        Compare(where + ", split", Joined(entries), Joined(expected));

        Compare(where + ", held", manager.CheckPermissionInList(&list, PermissionOf(step.sought)) ? "held" : "not held",
                model.ListHolds(user.grants, step.sought) ? "held" : "not held");
        std::vector<std::string> resources = step.values;
        manager.GetResourcesFromList(&list, step.sought.name, step.sought.value, resources);
        expected = step.values;
        for (const std::string& resource : model.ListResources(user.grants, step.sought.name, step.sought.value)) {
            expected.push_back(resource);
        }
        Compare(where + ", resources", Joined(resources), Joined(expected));

        UserDetails details;
        details.user = &user;
        for (std::size_t n = 0; manager.FindCondition(n) != nullptr; ++n) {
            Compare(where + ", condition " + std::to_string(n),
                    manager.HandleSingleConditionForUser(*manager.FindCondition(n), step.values, &details),
                    model.FilledCondition(n, step.values, user).value_or("no such condition"));
        }
    }

    void Compare(const std::string& where, const std::string& found, const std::string& expected)
    {
        if (found != expected || stage.journal != model.journal) {
            Fail(where + ": the module answered\n  " + Shown(found) + "\nand not\n  " + Shown(expected) +
                 "\nand went outside with" + Joined(stage.journal) + "\nand not with" + Joined(model.journal) +
                 "\nin the case\n" + Shown(world));
        }
    }

    const Case& world;
    StageOfCase stageOfCase;
    FilterModel model;
    OpenManager manager;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool isShown = std::getenv("FUZZ_SHOW") != nullptr;
    const Case world = MakeCase(data, size);
    if (isShown) {
        std::fputs(Shown(world).c_str(), stderr);
    }
    Play(world).Run();
    return 0;
}
