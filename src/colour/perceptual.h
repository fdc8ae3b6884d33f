// Perceptually uniform colour ramps for the extra colour tables of setvlt.
#pragma once

// The 256 colours 0x00RRGGBB of ramp 0 viridis, 1 magma, 2 inferno,
// 3 plasma, dark to bright; null for another number.
const int *qqperceptual(int which) noexcept;
