// Composing a filter from permissions in memory, compared with only appending the pieces of its text.
#include "bench/BenchManager.h"
#include "bench/Measure.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace secm::bench {

namespace {

void ComposeLogIn(benchmark::State& state, const Workload& workload)
{
    BenchManager manager(workload);
    SECM_AccessControlInterface& accessControl = manager;
    const std::string user = workload.name;
    const std::string address = workloadAddress;
    Measure(state, [&] { return accessControl.GetAccessControlFilter(user, address); });
}

void ComposeByName(benchmark::State& state, const Workload& workload)
{
    BenchManager manager(workload);
    SECM_AccessControlInterface& accessControl = manager;
    const std::string user = workload.name;
    Measure(state, [&] { return accessControl.GetAccessControlFilter(user); });
}

void Limit(benchmark::State& state, const Workload& workload)
{
    BenchManager manager(workload);
    SECM_AccessControlInterface& accessControl = manager;
    const std::string filter = accessControl.GetAccessControlFilter(workload.name);
    std::vector<std::string_view> pieces;
    std::string_view rest = filter;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\''), rest.size() - 1) + 1;
        pieces.push_back(rest.substr(0, end));
        rest.remove_prefix(end);
    }
    Measure(state, [&] {
        std::string text;
        text.reserve(filter.size());
        for (const std::string_view piece : pieces) {
            text.append(piece);
        }
        return text;
    });
}

const bool registered = [] {
    for (const Workload& workload : workloads) {
        Register("Compose/LogIn", ComposeLogIn, workload);
        Register("Compose/ByName", ComposeByName, workload);
        Register("Limit", Limit, workload);
    }
    for (const auto& [suffix, kind] : {std::pair("site-issuer", ValueKind::siteIssuer),
                                       {"code-name", ValueKind::codeName},
                                       {"own", ValueKind::own}}) {
        Workload workload = typicalWorkload;
        workload.name = suffix;
        workload.kind = kind;
        Register("Compose/LogIn/typical", ComposeLogIn, workload);
        Register("Compose/ByName/typical", ComposeByName, workload);
        Register("Limit/typical", Limit, workload);
    }
    for (Workload workload : {smallWorkload, typicalWorkload, wideWorkload}) {
        workload.isHeldOutright = true;
        Register("Compose/LogIn/held", ComposeLogIn, workload);
        Register("Compose/ByName/held", ComposeByName, workload);
    }
    return true;
}();

} // namespace

} // namespace secm::bench
