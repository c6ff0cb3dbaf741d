#pragma once

#include <exception>
#include <string>

namespace qvslv {

/// What an exception says, as a sentence for the user: the standard library names its own functions and classes. The
/// engine's exceptions are described where they are caught, as that needs the state (engine/lost_numbers.h).
std::string plain_reason(const std::exception& error);

}  // namespace qvslv
