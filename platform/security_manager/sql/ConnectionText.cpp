#include "platform/security_manager/sql/ConnectionText.h"

#include <stdexcept>
#include <string_view>

namespace {

constexpr std::string_view sqlite = "sqlite3://";
constexpr std::string_view postgresql = "postgresql://";

// Whether `settings` is of the form KEY=VALUE..., as both databases take it, and not user:password@host.
bool BeginsWithKey(std::string_view settings)
{
    return settings.find('=') != std::string_view::npos &&
           settings.find_first_not_of("abcdefghijklmnopqrstuvwxyz_ ") == settings.find('=');
}

// What could hold a password: all behind "password=", or everything where no KEY=VALUE begins the text.
std::string SecretOf(const std::string& connectionText)
{
    const std::size_t scheme = connectionText.find("://");
    const std::string settings = connectionText.substr(scheme == std::string::npos ? 0 : scheme + 3);
    if (!BeginsWithKey(settings)) {
        return settings.find('@') == std::string::npos ? "" : settings;
    }
    const std::size_t value = settings.find('=', settings.find("password"));
    return value == std::string::npos ? "" : settings.substr(value + 1);
}

} // namespace

DatabaseAddress DatabaseAddressOf(const std::string& connectionText, unsigned timeoutSeconds)
{
    const std::string timeout = std::to_string(timeoutSeconds);
    const std::string_view view = connectionText;
    // Our settings stand first: behind a quote that is never closed they would be part of a file's name.
    if (view.starts_with(sqlite)) {
        const std::string settings = connectionText.substr(sqlite.size());
        if (settings.find("db=") == std::string::npos && settings.find("dbname=") == std::string::npos) {
            throw std::runtime_error("the connection text names no file; write sqlite3://db=FILE");
        }
        return {false, "readonly=true " + (timeoutSeconds != 0 ? "timeout=" + timeout + " " : "") + settings};
    }
    if (view.starts_with(postgresql)) {
        const std::string settings = connectionText.substr(postgresql.size());
        if (!BeginsWithKey(settings)) {
            throw std::runtime_error("write postgresql://host=... dbname=... user=..., not user@host/database");
        }
        if (settings.find("singlerow") != std::string::npos) {
            throw std::runtime_error("leave out singlerow: an answer that breaks off would look like a whole one");
        }
        // Else the environment could have names converted on their way, into those of other users or of nobody.
        const std::string encoding = "client_encoding=UTF8 ";
        const std::string limits = "connect_timeout=" + timeout + " tcp_user_timeout=" + timeout + "000 ";
        return {true, encoding + (timeoutSeconds != 0 ? limits : "") + settings};
    }
    throw std::runtime_error("the connection text must begin with sqlite3:// or postgresql://");
}

std::string WithoutSecrets(const std::string& connectionText, std::string text)
{
    const std::string secret = SecretOf(connectionText);
    const std::size_t found = secret.empty() ? std::string::npos : text.find(secret);
    return found == std::string::npos ? text : text.replace(found, secret.size(), "***");
}
