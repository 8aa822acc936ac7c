// A values function maps the resource of a permission to the value that is written into the filter.
#pragma once

#include <string>

/// Created by a ValuesFunctionFactory for one condition, which owns and deletes it. Does not change after Initialize.
class AccessControl_ValuesFunctionInterface {
public:
    /// Called once, before MapValue, with the condition's `values_function_config_stringN`. False: the function
    /// could not read what it needs. The caller ignores the result, so MapValue must work in this case too.
    virtual bool Initialize(std::string configuration) = 0;

    /// Writes the mapped value into `mappedValue`, which holds `value` before the call. The caller ignores the
    /// result and uses `mappedValue`.
    virtual bool MapValue(const std::string& value, std::string& mappedValue) = 0;

    virtual ~AccessControl_ValuesFunctionInterface() = default;
};

/// Creates a values function that is not initialized yet; the caller owns it.
using ValuesFunctionFactory = AccessControl_ValuesFunctionInterface* (*)();
