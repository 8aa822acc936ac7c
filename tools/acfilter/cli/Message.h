// How the command line words what went wrong.
#pragma once

#include "tools/acfilter/render/Printable.h"

#include <string>
#include <string_view>

namespace secm::acfilter {

/// One line, whatever names `text` quotes.
inline std::string Message(std::string_view text)
{
    return "acfilter: " + Printable(text) + "\n";
}

} // namespace secm::acfilter
