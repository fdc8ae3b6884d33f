// The registry of device families (the descriptor is core/family.h).
#pragma once

#include "core/family.h"

// The family of a device code, and the family and code of a metafl
// keyword (null and code 0 when unknown).
const DeviceFamily *qqfamily(int devcod) noexcept;
const DeviceFamily *qqfamilykey(const char *key, int *code) noexcept;
// Every family of the build; n receives their count.
const DeviceFamily *const *qqfamilies(int *n) noexcept;
