#pragma once

#include <string>

/// Names a row of a table-driven test by its member `name`.
struct RowName {
    template <class Info>
    std::string operator()(const Info& row) const
    {
        return row.param.name;
    }
};
