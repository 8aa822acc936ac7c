// Lists a security database row by row.
#include "platform/security_manager/SECM_Listing.h"

#include "platform/database/ConnectionText.h"
#include "platform/security_manager/sql/AllowedTexts.h"
#include "platform/security_manager/sql/DatabaseAccess.h"
#include "platform/security_manager/sql/DatabaseConnection.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace secm::platform {
namespace {

constexpr std::size_t pageSize = 1000;

class SqlListing final : public SECM_ListingInterface {
public:
    SqlListing(const std::string& connectionText, unsigned timeoutSeconds)
        : text(connectionText), connection(connectionText, timeoutSeconds)
    {
    }

    void ForEachUser(const std::function<void(const std::string&)>& handle) override
    {
        TextColumn name;
        const Statement byName{"SECM_ListingInterface::ForEachUser", "listing the users",
                               "SELECT user_name FROM security_user", "user_name > :last", "user_name"};
        ReadPages<std::string>(
            byName, handle, [&](soci::statement& page) { page.exchange(soci::into(name.text, name.indicator)); },
            [&](soci::statement& page, const std::string& last) { page.exchange(soci::use(last, "last")); },
            [&] { return name.At(PlaceOf("security_user", name)); },
            [](const std::string& one, const std::string& other) { return one == other; });
    }

    void ForEachGrant(const std::function<void(const SECM_Grant&)>& handle) override
    {
        ReadGrants("SECM_ListingInterface::ForEachGrant", "", {}, handle);
    }

    // The statements compare by the collations of the columns, which may take more names for the same.
    void ForEachGrantTo(const std::string& userName, const std::string& groupName,
                        const std::function<void(const SECM_Grant&)>& handle) override
    {
        ReadGrants("SECM_ListingInterface::ForEachGrantTo",
                   "(grantee_type = 'user' AND grantee = :first OR grantee_type = 'group' AND grantee = :second)",
                   {userName, groupName}, [&](const SECM_Grant& grant) {
                       if (grant.isToGroup ? grant.grantee == groupName && !groupName.empty()
                                           : grant.grantee == userName) {
                           handle(grant);
                       }
                   });
    }

    void ForEachGrantOf(const std::string& permissionName,
                        const std::function<void(const SECM_Grant&)>& handle) override
    {
        ReadGrants("SECM_ListingInterface::ForEachGrantOf", "permission_name = :first", {permissionName},
                   [&](const SECM_Grant& grant) {
                       if (grant.permission.name() == permissionName) {
                           handle(grant);
                       }
                   });
    }

    void ForEachAttribute(const std::function<void(const SECM_Attribute&)>& handle) override
    {
        TextColumn user;
        TextColumn name;
        TextColumn value;
        const Statement byUser{"SECM_ListingInterface::ForEachAttribute", "listing the attributes",
                               "SELECT user_name, attribute_name, attribute_value FROM security_attribute",
                               "(user_name, attribute_name) > (:lastUser, :lastName)", "user_name, attribute_name"};
        ReadPages<SECM_Attribute>(
            byUser, handle,
            [&](soci::statement& page) {
                for (TextColumn* column : {&user, &name, &value}) {
                    page.exchange(soci::into(column->text, column->indicator));
                }
            },
            [&](soci::statement& page, const SECM_Attribute& last) {
                page.exchange(soci::use(last.userName, "lastUser"));
                page.exchange(soci::use(last.name, "lastName"));
            },
            [&]() -> SECM_Attribute {
                const RowPlace place = PlaceOf("security_attribute", user);
                return {user.At(place), name.At(place), value.At(place)};
            },
            [](const SECM_Attribute& one, const SECM_Attribute& other) {
                return one.userName == other.userName && one.name == other.name;
            });
    }

    void ForEachMember(const std::function<void(const SECM_Member&)>& handle) override
    {
        TextColumn name;
        TextColumn group;
        const Statement byName{"SECM_ListingInterface::ForEachMember", "listing the users",
                               "SELECT user_name, group_name FROM security_user", "user_name > :last", "user_name"};
        ReadPages<SECM_Member>(
            byName, handle,
            [&](soci::statement& page) {
                page.exchange(soci::into(name.text, name.indicator));
                page.exchange(soci::into(group.text, group.indicator));
            },
            [&](soci::statement& page, const SECM_Member& last) { page.exchange(soci::use(last.userName, "last")); },
            [&]() -> SECM_Member {
                const RowPlace place = PlaceOf("security_user", name);
                return {name.At(place), group.At(place)};
            },
            [](const SECM_Member& one, const SECM_Member& other) { return one.userName == other.userName; });
    }

    void ForEachGrantRow(const std::function<void(const SECM_GrantRow&)>& handle) override
    {
        PermissionRow row;
        TextColumn granteeType;
        TextColumn grantee;
        TextColumn storedValue;
        int isOddlyConditional = 0;
        const Statement byPosition{"SECM_ListingInterface::ForEachGrantRow", "listing the permissions",
                                   std::string("SELECT ") + permissionColumns +
                                       ", grantee_type, grantee, CAST(permission_value AS TEXT),"
                                       " CASE WHEN is_conditional IN (0, 1) THEN 0 ELSE 1 END FROM security_permission",
                                   "position > :last", "position"};
        ReadPages<SECM_GrantRow>(
            byPosition, handle,
            [&](soci::statement& page) {
                row.Bind(page);
                for (TextColumn* column : {&granteeType, &grantee, &storedValue}) {
                    page.exchange(soci::into(column->text, column->indicator));
                }
                page.exchange(soci::into(isOddlyConditional));
            },
            [&](soci::statement& page, const SECM_GrantRow& last) {
                page.exchange(soci::use(last.grant.position, "last"));
            },
            [&] { return GrantRowOf(row, granteeType, grantee, storedValue, isOddlyConditional != 0); },
            [](const SECM_GrantRow& one, const SECM_GrantRow& other) {
                return one.grant.position == other.grant.position;
            });
    }

    void CheckIntegrity() override
    {
        Ask("SECM_ListingInterface::CheckIntegrity", "checking the integrity", [&] { connection.CheckIntegrity(); });
    }

    void ForEachRisk(const std::function<void(const SECM_Risk&)>& handle) override
    {
        if (const auto risk = connection.Risk()) {
            handle(*risk);
        }
    }

private:
    template <class Question>
    void Ask(const char* function, const char* name, Question question)
    {
        try {
            question();
        } catch (const std::runtime_error& error) {
            LogFailure(function, text, "failed", fmt::format("{}: {}", name, ReasonOf(error)));
            throw std::runtime_error(fmt::format("the security database '{}' cannot be read: {}: {}",
                                                 ShownConnectionText(text), name, ReasonOf(error)));
        }
    }

    // `names` are the parameters ":first" and ":second" of `condition`.
    void ReadGrants(const char* function, const std::string& condition, const std::vector<std::string>& names,
                    const std::function<void(const SECM_Grant&)>& handle)
    {
        PermissionRow row;
        TextColumn granteeType;
        TextColumn grantee;
        const Statement byPosition{function,
                                   "listing the permissions",
                                   std::string("SELECT ") + permissionColumns +
                                       ", grantee_type, grantee FROM security_permission",
                                   "position > :last",
                                   "position",
                                   condition};
        ReadPages<SECM_Grant>(
            byPosition, handle,
            [&](soci::statement& page) {
                row.Bind(page);
                page.exchange(soci::into(granteeType.text, granteeType.indicator));
                page.exchange(soci::into(grantee.text, grantee.indicator));
                for (std::size_t index = 0; index < names.size(); ++index) {
                    page.exchange(soci::use(names[index], index == 0 ? "first" : "second"));
                }
            },
            [&](soci::statement& page, const SECM_Grant& last) { page.exchange(soci::use(last.position, "last")); },
            [&]() -> SECM_Grant {
                const RowPlace place{"security_permission", {}, row.position};
                return {row.position, granteeType.At(place) == "group", grantee.At(place), row.Permission()};
            },
            [](const SECM_Grant& one, const SECM_Grant& other) { return one.position == other.position; });
    }

    struct Statement {
        const char* function; // and what it does, for messages
        const char* name;
        std::string select;
        std::string behindLast; // the condition on the rows behind the last row of a page
        std::string order;
        std::string condition = {}; // on all rows
    };

    // The place of a row of a user, whose name may be NULL.
    static RowPlace PlaceOf(const char* table, const TextColumn& userName)
    {
        return userName.indicator == soci::i_null ? RowPlace{table} : RowPlace{table, userName.text};
    }

    static SECM_GrantRow GrantRowOf(const PermissionRow& row, const TextColumn& granteeType, const TextColumn& grantee,
                                    const TextColumn& storedValue, bool isOddlyConditional)
    {
        const RowPlace place{"security_permission", {}, row.position};
        const auto textOf = [](const TextColumn& column) {
            return column.indicator == soci::i_null ? std::string() : column.text;
        };
        SECM_GrantRow read{{row.position, textOf(granteeType) == "group", textOf(grantee), {"", 0, nullptr, false}},
                           "",
                           textOf(granteeType),
                           isOddlyConditional};
        try {
            granteeType.At(place);
            grantee.At(place);
            read.grant.permission = row.Permission();
        } catch (const std::runtime_error& error) {
            read.fault = error.what();
            if (row.value < 0) {
                read.fault += fmt::format(", but '{}'", textOf(storedValue));
            }
        }
        return read;
    }

    // Reads pages; each begins behind the last row of the page before. A statement that stayed open for a long list
    // would keep others from writing, and some databases would send the whole list at once. A page is read whole before
    // its rows are handled; handling them has no time limit. A page also reads the first row of the next page, which
    // must be found there again. Otherwise rows would be left out or repeated without end: rows with a key that another
    // row has too, or with a key that is no text.
    template <class Row, class BindRow, class BindLast, class TakeRow, class HasSameKey>
    void ReadPages(const Statement& statement, const std::function<void(const Row&)>& handle, BindRow bindRow,
                   BindLast bindLast, TakeRow takeRow, HasSameKey hasSameKey)
    {
        const std::string page = " ORDER BY " + statement.order + " LIMIT " + std::to_string(pageSize + 1);
        std::vector<Row> rows;
        do {
            const std::vector<Row> before = std::move(rows); // and the first row of this page
            rows.clear();
            Ask(statement.function, statement.name, [&] {
                connection.Keep([&] {
                    soci::statement select(connection.Session());
                    bindRow(select);
                    if (!before.empty()) {
                        bindLast(select, before.at(pageSize - 1));
                    }
                    select.alloc();
                    const std::string behind = before.empty() ? "" : statement.behindLast;
                    const std::string conditions =
                        statement.condition + (statement.condition.empty() || behind.empty() ? "" : " AND ") + behind;
                    select.prepare(statement.select + (conditions.empty() ? "" : " WHERE " + conditions) + page);
                    select.define_and_bind();
                    select.execute();
                    while (select.fetch()) {
                        rows.push_back(takeRow());
                    }
                });
                connection.RequireWhole();
                if (!before.empty() && (rows.empty() || !hasSameKey(rows.front(), before.back()))) {
                    throw std::runtime_error(
                        fmt::format("rows changed meanwhile, or two of them have the same {}, or "
                                    "one that is no text or number; try again, then mend the table",
                                    statement.order));
                }
            });
            std::for_each(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(std::min(rows.size(), pageSize)),
                          handle);
        } while (rows.size() > pageSize);
    }

    std::string text;
    DatabaseConnection connection;
};

} // namespace
} // namespace secm::platform

using namespace secm::platform;

std::unique_ptr<SECM_ListingInterface> openSECM_Listing(const char* connectionText, unsigned timeoutSeconds)
{
    const std::string text = connectionText != nullptr ? connectionText : "";
    try {
        return std::make_unique<SqlListing>(text, std::min(timeoutSeconds, longestTimeoutSeconds));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(
            fmt::format("the security database '{}' cannot be used: {}", ShownConnectionText(text), ReasonOf(error)));
    }
}

std::string shownSECM_Connection(const char* connectionText)
{
    return ShownConnectionText(connectionText != nullptr ? connectionText : "");
}

void requireSECM_AllowedGrant(const PermissionBase& permission)
{
    if (const AllowedTexts allowed(allowedResourcesVariable); !AllowsResourceOf(allowed, permission)) {
        allowed.Refuse(
            fmt::format("the permission '{}' for the resource '{}'", permission.name(), permission.resource()));
    }
}

void requireSECM_AllowedAttribute(const std::string& name, const std::string& value)
{
    if (const AllowedTexts allowed(allowedAttributesVariable); !allowed.Allows(value)) {
        allowed.Refuse(fmt::format("the attribute '{}' with the value '{}'", name, value));
    }
}
