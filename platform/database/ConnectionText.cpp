#include "platform/database/ConnectionText.h"

#include <fmt/format.h>
#include <libpq-fe.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace secm::platform {
namespace {

constexpr std::string_view sqliteScheme = "sqlite3://";
constexpr std::string_view postgreSqlScheme = "postgresql://";
constexpr std::string_view schemeEnd = "://";
constexpr std::string_view hidden = "***";

// None of them holds a secret; other keys are refused.
constexpr std::array<std::string_view, 6> sqliteKeys = {"db",       "dbname",       "timeout",
                                                        "readonly", "shared_cache", "synchronous"};
constexpr std::array<std::string_view, 13> harmlessPostgreSqlKeys = {"host",
                                                                     "hostaddr",
                                                                     "port",
                                                                     "dbname",
                                                                     "user",
                                                                     "passfile",
                                                                     "connect_timeout",
                                                                     "client_encoding",
                                                                     "sslmode",
                                                                     "gssencmode",
                                                                     "application_name",
                                                                     "sslrootcert",
                                                                     "target_session_attrs"};

struct Setting {
    std::string key;
    std::string value;
};

bool IsTrue(std::string_view value)
{
    return value == "1" || value == "true" || value == "yes" || value == "on";
}

unsigned SecondsOf(std::string_view value)
{
    unsigned seconds = 0;
    const char* end = value.data() + value.size();
    if (const auto [stop, error] = std::from_chars(value.data(), end, seconds);
        error != std::errc() || stop != end || seconds > longestTimeoutSeconds) {
        throw std::runtime_error(
            fmt::format("timeout in the connection text is no number of seconds up to {}", longestTimeoutSeconds));
    }
    return seconds;
}

// Parses without an input stream: when memory runs out, a stream never reports its end.
std::vector<Setting> SqliteSettingsOf(std::string_view text)
{
    std::vector<Setting> settings;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (text.empty()) {
            return settings;
        }
        const std::size_t keyEnd = text.find_first_of("= ");
        const std::string key(text.substr(0, keyEnd));
        if (keyEnd == std::string_view::npos || text[keyEnd] != '=' ||
            std::find(sqliteKeys.begin(), sqliteKeys.end(), key) == sqliteKeys.end()) {
            throw std::runtime_error("write sqlite3://db=FILE; put a file name with blanks between double quotes; the "
                                     "other keys are timeout, readonly, shared_cache and synchronous");
        }
        text.remove_prefix(keyEnd + 1);
        const bool isQuoted = text.starts_with('"');
        text.remove_prefix(isQuoted ? 1 : 0);
        const std::size_t valueEnd = text.find(isQuoted ? '"' : ' ');
        if (isQuoted && valueEnd == std::string_view::npos) {
            throw std::runtime_error("a double quote in the connection text is not closed");
        }
        settings.push_back({key, std::string(text.substr(0, valueEnd))});
        text.remove_prefix(valueEnd == std::string_view::npos ? text.size() : valueEnd + 1);
    }
}

SqliteAddress SqliteAddressOf(std::string_view text, unsigned timeoutSeconds)
{
    SqliteAddress address{"", timeoutSeconds};
    for (const Setting& setting : SqliteSettingsOf(text)) {
        if (setting.key == "db" || setting.key == "dbname") {
            address.file = setting.value;
        } else if (setting.key == "timeout") {
            address.timeoutSeconds = SecondsOf(setting.value);
        } else if (setting.key == "shared_cache") {
            address.sharesCache = IsTrue(setting.value);
        } else if (setting.key == "readonly" && !IsTrue(setting.value)) {
            throw std::runtime_error("readonly in the connection text must be true: the file is only read");
        } // synchronous concerns only writers
    }
    if (address.file.empty()) {
        throw std::runtime_error("the connection text names no file; write sqlite3://db=FILE");
    }
    return address;
}

// Uses the client library's parser. Its error message is dropped, because it quotes parts of the text.
std::vector<Setting> PostgreSqlSettingsOf(const std::string& text)
{
    char* reason = nullptr;
    const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(PQconninfoParse(text.c_str(), &reason),
                                                                               &PQconninfoFree);
    const std::unique_ptr<char, decltype(&PQfreemem)> freed(reason, &PQfreemem);
    if (!options) {
        if (reason == nullptr) {
            throw std::bad_alloc();
        }
        throw std::runtime_error("the connection text cannot be parsed: write postgresql://host=... dbname=... "
                                 "user=..., with keys of libpq in lower case, not user@host/database; put a value "
                                 "with blanks between single quotes");
    }
    std::vector<Setting> settings;
    for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
        if (option->val != nullptr) {
            settings.push_back({option->keyword, option->val});
        }
    }
    return settings;
}

// The client library would read a text that begins as a URI in another way than KEY=VALUE.
void RequireKeys(const std::string& text)
{
    if (text.starts_with('/') || text.find(schemeEnd) < text.find('=') || text.find('=') == std::string::npos) {
        throw std::runtime_error("write postgresql://host=... dbname=... user=..., not user@host/database");
    }
}

// Refuses values such as in host=db;password=..., because the client library or the server would quote them in its
// message. A user may be called NAME@SERVER, and the name of a socket may begin with @.
void RequireSeparateSettings(const std::vector<Setting>& settings)
{
    constexpr std::array<std::string_view, 5> quotedKeys = {"host", "hostaddr", "port", "dbname", "user"};
    for (const Setting& setting : settings) {
        const bool isQuoted = std::find(quotedKeys.begin(), quotedKeys.end(), setting.key) != quotedKeys.end();
        if (isQuoted &&
            (setting.value.find('=') != std::string::npos || setting.value.find(schemeEnd) != std::string::npos ||
             (setting.key.starts_with("host") && setting.value.find('@', 1) != std::string::npos))) {
            throw std::runtime_error(fmt::format("{} in the connection text holds more than one setting; write them "
                                                 "apart by blanks: host=... port=... dbname=... user=...",
                                                 setting.key));
        }
    }
}

// SOCI rewrites the text for the client library, and drops some blanks of a value that has several. Another password
// would be tried, or a part of it would be read as a key and quoted in a message. In `options` lost blanks do no harm.
void RequireFewBlanks(const Setting& setting)
{
    if (setting.key == "options") {
        return;
    }
    bool isAfterBlank = false;
    for (const char character : setting.value) {
        if (std::isspace(static_cast<unsigned char>(character)) != 0) {
            if (isAfterBlank || character != ' ') {
                throw std::runtime_error(fmt::format(
                    "the value of {} in the connection text holds several blanks, of which some would be lost; a "
                    "password can stand in a password file: passfile=FILE",
                    setting.key));
            }
            isAfterBlank = true;
        } else if (character == '=') {
            isAfterBlank = false;
        }
    }
}

std::string Written(const Setting& setting)
{
    RequireFewBlanks(setting);
    std::string written = setting.key + "='";
    for (const char character : setting.value) {
        written.append(character == '\'' || character == '\\' ? 1 : 0, '\\').push_back(character);
    }
    return written + "'";
}

PostgreSqlAddress PostgreSqlAddressOf(const std::string& text, unsigned timeoutSeconds)
{
    if (text.find("singlerow") != std::string::npos) {
        throw std::runtime_error("leave out singlerow: an answer that breaks off would look like a whole one");
    }
    RequireKeys(text);
    const std::vector<Setting> settings = PostgreSqlSettingsOf(text);
    RequireSeparateSettings(settings);
    // Our settings are added for the keys that the text does not have. The library of Kerberos' encryption ends the
    // process when memory runs out. The fallback names us in the server's list of connections, unless PGAPPNAME or the
    // text names the host. Without client_encoding, PGCLIENTENCODING could convert names into those of other users.
    // That setting is the last, because SOCI drops what follows the blank in a last value that has one.
    std::vector<Setting> added = {{"gssencmode", "disable"}, {"fallback_application_name", "SECM_AccessControl"}};
    if (timeoutSeconds != 0) {
        const std::string timeout = std::to_string(timeoutSeconds);
        added.push_back({"connect_timeout", timeout});
        added.push_back({"tcp_user_timeout", timeout + "000"});
    }
    Setting last = {"client_encoding", "UTF8"};
    std::string written;
    for (const Setting& setting : settings) {
        if (setting.key == last.key) {
            last.value = setting.value;
        } else {
            written += Written(setting) + " ";
        }
        std::erase_if(added, [&](const Setting& ours) { return ours.key == setting.key; });
    }
    for (const Setting& setting : added) {
        written += Written(setting) + " ";
    }
    return {written + Written(last)};
}

template <std::size_t count>
std::string Shown(std::string_view scheme, const std::vector<Setting>& settings,
                  const std::array<std::string_view, count>& harmlessKeys)
{
    std::string shown;
    for (const Setting& setting : settings) {
        // A value that is itself a connection text may hold a password.
        const bool isHarmless =
            std::find(harmlessKeys.begin(), harmlessKeys.end(), setting.key) != harmlessKeys.end() &&
            setting.value.find_first_of("@=") == std::string::npos &&
            setting.value.find(schemeEnd) == std::string::npos;
        shown.append(shown.empty() ? "" : " ").append(setting.key).append("=");
        shown.append(isHarmless ? std::string_view(setting.value) : hidden);
    }
    return std::string(scheme) + shown;
}

} // namespace

DatabaseAddress DatabaseAddressOf(const std::string& connectionText, unsigned timeoutSeconds)
{
    if (connectionText.starts_with(sqliteScheme)) {
        return SqliteAddressOf(connectionText.substr(sqliteScheme.size()), timeoutSeconds);
    }
    if (connectionText.starts_with(postgreSqlScheme)) {
        return PostgreSqlAddressOf(connectionText.substr(postgreSqlScheme.size()), timeoutSeconds);
    }
    throw std::runtime_error("the connection text must begin with sqlite3:// or postgresql://");
}

std::string ShownConnectionText(const std::string& connectionText)
{
    if (connectionText.empty()) {
        return "";
    }
    try {
        if (connectionText.starts_with(sqliteScheme)) {
            return Shown(sqliteScheme, SqliteSettingsOf(connectionText.substr(sqliteScheme.size())), sqliteKeys);
        }
        if (connectionText.starts_with(postgreSqlScheme)) {
            const std::string text = connectionText.substr(postgreSqlScheme.size());
            RequireKeys(text);
            return Shown(postgreSqlScheme, PostgreSqlSettingsOf(text), harmlessPostgreSqlKeys);
        }
    } catch (const std::runtime_error&) {
        // It cannot be parsed: only the scheme is shown.
    }
    const std::size_t end = connectionText.find(schemeEnd);
    const bool hasScheme =
        end != std::string::npos && connectionText.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == end;
    return (hasScheme ? connectionText.substr(0, end + schemeEnd.size()) : "") + std::string(hidden);
}

bool CanBeImpersonated(std::string_view address, std::string_view sslMode)
{
    const bool isLocal = address.empty() || address.starts_with("127.") || address == "::1";
    return !isLocal && sslMode != "verify-full";
}

} // namespace secm::platform
