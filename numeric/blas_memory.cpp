// The buffer of the BLAS, taken when it is certain to be granted.
#include "numeric/blas_memory.hpp"

#include "numeric/lapack.hpp"

#include <new>
#include <sys/mman.h>

namespace quelor {

/// Room for the buffer of OpenBLAS on x86-64, which has 128 MiB, and an eighth to spare.
static constexpr std::size_t room = std::size_t{144} << 20;

/// A factorisation, however small, takes the buffer; the BLAS keeps it to the end of the program.
static bool take_buffer() {
    void* const trial =
        mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (trial == MAP_FAILED) return false;
    munmap(trial, room);
    const std::int32_t one = 1;
    double a = 1;
    std::int32_t pivot = 0, info = 0;
    dgetrf_(&one, &one, &a, &one, &pivot, &info);
    return true;
}

void require_blas_memory() {
    static bool taken = false;
    taken = taken || take_buffer();
    if (!taken) throw std::bad_alloc();
}

} // namespace quelor
