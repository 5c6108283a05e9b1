/// @file
/// Conversion between degrees and radians. The public interface speaks degrees.
#pragma once

namespace orv {

/// Degrees to radians, single precision (bits 0x3C8EFA35).
inline constexpr float DEGREES_TO_RADIANS = 0.017453292f;
/// Radians to degrees, single precision (bits 0x42652EE1).
inline constexpr float RADIANS_TO_DEGREES = 57.29578f;
/// A whole field of view in degrees to half of it in radians (bits 0x3C0EFA35).
inline constexpr float FOV_TO_HALF_RADIANS = 0.0087266462f;

}  // namespace orv
