#pragma once

#include <string>

enum class Result { right = 0, refused = 1, wrong = 3 };

/// What a host does: makes a manager, connects (a second time when refused), and asks for the filters of some users of
/// the sample, on one road. Says on standard error what was refused or wrong. `connection` and `road` ("login",
/// "name") as on the command line.
Result MakeRequests(const std::string& connection, const std::string& road);
