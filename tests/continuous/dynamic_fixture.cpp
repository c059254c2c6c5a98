// The exponential of a state matrix, for the independent recursions of dynamic_fixture.h.
#include "dynamic_fixture.h"

namespace dynamic_test {

namespace {

using Matrix = std::array<std::array<long double, 3>, 3>;

Matrix product(Matrix const& a, Matrix const& b) {
    Matrix c{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                c[i][j] += a[i][k] * b[k][j];
    return c;
}

// The series of exp(m / 2^10), squared ten times.
Matrix exponential(Matrix m) {
    for (auto& row : m)
        for (long double& entry : row)
            entry /= 1024;
    Matrix sum{}, term{};
    for (int i = 0; i < 3; ++i)
        sum[i][i] = term[i][i] = 1;
    for (int power = 1; power < 30; ++power) {
        term = product(term, m);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                term[i][j] /= power;
                sum[i][j] += term[i][j];
            }
    }
    for (int i = 0; i < 10; ++i)
        sum = product(sum, sum);
    return sum;
}

}  // namespace

Recursion stepInvariant(double n1, double n2, double d0, double d1, double d2, double Ts) {
    long double const t = Ts, d = d2;
    Matrix m{};
    m[0][1] = t;
    m[1][0] = -d0 / d * t;
    m[1][1] = -d1 / d * t;
    m[1][2] = t / d;
    Matrix const e = exponential(m);
    long double const trace = e[0][0] + e[1][1];
    long double const det = e[0][0] * e[1][1] - e[0][1] * e[1][0];
    long double const cg = n1 * e[0][2] + n2 * e[1][2];
    long double const fg0 = e[0][0] * e[0][2] + e[0][1] * e[1][2];
    long double const fg1 = e[1][0] * e[0][2] + e[1][1] * e[1][2];
    long double const cfg = n1 * fg0 + n2 * fg1;
    return {static_cast<double>(trace), static_cast<double>(-det), static_cast<double>(cg),
            static_cast<double>(cfg - trace * cg)};
}

}  // namespace dynamic_test
