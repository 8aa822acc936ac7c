// A values function turns a permission's resource into the value that is written into the filter.
#pragma once

#include <string>

/// Made by a ValuesFunctionFactory for one condition, which owns it; only looked at once initialized.
class AccessControl_ValuesFunctionInterface {
public:
    /// Called once, before any mapping. False: what it needs is not there; it then maps with what it has.
    virtual bool Initialize(std::string configuration) = 0;

    /// Writes what `value` maps to into `mappedValue`. The caller uses what stands there whatever is
    /// answered.
    virtual bool MapValue(const std::string& value, std::string& mappedValue) = 0;

    virtual ~AccessControl_ValuesFunctionInterface() = default;
};

/// Makes a values function that is not yet initialized; the caller owns it.
using ValuesFunctionFactory = AccessControl_ValuesFunctionInterface* (*)();
