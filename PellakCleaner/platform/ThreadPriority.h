#pragma once

namespace pellak {

/// Gives the calling thread the disk and the processor only when nobody else wants them, as long
/// as it lives: there is no way back that every user may take, so it is for threads that end with
/// their work. What the system refuses is left as it was.
void lowerThisThread();

}  // namespace pellak
