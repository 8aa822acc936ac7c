#include "tools/acfilter/commands/RowData.h"

#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Errors.h"

#include <fmt/format.h>

#include <string_view>

namespace secm::acfilter {

namespace {

constexpr std::string_view commandScheme = "command:";

bool IsCommand(const DataOptions& options)
{
    return options.connection.starts_with(commandScheme);
}

} // namespace

void RequireDataUse(const DataOptions& options)
{
    const bool hasColumns = !options.table.empty() || !options.key.empty();
    if (!options.IsGiven()) {
        if (hasColumns || options.record) {
            throw UsageError("--table, --key and --record need --data, which names the rows");
        }
        return;
    }
    if (IsCommand(options)) {
        if (hasColumns) {
            throw UsageError("--table and --key are for SQL; a command knows its rows and their keys");
        }
        return;
    }
    if (options.table.empty()) {
        throw UsageError("--data needs --table, the table or view whose rows the filters are for");
    }
    if (options.record && options.key.empty()) {
        throw UsageError("--record needs --key, the column that tells the rows apart");
    }
}

std::unique_ptr<analysis::DataSource> OpenRows(const DataOptions& options, unsigned timeoutSeconds)
{
    if (!options.IsGiven()) {
        return nullptr;
    }
    try {
        auto data = analysis::OpenData({options.connection, options.table, options.key, timeoutSeconds});
        if (options.record && !data->Matches(std::nullopt, *options.record)) {
            throw std::runtime_error(fmt::format("there is no record with the key '{}'; correct --record{}",
                                                 *options.record, IsCommand(options) ? "" : ", --key or --table"));
        }
        return data;
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(fmt::format("--data: {}", error.what()));
    }
}

std::uint64_t CountAll(analysis::DataSource& data)
{
    try {
        return data.Count(std::nullopt);
    } catch (const analysis::DataError& error) {
        throw std::runtime_error(fmt::format("--data: the rows cannot be counted: {}", error.what()));
    }
}

bool HasKeys(const DataOptions& options)
{
    return !options.key.empty() || IsCommand(options);
}

std::string ShownRows(const DataOptions& options)
{
    if (IsCommand(options)) {
        const std::string command = options.connection.substr(commandScheme.size());
        return "the program " + command.substr(0, command.find(' ')); // its arguments may hold a secret
    }
    const bool canShow = options.IsGiven() && shownSECM_Connection != nullptr;
    return canShow ? fmt::format("{} in {}", options.table, shownSECM_Connection(options.connection.c_str()))
                   : options.table;
}

} // namespace secm::acfilter
