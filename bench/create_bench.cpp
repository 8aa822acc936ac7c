// Reading a configuration again and making a manager, compared with the TOML library's parse of the same file.
#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "bench/ConfigurationFile.h"
#include "bench/Measure.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include <toml++/toml.h>

#include <memory>
#include <stdexcept>

namespace secm::bench {

namespace {

constexpr Workload definitionWorkloads[] = {{"10", 10, 1, 1}, {"100", 100, 1, 1}, {"1000", 1000, 1, 1}};
constexpr Workload tableWorkloads[] = {
    {"Sites/1000", 1, 1, 1000, ValueKind::siteIssuer},     {"Sites/10000", 1, 1, 10000, ValueKind::siteIssuer},
    {"Sites/100000", 1, 1, 100000, ValueKind::siteIssuer}, {"Codes/1000", 1, 1, 1000, ValueKind::codeName},
    {"Codes/10000", 1, 1, 10000, ValueKind::codeName},     {"Codes/100000", 1, 1, 100000, ValueKind::codeName},
};

class CreatedManager : public SECM_AccessControlManager {
public:
    CreatedManager() : SECM_AccessControlManager(workloadRepository) {}

    // A definition that is left out would make the benchmark too fast.
    bool IsWhole(const Workload& workload)
    {
        if (fieldDefinitions.size() != static_cast<std::size_t>(workload.fields)) {
            return false;
        }
        const ConditionDefinition& condition = fieldDefinitions.back()->conditions.back();
        return workload.kind == ValueKind::plain ||
               ApplyValuesFunction(LastValueOf(workload), condition) == LastMappedValueOf(workload);
    }
};

void Create(benchmark::State& state, const Workload& workload)
{
    const ConfigurationFile file(ConfigurationOf(workload));
    Measure(state, [] {
        CFG_Factory::Reload();
        return std::make_unique<CreatedManager>();
    });
    if (!CreatedManager().IsWhole(workload)) {
        throw std::runtime_error(std::string("the manager of Create/") + workload.name + " lacks definitions");
    }
}

void Parse(benchmark::State& state, const Workload& workload)
{
    const std::string content = ConfigurationOf(workload);
    Measure(state, [&] { return toml::parse(content); });
}

const bool registered = [] {
    const auto add = [](const Workload& workload) {
        Register("Create", Create, workload);
        Register("Parse", Parse, workload);
    };
    for (const Workload& workload : definitionWorkloads) {
        add(workload);
    }
    for (const Workload& workload : tableWorkloads) {
        add(workload);
    }
    return true;
}();

} // namespace

} // namespace secm::bench
