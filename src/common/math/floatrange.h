#pragma once

namespace ZUNO::Common::Math {

/// Coordinates and lengths between these limits have products that `float` rounds by a part of
/// themselves (2^-24): the square of the larger limit, 1e30, leaves room to 3.4e38 for sums and
/// differences of such products, and the square of the smaller one, 1e-30, is above 1.2e-38, below
/// which `float` loses digits. What the fast forms know about rounding holds only between the two;
/// beyond them they leave the answer to the plain forms.
inline constexpr double largestCoordinate = 1e15;
inline constexpr double smallestLength = 1e-15;

} // namespace ZUNO::Common::Math
