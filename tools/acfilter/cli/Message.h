// The form of all error messages.
#pragma once

#include "tools/acfilter/render/Printable.h"

#include <string>
#include <string_view>

namespace secm::acfilter {

/// `text` as one line. Control characters, which quoted names may hold, are escaped.
inline std::string Message(std::string_view text)
{
    return "acfilter: " + Printable(text) + "\n";
}

} // namespace secm::acfilter
