#pragma once

#include <string>

enum class Result { right = 0, refused = 1, wrong = 3 };

/// Does what a host does: makes a manager, connects (again when refused), and asks for the filters of some users of the
/// sample. `road` is "login" or "name". Prints on standard error what was refused or wrong.
Result MakeRequests(const std::string& connection, const std::string& road);
