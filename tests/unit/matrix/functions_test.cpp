#include "matrix/functions.hpp"

#include "../support/arrays.hpp"
#include "kernel/utilities.hpp"
#include "matrix/matrix1.hpp"

#include <cmath>
#include <functional>
#include <limits>
#include <mpc.h>
#include <numbers>

namespace quelor {
namespace {

/// Numbers of 300 bits, in which the functions are evaluated that the commands are held against.
class Exact {
public:
    explicit Exact(Complex8 z) {
        mpc_init2(z_, 300);
        mpc_set_d_d(z_, z.real(), z.imag(), MPC_RNDNN);
    }
    ~Exact() { mpc_clear(z_); }
    Exact(const Exact&) = delete;
    Exact& operator=(const Exact&) = delete;

    mpc_ptr complex() { return z_; }
    mpfr_ptr real() { return mpc_realref(z_); }
    Complex8 value() const {
        return {mpfr_get_d(mpc_realref(z_), MPFR_RNDN), mpfr_get_d(mpc_imagref(z_), MPFR_RNDN)};
    }

private:
    mpc_t z_;
};

/// A command and its function, for one real or complex argument.
struct RealCase {
    std::string line; ///< "bessel_j a b n=3"
    std::function<void(mpfr_ptr result, mpfr_srcptr x)> function;
    Reals points;
};
struct ComplexCase {
    std::string line;
    int (*function)(mpc_ptr, mpc_srcptr, mpc_rnd_t);
};

template <int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
void rounded(mpfr_ptr result, mpfr_srcptr x) {
    function(result, x, MPFR_RNDN);
}

struct Functions : ArraySession {
    Functions()
        : ArraySession({function_rows(), matrix1_input_rows(), matrix1_generate_rows(),
                        matrix1_convert_rows()}) {}

    template <class T> static void create(std::string_view name, const std::vector<T>& values) {
        const auto n = static_cast<int>(values.size());
        std::ranges::copy(values, create_matrix<T>(name, n, 0).data);
    }

    /// Runs the line on arguments of the type T and gives the largest relative error.
    template <class T> double worst_error(const RealCase& test) {
        create<T>("a", {test.points.begin(), test.points.end()});
        quietly(test.line);
        const auto results = elements<T>("b");
        EXPECT_EQ(results.size(), test.points.size()) << test.line;
        double worst = 0;
        for (std::size_t i = 0; i < results.size(); ++i) {
            Exact x(test.points[i]), result(0.);
            test.function(result.real(), x.real());
            mpfr_t error;
            mpfr_init2(error, 300);
            mpfr_set_ld(error, results[i], MPFR_RNDN);
            mpfr_reldiff(error, result.real(), error, MPFR_RNDN);
            worst = std::max(worst, std::abs(mpfr_get_d(error, MPFR_RNDN)));
            mpfr_clear(error);
        }
        return worst;
    }
};

/// exp(x^2) erfc(x)
void scaled_erfc(mpfr_ptr result, mpfr_srcptr x) {
    mpfr_t square;
    mpfr_init2(square, 300);
    mpfr_sqr(square, x, MPFR_RNDN);
    mpfr_exp(square, square, MPFR_RNDN);
    mpfr_erfc(result, x, MPFR_RNDN);
    mpfr_mul(result, result, square, MPFR_RNDN);
    mpfr_clear(square);
}

const Reals anywhere = {-40.25, -3.5, -0.75, -1e-9, 1e-300, 1e-9, 0.1, 0.6, 1.5, 3.75, 20.5};
const Reals positive = {1e-300, 1e-9, 0.1, 0.6, 1.5, 3.75, 20.5, 1e15, 1e300};
const Reals within_one = {-1, -0.9999, -0.5, -1e-9, 1e-12, 0.3, 0.75, 0.9999999};

const std::vector<RealCase>& real_cases() {
    static const std::vector<RealCase> cases = {
        {"exp a b", rounded<mpfr_exp>, anywhere},
        {"log a b", rounded<mpfr_log>, positive},
        {"log10 a b", rounded<mpfr_log10>, positive},
        {"sqrt a b", rounded<mpfr_sqrt>, positive},
        {"power a b p=-2",
         [](auto r, auto x) { mpfr_pow_si(r, x, -2, MPFR_RNDN); },
         {-7.25, 0.3, 11.5}},
        {"power a b p=0.5 -r", rounded<mpfr_sqrt>, positive},
        {"sin a b", rounded<mpfr_sin>, anywhere},
        {"cos a b", rounded<mpfr_cos>, anywhere},
        {"tan a b", rounded<mpfr_tan>, anywhere},
        {"asin a b", rounded<mpfr_asin>, within_one},
        {"acos a b", rounded<mpfr_acos>, within_one},
        {"atan a b", rounded<mpfr_atan>, anywhere},
        {"sinh a b", rounded<mpfr_sinh>, anywhere},
        {"cosh a b", rounded<mpfr_cosh>, anywhere},
        {"tanh a b", rounded<mpfr_tanh>, anywhere},
        {"erf a b", rounded<mpfr_erf>, anywhere},
        {"erfc a b", rounded<mpfr_erfc>, {-3.5, -0.1, 1e-9, 0.5, 2, 6.5, 12.75, 26}},
        {"erfc_scaled a b",
         scaled_erfc,
         {-26, -5.3, -0.1, 1e-9, 0.5, 2.7, 12.75, 25.9, 26, 26.1, 100, 1000}},
        {"gamma a b",
         rounded<mpfr_gamma>,
         {-170.5, -20.25, -2.0000001, -1e-9, 1e-300, 0.5, 5, 33.3, 170.5}},
    };
    return cases;
}

/// J and Y of the given orders at points away from their zeros: a few below and a few above |n|.
std::vector<RealCase> bessel_cases() {
    std::vector<RealCase> cases;
    for (const long n : {0L, 1L, 2L, 7L, 50L, 301L, -1L, -2L, -7L, -50L}) {
        const std::string order = " a b n=" + std::to_string(n);
        const double m = std::abs(static_cast<double>(n)) + 1;
        const Reals points = {0.3 * m, 0.75 * m, 1.1 * m, 1.625 * m, 3.1 * m, m + 111.5};
        cases.push_back(
            {"bessel_j" + order, [n](auto r, auto x) { mpfr_jn(r, n, x, MPFR_RNDN); }, points});
        cases.push_back(
            {"bessel_y" + order, [n](auto r, auto x) { mpfr_yn(r, n, x, MPFR_RNDN); }, points});
    }
    return cases;
}

// The C library states a few units in the last place, 1e-15, for most functions; the recurrences of
// the Bessel functions and the neighbourhood of a pole cost up to two digits more.
TEST_F(Functions, RealFunctionsAgreeWithMultiPrecisionValues) {
    for (const RealCase& test : real_cases()) {
        EXPECT_LE(worst_error<double>(test), 1e-13) << test.line;
        EXPECT_LE(worst_error<long double>(test), 1e-16) << test.line;
    }
    for (const RealCase& test : bessel_cases())
        EXPECT_LE(worst_error<double>(test), 1e-12) << test.line;
}

const ComplexCase complex_cases[] = {
    {"exp a b", mpc_exp},   {"log a b", mpc_log},   {"log10 a b", mpc_log10},
    {"sqrt a b", mpc_sqrt}, {"power a b", mpc_sqr}, {"sin a b", mpc_sin},
    {"cos a b", mpc_cos},   {"tan a b", mpc_tan},   {"asin a b", mpc_asin},
    {"acos a b", mpc_acos}, {"atan a b", mpc_atan}, {"sinh a b", mpc_sinh},
    {"cosh a b", mpc_cosh}, {"tanh a b", mpc_tanh}, {"conjugate a b", mpc_conj},
};
// Small, large and ordinary numbers, on and beside the axes, near branch points and zeros.
const Complexes plane = {{0.3, 0.4},     {-2.5, 1.5},  {3, -4},          {1e-8, 1e-9}, {-1e-8, 3},
                         {0.9999, 1e-6}, {1e-6, 1.01}, {1 + 1e-9, 0.},   {0, -0.75},   {-0.6, 0},
                         {12.5, 20.25},  {-30, -1e-5}, {1.5707963, 1e-4}};

TEST_F(Functions, ComplexFunctionsAgreeWithMultiPrecisionValues) {
    for (const auto& [line, function] : complex_cases) {
        create<Complex8>("a", plane);
        quietly(line);
        const auto results = elements<Complex8>("b");
        ASSERT_EQ(results.size(), plane.size()) << line;
        for (std::size_t i = 0; i < plane.size(); ++i) {
            Exact z(plane[i]), result(0.);
            function(result.complex(), z.complex(), MPC_RNDNN);
            const Complex8 expected = result.value();
            EXPECT_LE(std::abs(results[i] - expected), 1e-13 * std::abs(expected))
                << line << plane[i];
        }
    }
    const Complex8 z{0.75, -1.25};
    create<Complex8>("a", {z, {1e200, 0}, 0});
    quietly("power a b p=-3");
    EXPECT_LE(std::abs(elements<Complex8>("b")[0] * z * z * z - 1.0), 1e-15);
    EXPECT_EQ(elements<Complex8>("b")[1], 0.0) << "below the range, without passing beyond it";
    quietly("power a b p=0.25 -r");
    const Complex8 root = elements<Complex8>("b")[0];
    EXPECT_LE(std::abs(root * root * root * root - z), 1e-15);
    EXPECT_EQ(elements<Complex8>("b")[2], 0.0);
}

TEST_F(Functions, EndsOfTheRangesAreWhatTheArithmeticGives) {
    const double inf = std::numeric_limits<double>::infinity();
    const auto at = [&](const std::string& line, const Reals& x) {
        create<double>("a", x);
        quietly(line);
        return elements<double>("b");
    };
    EXPECT_EQ(at("gamma a b", {0, -0., 172}), (Reals{inf, -inf, inf}));
    EXPECT_EQ(at("erfc_scaled a b", {-30, -1e200, -inf, inf}), (Reals{inf, inf, inf, 0}));
    EXPECT_DOUBLE_EQ(at("erfc_scaled a b", {1e200})[0], 1e-200 / std::sqrt(std::numbers::pi));
    EXPECT_EQ(at("bessel_y a b n=2", {0}), Reals{-inf});
    EXPECT_EQ(at("bessel_j a b n=-2000000000", {1, 0}), (Reals{0, 0}));
    for (const char* line : {"log a b", "sqrt a b", "asin a b", "gamma a b", "bessel_y a b"})
        EXPECT_TRUE(std::isnan(at(line, {-2})[0])) << line;
}

TEST_F(Functions, ColumnsAreChosenByXAndC) {
    quietly("zero a r=2 c=3 v=4");
    quietly("sqrt a b x=2");
    EXPECT_EQ(elements<double>("b"), (Reals{0, 0, 2, 2, 0, 0}));
    quietly("sqrt a b c=2");
    EXPECT_EQ(elements<double>("b"), (Reals{4, 4, 2, 2, 2, 2}));
    quietly("sqrt a b c=9");
    EXPECT_EQ(elements<double>("b"), Reals(6, 4));
    quietly("sqrt a b x=1 y=3");
    EXPECT_EQ(elements<double>("b"), (Reals{0, 0, 0, 0, 2, 2}));
    quietly("sqrt a x=2");
    EXPECT_EQ(elements<double>("a"), (Reals{4, 4, 2, 2, 4, 4}));
    quietly("sqrt a a x=1");
    EXPECT_EQ(elements<double>("a"), (Reals{2, 2, 0, 0, 0, 0})) << "as under a new name";
    quietly("zero t r=1 c=2 t=2 v=4");
    quietly("sqrt t c=2");
    EXPECT_EQ(elements<double>("t"), (Reals{4, 2, 4, 2})) << "the columns of each table";
    EXPECT_EQ(run("sqrt a b x=4"), said("Invalid column number"));
    EXPECT_EQ(run("sqrt a b x=1 y=-1"), said("Invalid column number"));
    EXPECT_EQ(run("sqrt a b c=-1"), said("Column number must be nonnegative"));
    quietly("sqrt a b c=0");
    EXPECT_EQ(elements<double>("b")[0], std::sqrt(2.)) << "0 means 1";
}

TEST_F(Functions, TypesAreServedWhereTheyMakeSense) {
    quietly("inputc z c=2", "3 4 -5 12\n");
    quietly("abs z b");
    EXPECT_EQ(elements<double>("b"), (Reals{5, 13}));
    quietly("abs z b c=2");
    EXPECT_EQ(elements<double>("b"), (Reals{3, 13})) << "the real part before column c";
    quietly("abs z x=1");
    EXPECT_EQ(elements<double>("z"), (Reals{5, -5}));
    create<std::int32_t>("k", {-3, 4, std::numeric_limits<std::int32_t>::min()});
    quietly("abs k");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{3, 4, 2147483647}));
    create<Complex4>("c", {{0, 1}, {3, -4}});
    quietly("power c d");
    EXPECT_EQ(elements<Complex4>("d"), (std::vector<Complex4>{-1, {-7, -24}}));
    quietly("abs c d");
    EXPECT_EQ(elements<double>("d"), (Reals{1, 5}));
    EXPECT_EQ(run("exp k b"), said("Command not implemented for integer"));
    EXPECT_EQ(run("gamma c b"), said("Command not implemented for data type"));
    create_string_array("text", "s");
    EXPECT_EQ(run("exp s"), said("Command not implemented for data type"));
    create_array(type_real, "four", {1, 2, 1, 2});
    EXPECT_EQ(run("exp four"), said("Command not supported for arrays larger than 3D"));
    EXPECT_EQ(run("exp none"), "      none not found\n");
    EXPECT_EQ(run("exp"), said("One argument required"));
    EXPECT_EQ(run("bessel_j d n=-9999999999"), said("The order is out of range"));
}

TEST_F(Functions, ConstantsAreScalars) {
    quietly("pi p");
    EXPECT_EQ(get_real("p"), std::numbers::pi);
    quietly("epsilon p e");
    EXPECT_EQ(1 + get_real("e") / 2, 1);
    EXPECT_GT(1 + get_real("e"), 1);
    quietly("to_real16 p q");
    quietly("epsilon q q");
    EXPECT_LT(elements<long double>("q").at(0), 1e-18L);
    quietly("seti k");
    EXPECT_EQ(run("epsilon k e"), said("Command not implemented for integer"));
}

} // namespace
} // namespace quelor
