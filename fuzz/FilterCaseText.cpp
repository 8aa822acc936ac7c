// Cases as text.
#include "fuzz/FilterCase.h"
#include "fuzz/Fuzzing.h"

namespace secm::fuzzing {

using testing::Offer;

namespace {

using Texts = std::vector<std::string>;
using fuzzing::Shown;

std::string Shown(const PermissionBase& permission)
{
    return Shown(permission.name()) + " " + std::to_string(permission.value()) + " " +
           (permission.resource() != nullptr ? Shown(permission.resource()) : "without resource") +
           (permission.IsConditional() ? " conditional" : "");
}

std::string Shown(Offer offer)
{
    return offer == Offer::connects ? "connects" : offer == Offer::refuses ? "refuses" : "is missing";
}

std::string Shown(const Texts& texts)
{
    std::string shown;
    for (const std::string& text : texts) {
        shown += " " + Shown(text);
    }
    return shown;
}

std::string Shown(const testing::Configuration& configuration)
{
    std::string shown = std::string("configuration") + (configuration.exists ? "" : " is not there") + "\n";
    for (const auto& [path, names] : configuration.nodes) {
        shown += "  node " + Shown(path) + (names ? Shown(*names) : " (gives no list)") + "\n";
    }
    for (const auto& [path, value] : configuration.values) {
        shown += "  " + Shown(path) + " = " + Shown(value) + "\n";
    }
    return shown;
}

std::string Shown(const std::string& userName, const testing::User& user)
{
    std::string shown = "user " + Shown(userName) + " of group " + Shown(user.group) + "\n";
    for (const auto& [name, value] : user.attributes) {
        shown += "  attribute " + Shown(name) + " = " + Shown(value) + "\n";
    }
    for (const PermissionBase& permission : user.permissions) {
        shown += "  permission " + Shown(permission) + "\n";
    }
    return shown;
}

std::string Shown(const Request& request)
{
    const char* const roads[] = {"login", "own login", "administration"};
    return std::string("request by ") + roads[static_cast<int>(request.road)] + " for " + Shown(request.user) +
           " from " + Shown(request.address) + (request.hasInterface ? "" : ", no interface") +
           (request.hasList ? "" : ", no list") + ", failing: resources " + std::to_string(request.failedResources) +
           ", details " + std::to_string(request.missingDetails) + "\n";
}

} // namespace

std::string Shown(const Case& shownCase)
{
    std::string shown = "repository " + Shown(shownCase.repository) + "\n" + Shown(shownCase.configuration);
    for (const auto& [name, user] : shownCase.users) {
        shown += Shown(name, user);
    }
    shown += "log level " + std::to_string(shownCase.logLevel) + "\n";
    shown += std::string(shownCase.connects ? "connects" : "does not connect") + ": security manager " +
             Shown(shownCase.securityManager) + ", administration " + Shown(shownCase.administration) + "\n";
    for (const Request& request : shownCase.requests) {
        shown += Shown(request);
    }
    for (const Step& step : shownCase.steps) {
        shown +=
            "step with " + Shown(step.text) + ", values" + Shown(step.values) + ", sought " + Shown(step.sought) + "\n";
    }
    return shown;
}

} // namespace secm::fuzzing
