#pragma once

#include <cstddef>

/// A program's operator new, replaced once: link replaced_new.cpp and define what is to happen before an allocation.
namespace qvtest {

/// Called before every allocation of the program. Throws std::bad_alloc to refuse it. Must not allocate.
void admit_allocation(std::size_t size);

}  // namespace qvtest
