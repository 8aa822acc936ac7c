#include "bench/Workload.h"

#include <cstdio>

namespace secm::bench {

namespace {

template <class... Arguments>
std::string Formatted(const char* format, Arguments... arguments)
{
    char text[200];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

std::string Value(const Workload& workload, int field, int index)
{
    return Formatted("site%04d", (field - 1) * workload.values + index);
}

int TableSize(const Workload& workload)
{
    return workload.fields * workload.values;
}

std::string MappedValue(const Workload& workload, int index)
{
    return Formatted(workload.kind == ValueKind::siteIssuer ? "ISSU%04d" : "code%04d", index);
}

// The table of the workload's values function: a name for each value.
std::string TableOf(const Workload& workload)
{
    std::string table;
    for (int index = 1; index <= TableSize(workload); ++index) {
        if (workload.kind == ValueKind::siteIssuer) {
            table += Formatted("[zarvona.system.sites.site%04d.applications.norvale.pix.assigning_authority]\n"
                               "value = '%s'\n",
                               index, MappedValue(workload, index).c_str());
        } else if (workload.kind == ValueKind::codeName) {
            table += Formatted("[zarvona.system.applications.codes.t.site%04d]\ndisplay_name = '%s'\n", index,
                               MappedValue(workload, index).c_str());
        }
    }
    return table;
}

} // namespace

std::string ConfigurationOf(const Workload& workload)
{
    const std::string top = "[zarvona.system.applications.securitymanager.unified_access_control.";
    std::string text = top + "repositories.bench]\nhide_all_filter = '1 = 0'\ndefault_filter = '1 = 0'\n"
                             "filter_delimiter = ' AND '\nsingle_equal_operator = '='\n"
                             "multiple_equal_operator = 'IN'\nvalue_multiplicity_delimiter = \"','\"\n";
    for (int field = 1; field <= workload.fields; ++field) {
        text += top + Formatted("fields.f%02d.bench]\npermission_name = 'f%02d'\npermission_value = 1\n"
                                "conditions_delimiter = ' OR '\n",
                                field, field);
        if (workload.kind == ValueKind::own) {
            text += "my_field = '$own$'\n";
        }
        for (int condition = 1; condition <= workload.conditions; ++condition) {
            text += Formatted("condition%d = \"f%02dc%d_id %%equal_operator%% ('%%values%%')\"\n", condition, field,
                              condition);
            if (workload.kind == ValueKind::siteIssuer) {
                text += Formatted("values_function%d = 'SiteIdToIssuer'\n", condition);
            } else if (workload.kind == ValueKind::codeName) {
                text += Formatted("values_function%d = 'CodeToDisplayName'\nvalues_function_config_string%d = 't'\n",
                                  condition, condition);
            }
        }
    }
    return text + TableOf(workload);
}

std::string LastValueOf(const Workload& workload)
{
    return Value(workload, workload.fields, workload.values);
}

std::string LastMappedValueOf(const Workload& workload)
{
    return MappedValue(workload, TableSize(workload));
}

std::vector<PermissionBase> PermissionsOf(const Workload& workload)
{
    std::vector<PermissionBase> permissions;
    for (int field = 1; field <= workload.fields; ++field) {
        const std::string name = Formatted("f%02d", field);
        const int count = field % 2 == 0 ? 1 : workload.values;
        if (workload.isHeldOutright) {
            permissions.emplace_back(name.c_str(), 1U, nullptr, false);
        } else {
            for (int index = 1; index <= count; ++index) {
                const std::string resource = workload.kind == ValueKind::own ? "%my%" : Value(workload, field, index);
                permissions.emplace_back(name.c_str(), 1U, resource.c_str(), false);
            }
        }
    }
    return permissions;
}

} // namespace secm::bench
