#include "extensionator/ValueForms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>

using namespace ZLT::OGL::ValueForms;
using Format = void (*)(std::ostream&);

namespace {

struct Buffer : std::streambuf {
    void rewind() { setp(characters, characters + sizeof(characters)); }
    std::string_view text() const { return {pbase(), pptr()}; }
    char characters[1024];
};

// Writes the same value by its form and by plain insertions into a stream of the same format, a comma behind
// it.
class Routes {
public:
    explicit Routes(Format format = [](std::ostream&) {}) : format_(format) {}

    template <class Form, class... Plain>
    void expectEqual(const Form& form, const Plain&... plain) {
        formText_.rewind();
        plainText_.rewind();
        format_(formStream_);
        format_(plainStream_);
        formStream_ << form;
        (plainStream_ << ... << plain) << ", ";
        EXPECT_EQ(plainText_.text(), formText_.text());
    }

    template <class T>
    void number(T value) {
        expectEqual(Number(value, comma), value);
        if constexpr (std::is_same_v<T, float>)
            expectEqual(Float(value, comma), "makeFloat(", std::bit_cast<int>(value), ") /* ", value, " */");
    }

    // The bits as a number of each width, and all other forms of whole numbers.
    void integers(std::uint64_t bits) {
        const auto word = static_cast<unsigned int>(bits);
        number(static_cast<short>(bits));
        number(static_cast<unsigned short>(bits));
        number(static_cast<int>(bits));
        number(word);
        number(static_cast<long long>(bits));
        number(static_cast<unsigned long long>(bits));
        expectEqual(Low32(static_cast<long long>(bits), comma), static_cast<int>(bits));
        expectEqual(Handle(word, comma), "(GLhandleARB)", word);
        expectEqual(CallSite("a.cpp", word, "glX, "), "a.cpp", ":", word, ": glX");
    }

private:
    Format format_;
    Buffer formText_, plainText_;
    std::ostream formStream_{&formText_}, plainStream_{&plainText_};
};

// Zeros, limits, infinities, NaNs, denormals, and what lies around each place where the notation changes.
template <class Real>
std::vector<Real> specialReals() {
    using Limits = std::numeric_limits<Real>;
    std::vector<Real> edges = {0, Limits::min(), Limits::max(), Real(999999.5), Real(0.00009999995)};
    for (int exponent = -12; exponent <= 12; ++exponent)
        edges.push_back(static_cast<Real>(std::pow(10.0, exponent)));
    for (int exponent = Limits::min_exponent - Limits::digits; exponent < Limits::max_exponent; ++exponent)
        edges.push_back(std::ldexp(Real(1), exponent));
    std::vector<Real> values = {Limits::infinity(), Limits::quiet_NaN()};
    for (const Real edge : edges)
        values.insert(values.end(),
                      {std::nextafter(edge, Real(-1)), edge, std::nextafter(edge, Limits::infinity())});
    for (std::size_t i = 0, count = values.size(); i < count; ++i)
        values.push_back(-values[i]);
    return values;
}

// Of random values; with a sanitizer it takes minutes.
#ifdef __SANITIZE_ADDRESS__
constexpr int many = 30000;
#else
constexpr int many = 300000;
#endif

TEST(ValueFormTest, realsAreAsTheStreamShowsThem) {
    Routes routes;
    std::ranges::for_each(specialReals<float>(), [&](float value) { routes.number(value); });
    std::ranges::for_each(specialReals<double>(), [&](double value) { routes.number(value); });
    std::mt19937_64 random(1);
    for (int i = 0; i < 5 * many && !HasFailure(); ++i) {
        const std::uint64_t bits = random();
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 32));
        routes.number(value);
        routes.number(static_cast<double>(value));
        routes.number(std::bit_cast<double>(bits));
    }
    // Where coordinates and colours lie, and ties: exactly half way between two texts of six digits.
    std::uniform_real_distribution<double> coordinates(-10, 10);
    for (int i = 0; i < many && !HasFailure(); ++i)
        for (const double value : {coordinates(random), i / 1000.0, i / 255.0, 100000.5 + 3 * i}) {
            routes.number(value);
            routes.number(static_cast<float>(value));
        }
}

TEST(ValueFormTest, wholeNumbersAreAsTheStreamShowsThem) {
    Routes routes;
    for (std::uint64_t bits = 0; bits <= 0xFFFF; ++bits)
        routes.integers(bits);
    std::mt19937_64 random(2);
    for (int i = 0; i < many && !HasFailure(); ++i)
        routes.integers(random() >> (i % 64));
    for (int shift = 0; shift < 64; ++shift)
        routes.integers(~std::uint64_t(0) << shift);
}

struct Grouping : std::numpunct<char> {
    std::string do_grouping() const override { return "\2"; }
};

TEST(ValueFormTest, everyFormatOfTheStreamIsFollowed) {
    const Format formats[] = {
        [](auto& out) { out << std::hex; },
        [](auto& out) { out << std::oct << std::showbase; },
        [](auto& out) { out.setf(std::ios_base::hex | std::ios_base::dec); },
        [](auto& out) { out << std::showpos; },
        [](auto& out) { out << std::showpoint; },
        [](auto& out) { out << std::uppercase; },
        [](auto& out) { out << std::fixed; },
        [](auto& out) { out << std::hexfloat; },
        [](auto& out) { out << std::setprecision(17); },
        [](auto& out) { out << std::setw(30) << std::setfill('*'); },
        [](auto& out) { out << std::setw(30) << std::internal << std::setfill('0'); },
        [](auto& out) { out.imbue(std::locale(std::locale::classic(), new Grouping)); },
    };
    for (const Format& format : formats) {
        SCOPED_TRACE(&format - formats);
        Routes routes(format);
        for (const double value : {0.0, -0.0, 1.0, -0.1, 123456.7, 1e-7, 1e20, 1.0 / 3, std::log(0)}) {
            routes.number(value);
            routes.number(static_cast<float>(value));
        }
        for (const std::uint64_t bits : {std::uint64_t(0), std::uint64_t(1234567), ~std::uint64_t(0)})
            routes.integers(bits);
        routes.expectEqual(Enumerant(0x0DE1, comma), "GL_TEXTURE_2D");
        routes.expectEqual(Boolean(2, comma), "GL_TRUE");
        routes.expectEqual(Character(static_cast<signed char>('x'), comma), 'x');
        routes.expectEqual(Text("text", comma), "text");
        routes.expectEqual(Pointer(reinterpret_cast<void*>(0xAB), comma), "00000000000000AB");
    }
}

} // namespace
