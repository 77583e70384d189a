#pragma once

/// For the areas of circles.
constexpr double Pi = 3.14159265358979323846;
