// The changes of --attribute and --grant, as they are written on the command line.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <optional>
#include <string>
#include <utility>

namespace secm::acfilter {

/// NAME=VALUE, where the value may be empty. Nothing when `text` is not that.
std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text);

/// NAME:VALUE[:RESOURCE], where the value is a whole number from 0 to 4294967295 and without a resource the permission
/// is held outright. Nothing when `text` is not that.
std::optional<PermissionBase> GrantFrom(const std::string& text);

} // namespace secm::acfilter
