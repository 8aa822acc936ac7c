// What a command reads, and where it logs: files that its answer must not replace.
#pragma once

#include "tools/acfilter/HostOptions.h"

/// Makes sure that `output` is none of the configuration's files and could not become one, is not `usersFrom`, the log,
/// standard input, output or error, and no file that this process holds open, as it does the security database once it
/// is connected; nor one of those that SQLite keeps beside its databases. Throws std::runtime_error.
void RequireNoInput(const std::string& output, const HostOptions& host, const std::optional<std::string>& usersFrom);
