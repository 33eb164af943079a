// Writes SphereTables.inc: for each size of SphereSampling a set of axes that is spread evenly over the half sphere z
// >= 0.
//
// Axes repel each other, and each other's opposites, by a force that falls with a power of their distance. The power
// rises while the steps shrink, so that in the end nearest neighbours alone decide: the sets come close to those with
// the largest least angle. Small sets, whose forces have many equilibria, are the best of several starts.
//
// The results depend on the last bits of the mathematics library's functions, so the output is kept beside this
// program, and the tests measure it. Usage: makeSphereTables > SphereTables.inc. That takes some minutes; the least
// angles go to the standard error stream.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

using Axis = std::array<double, 3>;
using Axes = std::vector<Axis>;

double const pi = std::acos(-1.0);

double dot(Axis const& a, Axis const& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void normalize(Axis& a)
{
    double const length = std::sqrt(dot(a, a));
    for (double& c : a)
        c /= length;
}

double leastAngle(Axes const& axes)
{
    double closest = 0;
    for (std::size_t i = 0; i < axes.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            closest = std::max(closest, std::fabs(dot(axes[i], axes[j])));
    return std::acos(std::min(closest, 1.0));
}

/// Of 2n points on a sphere no two of which are closer than this, L. Fejes Toth, 1943.
double boundOf(std::size_t n)
{
    double const points = 2 * double(n);
    double const cotangent = 1 / std::tan(points / (points - 2) * pi / 6);
    return std::acos(std::min(1.0, (cotangent * cotangent - 1) / 2));
}

class Spreading
{
public:
    explicit Spreading(Axes start)
        : m_axes(std::move(start))
        , m_forces(m_axes.size())
        , m_squares(m_axes.size() * (m_axes.size() - 1) / 2)
    {}

    /// Steps are in units of the distance between the nearest axes.
    void run(int steps, double firstStep, double lastStep, double firstPower, double lastPower)
    {
        for (int i = 0; i < steps; ++i) {
            double const done = double(i) / steps;
            step(firstPower * std::pow(lastPower / firstPower, done), firstStep * std::pow(lastStep / firstStep, done));
        }
    }

    Axes const& axes() const { return m_axes; }

private:
    void step(double power, double length)
    {
        double nearest = 4;
        std::size_t pair = 0;
        for (std::size_t i = 0; i < m_axes.size(); ++i)
            for (std::size_t j = 0; j < i; ++j) {
                double const cosine = dot(m_axes[i], m_axes[j]);
                m_squares[pair++] = cosine;
                nearest = std::min(nearest, 2 - 2 * std::fabs(cosine));
            }
        nearest = std::max(nearest, 1e-12);
        double const tooFar = nearest * std::pow(1e4, 2 / power); // where a force is below 1e-4 of the greatest
        std::fill(m_forces.begin(), m_forces.end(), Axis{});
        pair = 0;
        for (std::size_t i = 0; i < m_axes.size(); ++i)
            for (std::size_t j = 0; j < i; ++j) {
                double const cosine = m_squares[pair++];
                if (2 - 2 * std::fabs(cosine) > tooFar)
                    continue;
                push(i, j, 1, 2 - 2 * cosine, nearest, power);
                push(i, j, -1, 2 + 2 * cosine, nearest, power);
            }
        double greatest = 1e-300;
        for (std::size_t i = 0; i < m_axes.size(); ++i) {
            double const outward = dot(m_forces[i], m_axes[i]);
            for (int c = 0; c < 3; ++c)
                m_forces[i][c] -= outward * m_axes[i][c];
            greatest = std::max(greatest, dot(m_forces[i], m_forces[i]));
        }
        double const scale = length * std::sqrt(nearest / greatest);
        for (std::size_t i = 0; i < m_axes.size(); ++i) {
            for (int c = 0; c < 3; ++c)
                m_axes[i][c] += scale * m_forces[i][c];
            normalize(m_axes[i]);
        }
    }

    /// The force between axis i and axis j times sign.
    void push(std::size_t i, std::size_t j, double sign, double square, double nearest, double power)
    {
        square = std::max(square, 1e-12);
        double const force = std::pow(nearest / square, power / 2) / square;
        for (int c = 0; c < 3; ++c) {
            double const f = force * (m_axes[i][c] - sign * m_axes[j][c]);
            m_forces[i][c] += f;
            m_forces[j][c] -= sign * f;
        }
    }

    Axes m_axes;
    Axes m_forces;
    std::vector<double> m_squares;
};

/// A spiral over the half sphere, along which each axis has the same area.
Axes spiral(std::size_t n)
{
    double const goldenAngle = pi * (3 - std::sqrt(5.0));
    Axes axes(n);
    for (std::size_t i = 0; i < n; ++i) {
        double const z = 1 - (double(i) + 0.5) / double(n);
        double const radius = std::sqrt(1 - z * z);
        axes[i] = {radius * std::cos(goldenAngle * double(i)), radius * std::sin(goldenAngle * double(i)), z};
    }
    return axes;
}

Axes scattered(std::size_t n, std::mt19937_64& random)
{
    auto const uniform = [&] { return double(random() >> 11) * 0x1p-53 * 2 - 1; };
    Axes axes(n);
    for (Axis& a : axes) {
        do
            a = {uniform(), uniform(), uniform()};
        while (dot(a, a) > 1 || dot(a, a) < 1e-4);
        normalize(a);
    }
    return axes;
}

Axes spread(std::size_t n)
{
    if (n == 1)
        return {{0, 0, 1}};
    std::mt19937_64 random(n);
    int const starts = n <= 30 ? 40 : n <= 100 ? 16 : 1;
    Axes best;
    double bestAngle = -1;
    for (int start = 0; start < starts; ++start) {
        Spreading spreading(start == 0 ? spiral(n) : scattered(n, random));
        if (n <= 100)
            spreading.run(3000, 0.1, 1e-6, 4, 2000);
        else
            spreading.run(1500, 0.1, 1e-4, 4, 60);
        double const angle = leastAngle(spreading.axes());
        if (angle > bestAngle) {
            best = spreading.axes();
            bestAngle = angle;
        }
    }
    return best;
}

struct Angles
{
    float phi;
    float theta;
};

/// The angles of that end of the axis which is on the half sphere.
Angles anglesOf(Axis a)
{
    if (a[2] < 0)
        for (double& c : a)
            c = -c;
    float const highest = std::nextafterf(float(pi / 2), 0); // the float next to pi / 2 is larger than that
    return {std::min(float(std::acos(std::min(a[2], 1.0))), highest), float(std::atan2(a[1], a[0]))};
}

/// Three orthogonal axes. The first is given, the other two are equally far from the pole.
std::vector<Angles> frame()
{
    Angles const first{0.949692F, 0.793502F};
    double const phi = first.phi;
    double const theta = first.theta;
    Axis const along{std::cos(phi) * std::cos(theta), std::cos(phi) * std::sin(theta), -std::sin(phi)};
    Axis const across{-std::sin(theta), std::cos(theta), 0};
    std::vector<Angles> angles{first};
    for (double const side : {1.0, -1.0}) {
        Axis a;
        for (int c = 0; c < 3; ++c)
            a[c] = (side * across[c] - along[c]) / std::sqrt(2.0);
        angles.push_back(anglesOf(a));
    }
    return angles;
}

std::vector<Angles> sorted(Axes const& axes)
{
    std::vector<Angles> angles;
    for (Axis const& a : axes)
        angles.push_back(anglesOf(a));
    std::sort(angles.begin(), angles.end(),
              [](Angles const& a, Angles const& b) { return a.phi != b.phi ? a.phi < b.phi : a.theta < b.theta; });
    return angles;
}

void print(char const* name, std::vector<float> const& values)
{
    std::printf("static constexpr float %s[] = {\n", name);
    std::string line;
    for (float value : values) {
        char text[32];
        std::string number(text, std::to_chars(text, text + sizeof text, value).ptr);
        if (number.find_first_of(".e") == std::string::npos)
            number += ".";
        if (line.size() + number.size() + 3 > 120) {
            std::printf("%s\n", line.c_str());
            line.clear();
        }
        line += number + "F,";
    }
    std::printf("%s\n};\n", line.c_str());
}

} // namespace

int main()
{
    std::vector<std::size_t> sizes;
    for (std::size_t n = 1; n <= 100; ++n)
        sizes.push_back(n);
    for (std::size_t n : {150, 200, 250, 300, 350, 400, 450, 500, 600, 700, 800, 900, 1000, 1500, 2000, 2500, 3000})
        sizes.push_back(n);
    std::vector<float> phi;
    std::vector<float> theta;
    for (std::size_t n : sizes) {
        Axes const axes = n == 3 ? Axes{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}} : spread(n);
        for (Angles const& a : n == 3 ? frame() : n == 1 ? std::vector<Angles>{{0, 0}} : sorted(axes)) {
            phi.push_back(a.phi);
            theta.push_back(a.theta);
        }
        if (n > 1)
            std::fprintf(stderr, "%4zu axes: least angle %8.4f degrees, %.3f of the bound\n", n,
                         leastAngle(axes) * 180 / pi, leastAngle(axes) / boundOf(n));
    }
    std::printf("// Made by makeSphereTables.cpp.\n// clang-format off\n");
    print("phiVec", phi);
    print("thetaVec", theta);
}
