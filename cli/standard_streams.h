#pragma once

namespace qvcli {

/// Makes sure that the three standard streams lead somewhere. If one is closed, the next file that is opened would take
/// its number, and output would go into that file. A closed pipe ends a write with an error instead of the process.
void guard_standard_streams();

/// Writes out what standard output still holds. Returns `code`, or k_fault with the system's reason on stderr if
/// something that was printed never arrived.
int check_output(int code);

}  // namespace qvcli
