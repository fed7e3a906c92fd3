// The BLAS and LAPACK routines that are called, by their Fortran symbols: every argument by
// address, the lengths of character arguments last. Matrices are column-major, integers have 32
// bits.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

// NOLINTBEGIN(readability-identifier-naming): the names are LAPACK's.
extern "C" {

// a = P L U in place; info = k > 0: pivot k is exactly zero.
void cgetrf_(const std::int32_t* m, const std::int32_t* n, std::complex<float>* a,
             const std::int32_t* lda, std::int32_t* ipiv, std::int32_t* info);
void dgetrf_(const std::int32_t* m, const std::int32_t* n, double* a, const std::int32_t* lda,
             std::int32_t* ipiv, std::int32_t* info);
void zgetrf_(const std::int32_t* m, const std::int32_t* n, std::complex<double>* a,
             const std::int32_t* lda, std::int32_t* ipiv, std::int32_t* info);

// b := a^-1 b by the factors of cgetrf, zgetrf.
void cgetrs_(const char* trans, const std::int32_t* n, const std::int32_t* nrhs,
             const std::complex<float>* a, const std::int32_t* lda, const std::int32_t* ipiv,
             std::complex<float>* b, const std::int32_t* ldb, std::int32_t* info,
             std::size_t trans_length);
void zgetrs_(const char* trans, const std::int32_t* n, const std::int32_t* nrhs,
             const std::complex<double>* a, const std::int32_t* lda, const std::int32_t* ipiv,
             std::complex<double>* b, const std::int32_t* ldb, std::int32_t* info,
             std::size_t trans_length);

// Eigenvalues w, ascending, and with jobz = "V" vectors in the columns of a, of a x = w b x for
// itype = 1, a symmetric, b positive definite; a and b are overwritten. info > n: b is not
// definite. lwork = -1 asks for the best length of work, which is put into work[0].
void dsygv_(const std::int32_t* itype, const char* jobz, const char* uplo, const std::int32_t* n,
            double* a, const std::int32_t* lda, double* b, const std::int32_t* ldb, double* w,
            double* work, const std::int32_t* lwork, std::int32_t* info, std::size_t jobz_length,
            std::size_t uplo_length);

// c := alpha op(a) op(b) + beta c, op(a) of m by k, op(b) of k by n.
void dgemm_(const char* transa, const char* transb, const std::int32_t* m, const std::int32_t* n,
            const std::int32_t* k, const double* alpha, const double* a, const std::int32_t* lda,
            const double* b, const std::int32_t* ldb, const double* beta, double* c,
            const std::int32_t* ldc, std::size_t transa_length, std::size_t transb_length);
void zgemm_(const char* transa, const char* transb, const std::int32_t* m, const std::int32_t* n,
            const std::int32_t* k, const std::complex<double>* alpha, const std::complex<double>* a,
            const std::int32_t* lda, const std::complex<double>* b, const std::int32_t* ldb,
            const std::complex<double>* beta, std::complex<double>* c, const std::int32_t* ldc,
            std::size_t transa_length, std::size_t transb_length);
}
// NOLINTEND(readability-identifier-naming)
