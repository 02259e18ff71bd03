// The standard streams of a process that was started without one of them.
#pragma once

namespace sys {

/// Opens the missing ones, so that no file that the process opens gets their numbers, for what cannot be read
/// or written, so that using them still fails.
void OccupyStandardStreams();

}  // namespace sys
