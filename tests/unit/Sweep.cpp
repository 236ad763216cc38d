#include "Entries.h"
#include "ExpectError.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/TokenName.h"

#include <map>
#include <set>
#include <sstream>

using namespace ZLT::OGL;
using FakeGL::Call;
using FakeGL::Value;

namespace {

const char* const file = "ogl\\Texture";

// The beginning of a trace line.
std::string prefix(const char* file, int line, const Entry& entry) {
    std::ostringstream out;
    out << file << ':' << line << ": gl" << entry.name << '(';
    return out.str();
}

// A tracer in front of the checker.
class Sweep : public testing::Test {
protected:
    Sweep() : tracer(text) { OpenGLInterceptor::Instance()->addInterceptor(&tracer); }
    ~Sweep() override {
        tracer.popInterceptor();
        OpenGLInterceptor::destroy();
    }

    // Runs `body` for every entry but those left out, from the state in which the entry may be called: cgmEnd
    // behind a cgmBegin. A cgmBegin is closed afterwards.
    template <class Body>
    void forEachBut(const std::set<std::string>& leftOut, const Body& body) {
        ASSERT_EQ(1833u, entries().size());
        for (const Entry& entry : entries()) {
            if (leftOut.contains(entry.name))
                continue;
            SCOPED_TRACE(entry.name);
            if (entry.name == "End")
                tracer.cgmBegin(file, 1, 0);
            FakeGL::reset();
            text.str("");
            body(entry);
            FakeGL::reset();
            if (entry.name == "Begin")
                tracer.cgmEnd(file, 1);
        }
    }

    // The entry called its own function with its arguments, and glGetError once, unless that opened a
    // glBegin.
    static void expectCheckedCall(const Entry& entry, const Attempt& attempt) {
        std::vector<Call> expected = {{"gl" + entry.name, attempt.arguments}, {"glGetError", {}}};
        if (entry.name == "Begin")
            expected.pop_back();
        EXPECT_EQ(expected, FakeGL::calls());
    }

    std::ostringstream text;
    OpenGLTracer tracer;
};

TEST_F(Sweep, EveryEntryHasItsVirtualSlot) {
    std::size_t slot = 0;
    for (const Entry& entry : entries()) {
        EXPECT_EQ(slot, entry.slot) << entry.name;
        EXPECT_EQ(slot++, entry.virtualSlot) << entry.name;
    }
    // With every slot up to there taken, only the two that a destructor has are left.
    EXPECT_EQ(1833u + 2u, slotBehindTheLast());
}

TEST_F(Sweep, ArgumentsAndResultsPassUnchangedAndEachCallIsCheckedOnce) {
    int results = 0;
    for (int round = 0; round < 4; ++round)
        forEachBut({}, [&](const Entry& entry) {
            Attempt attempt;
            entry.viaChain(attempt, file, 1);
            expectCheckedCall(entry, attempt);
            EXPECT_EQ(attempt.scripted, attempt.returned);
            results += attempt.returned != Value();
        });
    EXPECT_EQ(4 * 81, results);
}

TEST_F(Sweep, EveryErrorComesBackWithTheCallersPlace) {
    int line = 100;
    forEachBut({"Begin"}, [&](const Entry& entry) {
        Attempt attempt;
        ++line;
        if (entry.name == "GetError") // which hands a first error to its caller
            FakeGL::pushError(0x0500);
        FakeGL::pushError(0x0502);
        expectError(file, line, "invalid operation", 0x0502, [&] { entry.viaChain(attempt, file, line); });
        expectCheckedCall(entry, attempt);
    });
}

TEST_F(Sweep, NothingBetweenBeginAndEndAsksForErrors) {
    forEachBut({"Begin", "End"}, [&](const Entry& entry) {
        tracer.cgmBegin(file, 1, 0);
        FakeGL::reset();
        Attempt attempt;
        if (entry.name != "GetError") // whose scripted result comes first
            FakeGL::pushError(0x0502);
        entry.viaChain(attempt, file, 2);
        EXPECT_EQ((std::vector<Call>{{"gl" + entry.name, attempt.arguments}}), FakeGL::calls());
        EXPECT_EQ(attempt.scripted, attempt.returned);
        if (entry.name == "GetError")
            FakeGL::pushError(0x0502);
        expectError("end.cpp", 7, "invalid operation", 0x0502, [&] { tracer.cgmEnd("end.cpp", 7); });
    });
}

TEST_F(Sweep, EveryMacroOfGlInterceptCallsItsEntryFromItsOwnLine) {
    forEachBut({}, [&](const Entry& entry) {
        Attempt attempt;
        entry.viaMacro(attempt);
        expectCheckedCall(entry, attempt);
        EXPECT_EQ(attempt.scripted, attempt.returned);
        const std::string expected = prefix(entry.macroFile, entry.macroLine, entry);
        EXPECT_EQ(expected, text.str().substr(0, expected.size()));
    });
}

// How a value of each type is written that is not a pointer, a float or a size.
using Form = void (*)(std::ostream&, const Value&);
template <class T>
constexpr Form number = [](std::ostream& out, const Value& value) { out << value.as<T>(); };
const std::map<std::string, Form> formsByValue = {
    {"GLenum", [](std::ostream& out, const Value& value) { out << TokenName(value.as<unsigned int>()); }},
    {"GLboolean",
     [](std::ostream& out, const Value& value) { out << boolToString(value.as<unsigned char>()); }},
    {"GLhandleARB",
     [](std::ostream& out, const Value& value) { out << "(GLhandleARB)" << value.as<unsigned>(); }},
    {"GLuint", number<unsigned int>},
    {"GLbitfield", number<unsigned int>},
    {"GLhalfNV", number<unsigned short>},
    {"GLint", number<int>},
    {"GLsizei", number<int>},
    {"GLshort", number<short>},
    {"GLushort", number<unsigned short>},
    {"GLdouble", number<double>},
    {"GLclampd", number<double>},
    {"GLuint64", number<unsigned long long>},
    {"GLuint64EXT", number<unsigned long long>},
    {"GLbyte", number<signed char>},
    {"GLubyte", number<unsigned char>}}; // the last two: one raw character
const std::set<std::string> textPointers = {"GLchar*", "GLcharARB*", "GLbyte*", "GLubyte*", "GLboolean*"};
const std::set<std::string> sizes = {"GLintptr", "GLsizeiptr", "GLintptrARB", "GLsizeiptrARB"};
const std::set<std::string> plainFloats = {"FragmentMaterialfEXT", "FragmentMaterialfSGIX",
                                           "ImageTransformParameterfHP", "PixelTransformParameterfEXT"};

std::string textOf(const Entry& entry, std::string type, const Value& value) {
    if (type.starts_with("const "))
        type.erase(0, 6);
    std::ostringstream out;
    if (textPointers.contains(type)) {
        out << value.as<const char*>();
    } else if (type.ends_with('*') || type == "GLsync") {
        char digits[17];
        const auto address = reinterpret_cast<std::uintptr_t>(value.as<void*>());
        std::snprintf(digits, sizeof(digits), "%016llX", static_cast<unsigned long long>(address));
        out << digits;
    } else if (sizes.contains(type)) {
        out << static_cast<int>(value.as<long long>() & 0xFFFFFFFF);
    } else if (type != "GLfloat" && type != "GLclampf") {
        formsByValue.at(type)(out, value);
    } else if (plainFloats.contains(entry.name)) {
        out << value.as<float>();
    } else {
        int bits;
        const float real = value.as<float>();
        std::memcpy(&bits, &real, sizeof(bits));
        out << "makeFloat(" << bits << ") /* " << real << " */";
    }
    return out.str();
}

TEST_F(Sweep, EveryTraceLineFollowsTheTypesOfTheParameters) {
    std::multiset<std::string> handles, bareFloats;
    for (int line = 0; line < 3; ++line)
        forEachBut({}, [&](const Entry& entry) {
            Attempt attempt;
            entry.viaChain(attempt, file, line);
            ASSERT_EQ(entry.types.size(), attempt.arguments.size());
            std::string expected = prefix(file, line, entry);
            for (std::size_t i = 0; i < entry.types.size(); ++i) {
                expected += (i > 0 ? ", " : "") + textOf(entry, entry.types[i], attempt.arguments[i]);
                if (line == 0 && entry.types[i] == "GLhandleARB")
                    handles.insert(entry.name);
                if (line == 0 && entry.types[i] == "GLfloat" && plainFloats.contains(entry.name))
                    bareFloats.insert(entry.name);
            }
            EXPECT_EQ(expected + ")\n", text.str());
        });
    EXPECT_EQ(22u, handles.size());
    EXPECT_EQ(20u, std::set<std::string>(handles.begin(), handles.end()).size());
    EXPECT_EQ(std::multiset<std::string>(plainFloats.begin(), plainFloats.end()), bareFloats);
}

} // namespace
