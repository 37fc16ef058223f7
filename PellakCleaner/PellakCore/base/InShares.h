#pragma once

#include <cstddef>
#include <functional>

namespace pellak {

/// Does `work` on the parts [0, count), split into one run of neighbours for each of at most
/// `maxThreads` threads, the caller's among them, none with fewer than `least` parts unless it is
/// the only one. Returns when all is done; passes on an exception then.
void inShares(std::size_t count, std::size_t least, std::size_t maxThreads,
              const std::function<void(std::size_t begin, std::size_t end)>& work);

}  // namespace pellak
