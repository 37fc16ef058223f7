#pragma once

#include <string>

#include "platform/Result.h"

namespace pellak::native {

/// An image file of any common format as a PNG file that fits a square of `side` pixels; never
/// enlarged, proportions kept. Errors: missing (no such file, too long, too many pixels, or no
/// image that can be read).
Result<std::string> iconImagePng(const std::string& path, int side);

}  // namespace pellak::native
