// Memory of the BLAS.
#pragma once

namespace quelor {

/// To be called before a product or a factorisation by the BLAS, which takes a buffer at its first
/// call and, where that is refused, tries again for ever. Here it is tried once: std::bad_alloc
/// when there is no room. Costs nothing once the buffer is there.
void require_blas_memory();

} // namespace quelor
