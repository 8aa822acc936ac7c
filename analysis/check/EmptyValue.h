// The effect of a values function that gives the empty text.
#pragma once

namespace secm::analysis {

inline constexpr const char* thisValueIsEmpty =
    "users granted it get the empty text in its place: that matches records in which the field is empty or, where the "
    "template makes a pattern of it, every record";
inline constexpr const char* everyValueIsEmpty =
    "every value becomes the empty text in this condition: users see records in which the field is empty or, where the "
    "template makes a pattern of it, every record";

} // namespace secm::analysis
